#pragma once

#include "base/revision.h"
#include "quillpg/api.h"
#include "quillpg/engine_types.h"
#include "quillpg/result_codes.h"

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace quillpg {

class CByteWriter;
class CGroupPlan;
class CSetupFileReader;

/// A bus: an ordered list of instrument channels that are edited and shown as one value. Position 0
/// is the most significant bit. Channel numbers are not checked: they may repeat or lie outside the
/// instrument.
struct QUILLPG_API GROUP {
  GROUP();
  ~GROUP();
  GROUP(const GROUP&) = delete;

  /// Copies the name only; the channel list is emptied and the channel-names text kept. Deliberate:
  /// CGroupManager::SetGroup depends on it.
  GROUP& operator=(const GROUP& other);

  /// Empties name, channel-names text and channel list.
  Status Initialize();

  const std::string& GetGroupName() const { return m_name; }
  /// Stores the name as given; CGroupManager::SetGroupName is the checked way.
  Status SetGroupName(const std::string& name);

  /// Display text that lists the channels; free text, never derived from the channel list.
  const std::string& GetChannelNames() const { return m_channelNames; }
  Status SetChannelNames(const std::string& text);

  /// Inserts before `position`; below 0 appends; beyond the end the gap is filled with channel 0. A
  /// position above 65535 stores nothing. S_OK; E_FAIL only when memory runs out.
  Status AddChannel(int channel, int position);
  /// Index of the first occurrence; -1 and E_FAIL without one.
  Status FindChannel(int channel, int& index) const;
  /// Removes the first occurrence of the channel NUMBER (not a position); E_FAIL without one.
  Status DeleteChannel(int channel);
  /// Empties the channel list only.
  Status DeleteAll();

  int GetNoOfChannels() const { return static_cast<int>(m_channels.size()); }
  /// The channel at that position, or -1.
  void GetChannelId(int index, int& channel) const;
  /// The channels by position, for walks over all of them.
  const std::vector<int>& Channels() const { return m_channels; }

  /// Characters that a value takes in hexadecimal, octal and binary. Decimal leaves `length`
  /// untouched: CInstrument::GetMaxDecStrLen knows it. S_OK always.
  Status GetTextLength(Radix radix, int& length) const;

  bool IsValid() const { return true; }
  /// Bytes in a setup file.
  std::uint64_t GetSize() const;
  Status Read(std::istream& stream);
  Status Read(CSetupFileReader& reader);
  Status Write(std::ostream& stream) const;
  Status Write(CByteWriter& writer) const;

  /// How values are gathered from and scattered to a block's rows; made at the first use after a
  /// change of the channel list, valid until the next one.
  const CGroupPlan& Plan() const {
    if (!m_plan) MakePlan();
    return *m_plan;
  }

  /// `list` counts the changes of name and channels from now on; null takes it away.
  void ReportTo(CRevision* list) { m_revision.ReportTo(list); }

 private:
  void MakePlan() const;

  std::string m_name;
  std::string m_channelNames;
  std::vector<int> m_channels;
  mutable std::unique_ptr<CGroupPlan> m_plan;
  CRevision m_revision;
};

inline std::string_view NameOf(const GROUP& group) { return group.GetGroupName(); }

}  // namespace quillpg
