#pragma once

#include "base/name_index.h"
#include "base/ordered_list.h"
#include "program/group.h"
#include "program/program_manager.h"
#include "program/waveform_rows.h"

namespace quillpg {

class CByteWriter;
class CSetupFileReader;

/// The groups of an instrument, in display order. Names are trimmed on the way in and unique
/// without regard to case, as long as nobody renames a GROUP itself. A slot may be empty after an
/// insert beyond the end. Adding, inserting, setting and deleting bring the listing states of all
/// blocks up to date.
class QUILLPG_API CGroupManager : public CProgramManager {
 public:
  CGroupManager();
  ~CGroupManager() override;
  /// Copying and assigning empty the target and copy nothing: deliberate, a manager is never
  /// duplicated this way.
  CGroupManager(const CGroupManager& other);
  CGroupManager& operator=(const CGroupManager& other);

  /// Number of slots, empty ones included.
  Status GetNoOfGroups(int& count) const;
  /// Replaces `names` by the names of the non-empty slots.
  Status GetGroupNames(std::vector<std::string>& names) const;
  /// The group stays the manager's; null and E_FAIL for a bad index, an empty slot, an unknown
  /// name.
  Status GetGroup(int index, GROUP** group) const;
  Status GetGroup(const std::string& name, GROUP** group) const;
  Status GetGroupName(int index, std::string& name) const;

  /// First group of that name, which is trimmed; -1 and E_FAIL without one.
  Status FindGroup(const std::string& name, int& index) const;
  /// The same untrimmed, but S_OK with -1 when no group matches; E_FAIL only when it meets an empty
  /// slot before a match (deliberate).
  Status GetGroupPos(const std::string& name, int& index) const;
  /// Groups of exactly that name (untrimmed); 0 and E_FAIL for an empty name.
  Status CountGroups(const std::string& name, int& count) const;

  /// 1 for a group without channels; 1 and E_FAIL when there is no such group.
  Status IsGroupEmpty(const std::string& name, int& empty) const;
  /// PG_E_NO_GROUP for an unknown name.
  Status GetNoOfChannels(const std::string& name, int& count) const;
  Status GetProbeChannelNames(const std::string& name, std::string& text) const;
  /// As GROUP::GetTextLength; E_FAIL without that group.
  Status GetGroupTextLength(int index, Radix radix, int& length) const;
  Status GetGroupTextLength(const std::string& name, Radix radix, int& length) const;

  /// Appends a group without channels. E_FAIL for an empty name, PG_E_NAME_USED for a known one.
  Status AddGroup(const std::string& name);
  /// Inserts before `position`, filling a gap beyond the end with empty slots. Unlike AddGroup it
  /// accepts an empty name and answers E_FAIL for a known one (deliberate). Positions 0 to 65535.
  Status InsertGroup(int position, const std::string& name);
  /// Trims the name of `group` in place and assigns it (name only, the channels are emptied).
  /// E_FAIL when another group has the name or there is none at `index`.
  Status SetGroup(int index, GROUP* group);
  /// Renames, also the group's state in every block; raises OnGroupRenamed. PG_E_NAME_USED when any
  /// group, this one included, has the name: a mere change of case is refused (deliberate). E_FAIL
  /// for an empty name and, looked at last, without a group at `index`.
  Status SetGroupName(int index, const std::string& newName);
  /// Raises OnGroupDeleted while the group still exists. E_FAIL without one.
  Status DeleteGroup(int index);
  /// Deletes one by one, so that every group is announced.
  Status DeleteAllGroups();
  /// Destroys all groups silently; listing states stay as they are.
  Status DeleteAll();
  /// Four groups "UserGrp1" to "UserGrp4" over pods A to D of the first module.
  Status Default();

  /// S_OK when every named group exists and has that many channels (decimal text), else
  /// PG_E_GROUPING.
  Status CheckGrouping(const std::vector<std::string>& names,
                       const std::vector<std::string>& sizes) const;
  /// Replaces all groups by the named ones, after asking the user, unless they match already;
  /// PG_E_ABORTED when declined. Channels are handed out from channel 0 up; when they run out the
  /// remaining names are not created and the answer is still S_OK (deliberate).
  Status CreateGroups(const std::vector<std::string>& names, const std::vector<std::string>& sizes);

  /// First group that holds the channel; -1 and E_FAIL without one.
  Status GetChannelGroup(int channel, int& index) const;
  /// S_OK always. A channel that sits in two groups is reported by the earlier one.
  Status GetChannelSelectionStatus(int channel, const std::string& groupName,
                                   ChannelSelection& status) const;
  /// Name of a run of eight channels ("A1", merged "2A1"). S_OK always.
  Status GetSectionName(int section, std::string& name) const;

  /// Counts the changes of the list, of the names in it and of the groups' channels.
  std::uint64_t Revision() const { return m_groups.Revision(); }

  /// Name under which the blocks hold the listing states of `group`: its own, but still the old one
  /// while the front end is told of a new one.
  std::string_view StateName(const GROUP& group) const;

  /// Rows that the blocks' waveform layers share.
  WAVEFORM_ROW_CACHE& WaveformRows() { return m_waveformRows; }

  /// Bytes in a setup file.
  Status GetSize(std::uint64_t& size) const;
  Status Read(std::istream& stream);
  Status Read(CSetupFileReader& reader);
  Status Write(std::ostream& stream) const;
  Status Write(CByteWriter& writer) const;

 private:
  /// First group of the trimmed name, or -1.
  int Find(std::string_view name) const;
  Status IndexNames() const;
  Status Insert(int position, std::string_view name);
  void RenameGroupStates(const std::string& oldName, const std::string& newName) const;
  void UpdateListingState() const;
  void AppendPlaceholders(int count);
  Status AnnounceDeleted(int index) const;
  Status AnnounceAllDeleted() const;
  void FillGroup(GROUP& group, int first, int count) const;

  COrderedList<GROUP> m_groups;
  /// The names as of m_indexedRevision; group text is asked for by name, cell after cell.
  mutable CNameIndex m_nameIndex;
  mutable std::uint64_t m_indexedRevision = 0;
  mutable int m_lastFound = -1;
  WAVEFORM_ROW_CACHE m_waveformRows;
  /// While the front end is told of its new name: the group and its old one.
  const GROUP* m_renamed = nullptr;
  std::string_view m_oldName;
};

}  // namespace quillpg
