#pragma once

#include "program/waveform_rows.h"

namespace quillpg {

class CEventHandler;
class CGroupManager;
class CInstrument;

/// The rows of one block's waveform grid: a row for each group that has channels, one for each of
/// its channels, one for each inhibit control. Block arguments are positions in the block manager.
class QUILLPG_API CWaveformManager {
 public:
  CWaveformManager();
  CWaveformManager(const CWaveformManager&) = delete;
  CWaveformManager& operator=(const CWaveformManager&) = delete;
  ~CWaveformManager();

  /// Stores the instrument and its group manager and builds the rows when there are none. E_FAIL
  /// for null. The group manager may be changed between a call and the next: rows are only rebuilt
  /// by UpdateWaveformList.
  Status Initialize(CInstrument* instrument);
  Status SetEventHandler(CEventHandler* handler);

  // --- rows ---

  /// Rebuilds all rows from the instrument's groups; groups without channels get none.
  Status UpdateWaveformList();
  /// Appends a row for each inhibit control that has none and removes those whose control is gone.
  Status UpdateInhibitControlList();
  /// E_FAIL when the instrument has no such control; S_OK when its row exists already.
  Status AddInhibitControl(const std::string& name);
  /// Deliberately empty hooks; S_OK.
  Status UpdateGroupInfo();
  Status UpdateGroupSize(const std::string& name, int oldSize, int newSize);

  Status GetNoOfRows(int& count) const;
  Status GetNoOfWaveData(int& count) const;
  int IsEmpty() const;
  /// The row stays the manager's; null and E_FAIL for a bad position.
  Status GetWaveformData(int row, CWaveformData** data);
  /// Takes the row over on success only; E_FAIL for null.
  Status AddWaveformData(std::unique_ptr<CWaveformData>&& data);
  Status AddWaveformData(const std::string& name, SelectWfmType type, int value);
  Status InsertWaveformData(int row, std::unique_ptr<CWaveformData>&& data);
  Status DeleteWaveformData(int first, int count);
  Status DeleteAll();
  Status DeleteGroup(const std::string& name);
  Status DeleteChannel(const std::string& name);

  /// NoRow for a position that holds none.
  WaveType GetWaveType(int row) const;
  /// 1 unless the row is a group row: inhibit rows and missing ones count as channel rows.
  int IsChannelRow(int row) const;
  int IsInhibitControl(int row) const;
  /// 1 when the instrument has a control of that name.
  int IsInhibitControl(const std::string& name) const;
  /// 1 when there is any inhibit row, one at that position, one of that name.
  int IsInhibitControlExists() const;
  int IsInhibitControlExists(int row) const;
  int IsInhibitControlExists(const std::string& name) const;
  /// Copies the inhibit row; E_FAIL without one.
  Status GetInhibitControlData(int row, CWaveformData& data) const;
  Status GetInhibitControlData(const std::string& name, CWaveformData& data) const;
  /// PG_E_NO_WAVEFORM_ROW without such a row.
  Status IsWaveformExists(const std::string& name, WaveType type) const;

  // --- editing rows ---

  Status Cut(int row);
  Status CanPaste() const;
  Status Paste(int row);
  /// Despite its name it moves the row at `a` to `b` (deliberate).
  Status Swap(int a, int b);
  Status Move(int first, int to, int count);
  Status MoveUp(int row);
  Status MoveDown(int row);
  Status SetGroupName(const std::string& oldName, const std::string& newName);
  Status SetChannelName(const std::string& name, int channel);
  /// 1 when the instrument has a group.
  int CanEnableAddWaveform() const;

  // --- look-ups; a missing row reads as -1 ---

  Status GetWaveformName(int row, std::string& name) const;
  Status GetGroupId(int row, int& group) const;
  Status GetGroupName(int row, std::string& name) const;
  Status GetChannelId(int row, int& channel) const;
  Status GetChannelName(int row, std::string& name) const;
  Status GetRowFromChannel(int channel, int& row) const;
  Status GetRowFromChannel(const std::string& name, int& row) const;
  Status GetRowFromGroup(const std::string& name, int& row) const;

  // --- pattern data ---

  /// The group's value with inhibited digits marked Z and partly inhibited ones ?.
  Status GetGroupData(int block, int groupIndex, int vector, Radix radix, std::string& text) const;
  Status SetGroupData(int block, int groupIndex, int vector, Radix radix, const std::string& text,
                      int count);
  Status GetGroupTextLength(int groupIndex, Radix radix, int& length) const;
  /// -1 for an inhibited channel.
  Status GetChannelData(int block, int channel, int vector, int& value) const;
  Status SetChannelData(int block, int channel, int vector, int value);
  Status SetChannelInhibitMask(int block, int channel, int vector, int mask);

  /// Bytes in a setup file.
  Status GetSize(std::uint64_t& size) const;
  Status Read(std::istream& stream);
  Status Write(std::ostream& stream) const;

 private:
  WAVEFORM_ROWS& OwnRows();
  std::shared_ptr<WAVEFORM_ROWS> MakeGroupRows() const;
  Status UpdateInhibitRows(const std::vector<INHIBIT_CONTROL>& controls);
  Status AppendInhibitRow(const INHIBIT_CONTROL& control);
  std::vector<INHIBIT_CONTROL> InhibitControls() const;
  int FindInhibitRow(std::string_view name) const;

  std::shared_ptr<WAVEFORM_ROWS> m_rows;  ///< never null; other blocks may share it
  CInstrument* m_instrument = nullptr;
  CGroupManager* m_groupManager = nullptr;
  CEventHandler* m_eventHandler = nullptr;
};

}  // namespace quillpg
