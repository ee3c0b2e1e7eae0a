#pragma once

#include "base/name_index.h"
#include "program/program_view.h"
#include "quillpg/api.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace quillpg {

struct SEQUENCE_LINE;

/// What the names in a sequence line refer to; null for an empty name and for one that nobody
/// bears. The names are only looked up: keywords are the caller's business.
struct LINE_REFERENCES {
  const INDEXED_NAME* block = nullptr;
  const INDEXED_NAME* subSequence = nullptr;
  const INDEXED_NAME* waitFor = nullptr;
  const INDEXED_NAME* jumpIf = nullptr;
  const INDEXED_NAME* jumpTo = nullptr;
};

/// The names of one instrument's program and everything that refers to them, resolved in one pass
/// for compiler and download. The answers are those of the managers' own walks at the moment of
/// asking: the index notices edits (by the lists' revisions) and is built again when it is asked
/// next. Results stay valid until the program changes.
///
/// Whether blanks around an asked name count is each manager's rule: they do for blocks and labels
/// and do not for subsequences and events.
class QUILLPG_API CProgramIndex {
 public:
  /// Refers to `program` from now on. Detach before the program or its instrument goes.
  void Attach(const CProgramView& program);
  void Detach();

  const INDEXED_NAME* Block(std::string_view name);
  const INDEXED_NAME* SubSequence(std::string_view name);
  const INDEXED_NAME* Event(std::string_view name);
  const INDEXED_NAME* Label(std::string_view name);

  /// References of the sequence line at `line`; all null for a bad position and an empty slot.
  LINE_REFERENCES SequenceLine(int line);
  /// The block that line `line` of subsequence `subSequence` plays; null as above.
  const INDEXED_NAME* SubSequenceLine(int subSequence, int line);

 private:
  void Refresh();
  void IndexNames();
  void ResolveSequence();
  void ResolveSubSequences();
  LINE_REFERENCES Resolve(const SEQUENCE_LINE& line);

  const CProgramView* m_program = nullptr;
  bool m_built = false;
  CProgramView::REVISIONS m_revisions{};
  CNameIndex m_blocks;
  CNameIndex m_subSequences;
  CNameIndex m_events;
  CNameIndex m_labels;
  std::vector<LINE_REFERENCES> m_lines;
  std::vector<const INDEXED_NAME*> m_subLines;  // of all subsequences, one after the other
  std::vector<std::size_t> m_firstSubLine;      // of each subsequence, and the end
};

}  // namespace quillpg
