#pragma once

#include "quillpg/api.h"

#include <array>
#include <cstdint>

namespace quillpg {

class CBlockManager;
class CEventManager;
class CGroupManager;
class CInstrument;
class CSequenceManager;
class CSubSequenceManager;
struct BLOCK;
struct EVENT;
struct GROUP;
struct SEQUENCE_LINE;
struct SUBSEQUENCE;

/// The program of one instrument: its groups and the four lists that compiler and download walk, an
/// object or null at each position. Refers to the instrument's managers, none of which is null; a
/// default-constructed view is empty.
class QUILLPG_API CProgramView {
 public:
  CProgramView() = default;
  explicit CProgramView(const CInstrument& instrument);

  CGroupManager* Groups() const { return m_groups; }
  CBlockManager* Blocks() const { return m_blocks; }
  CSequenceManager* Sequence() const { return m_sequence; }
  CSubSequenceManager* SubSequences() const { return m_subSequences; }
  CEventManager* Events() const { return m_events; }

  // Lengths of the lists, empty slots included.
  int GroupCount() const;
  int BlockCount() const;
  int LineCount() const;
  int SubSequenceCount() const;
  int EventCount() const;

  // Null for an empty slot and for a position outside the list.
  GROUP* GroupAt(int index) const;
  BLOCK* BlockAt(int index) const;
  SEQUENCE_LINE* LineAt(int index) const;
  SUBSEQUENCE* SubSequenceAt(int index) const;
  EVENT* EventAt(int index) const;

  /// One count for each of the four lists, which grows with every change of it and of the names in
  /// it. Without the groups: nothing in a program refers to them.
  using REVISIONS = std::array<std::uint64_t, 4>;
  REVISIONS Revisions() const;

 private:
  CGroupManager* m_groups = nullptr;
  CBlockManager* m_blocks = nullptr;
  CSequenceManager* m_sequence = nullptr;
  CSubSequenceManager* m_subSequences = nullptr;
  CEventManager* m_events = nullptr;
};

}  // namespace quillpg
