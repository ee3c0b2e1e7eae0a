#pragma once

#include "program/waveform_rows.h"

namespace quillpg {

class CByteWriter;
class CEventHandler;
class CGroupManager;
class CInstrument;
class CSetupFileReader;
class CWaveformIndex;

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
  /// The row stays the manager's and may be written to; null and E_FAIL for a bad position. Readers
  /// take Row: a block whose rows were handed out no longer shares them with other blocks, and its
  /// look-ups walk them until the next UpdateWaveformList.
  Status GetWaveformData(int row, CWaveformData** data);
  /// For reading, valid until the rows change; null for a bad position.
  const CWaveformData* Row(int row) const { return m_rows->At(row); }
  /// Takes the row over on success only; E_FAIL for null.
  Status AddWaveformData(std::unique_ptr<CWaveformData>&& data);
  /// Adds the row of a channel (by user or default name) beside its group's rows, that of a group
  /// without its channels' rows, that of an inhibit control at the end; `value` becomes its
  /// reserved value. S_OK, with nothing added, for a row that exists and for an unknown channel or
  /// group; E_FAIL for an unknown inhibit control and a bad type. Blanks around the name do not
  /// count.
  Status AddWaveformData(const std::string& name, SelectWfmType type, int value);
  Status InsertWaveformData(int row, std::unique_ptr<CWaveformData>&& data);
  Status DeleteWaveformData(int first, int count);
  /// What was cut can still be pasted.
  Status DeleteAll();
  /// Removes the rows that stand under the instrument's group of that name, the group row last;
  /// E_FAIL when the instrument has no such group.
  Status DeleteGroup(const std::string& name);
  /// Removes the first channel row of that name; E_FAIL without one.
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
  /// S_OK when a row of that type bears the name: group rows bear the group's, the others the
  /// channel name. PG_E_NO_WAVEFORM_ROW without such a row.
  Status IsWaveformExists(const std::string& name, WaveType type) const;

  // --- editing rows: E_FAIL, with nothing changed, for rows that do not exist ---

  /// Takes the row out and keeps it for Paste; only the row cut last is kept.
  Status Cut(int row);
  /// E_FAIL when nothing was cut and when a row of its type and name exists already.
  Status CanPaste() const;
  /// Inserts a copy of the row that was cut before `row`, which must exist.
  Status Paste(int row);
  /// Despite its name it moves one row: that at `a` is taken out and inserted at `b` of the
  /// shortened list; the others keep their order (deliberate).
  Status Swap(int a, int b);
  /// Moves `count` rows from `first` on to `to` of the shortened list; beyond its end they come
  /// last.
  Status Move(int first, int to, int count);
  /// Exchange with the neighbour.
  Status MoveUp(int row);
  Status MoveDown(int row);
  /// Renames the group in every row that bears the old name, whatever its type. S_OK always.
  Status SetGroupName(const std::string& oldName, const std::string& newName);
  /// Renames the channel rows of that channel number; an empty name stands for the default name.
  /// S_OK also when there is none.
  Status SetChannelName(const std::string& name, int channel);
  /// 1 when the instrument has a group.
  int CanEnableAddWaveform() const;

  // --- look-ups between rows, groups and channels: E_FAIL for what does not exist ---

  /// The group name of a group row, else the channel name. Texts stay untouched on failure.
  Status GetWaveformName(int row, std::string& name) const;
  Status GetGroupName(int row, std::string& name) const;
  Status GetChannelName(int row, std::string& name) const;
  /// -1 for a row without group or channel (S_OK) and for a number that the instrument does not
  /// have (E_FAIL).
  Status GetGroupId(int row, int& group) const;
  Status GetChannelId(int row, int& channel) const;
  /// First channel row, first group row; -1 without one.
  Status GetRowFromChannel(int channel, int& row) const;
  Status GetRowFromChannel(const std::string& name, int& row) const;
  Status GetRowFromGroup(const std::string& name, int& row) const;

  // --- pattern data: in the order (block, ..., vector), unlike the instrument's ---

  /// The group's value; in hexadecimal, octal and binary a digit all of whose channels are
  /// inhibited reads Z, one of which some are reads ?. A fully inhibited top digit of fewer
  /// channels than the others reads ?, too (deliberate). E_FAIL without that group or block and for
  /// a bad radix.
  Status GetGroupData(int block, int groupIndex, int vector, Radix radix, std::string& text) const;
  /// Writes `count` vectors as CInstrument::SetGroupData and returns its status. Raises
  /// OnPatternDataChanged whatever that was, but not for a bad group index (deliberate).
  Status SetGroupData(int block, int groupIndex, int vector, Radix radix, const std::string& text,
                      int count);
  Status GetGroupTextLength(int groupIndex, Radix radix, int& length) const;
  /// 0, 1, or -1 for an inhibited channel.
  Status GetChannelData(int block, int channel, int vector, int& value) const;
  /// Raises OnPatternDataChanged whatever the instrument answered (deliberate).
  Status SetChannelData(int block, int channel, int vector, int value);
  /// Raises nothing (deliberate).
  Status SetChannelInhibitMask(int block, int channel, int vector, int mask);

  /// Bytes in a setup file.
  Status GetSize(std::uint64_t& size) const;
  Status Read(std::istream& stream);
  /// `lastRows` keeps the row list met last, which an equal one then shares; null for none.
  Status Read(CSetupFileReader& reader, WAVEFORM_ROWS_IMAGE* lastRows = nullptr);
  Status Write(std::ostream& stream) const;
  Status Write(CByteWriter& writer, WAVEFORM_ROWS_IMAGE* lastRows = nullptr) const;

 private:
  WAVEFORM_ROWS& OwnRows();
  std::shared_ptr<WAVEFORM_ROWS> MakeGroupRows() const;
  Status UpdateInhibitRows(const std::vector<INHIBIT_CONTROL>& controls);
  Status AppendInhibitRow(const INHIBIT_CONTROL& control);
  std::vector<INHIBIT_CONTROL> InhibitControls() const;
  int FindInhibitRow(std::string_view name) const;
  int Find(WaveType type, std::string_view name) const;
  CWaveformIndex& Index() const;
  Status AddGroupRow(const std::string& name, int value);
  Status AddChannelRow(const std::string& name, int value);
  Status AddInhibitRow(const std::string& name, int value);
  Status InsertRow(int position, const CWaveformData& row);
  int PlaceOfChannelRow(int group) const;
  int PlaceOfGroupRow(int group) const;
  int EndOfGroupRows() const;
  template <typename Visit>
  Status Rename(const WAVEFORM_RENAMING& renaming, Visit&& visit);
  void NotifyPatternData(int block) const;

  std::shared_ptr<WAVEFORM_ROWS> m_rows;            ///< never null; other blocks may share it
  std::unique_ptr<CWaveformData> m_cut;             ///< the row cut last; null when none was
  mutable std::unique_ptr<CWaveformIndex> m_index;  ///< of this block's rows, made when asked
  CInstrument* m_instrument = nullptr;
  CGroupManager* m_groupManager = nullptr;
  CEventHandler* m_eventHandler = nullptr;
};

}  // namespace quillpg
