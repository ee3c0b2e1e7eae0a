#include "program/group_manager.h"

#include "app/setup_stream.h"
#include "base/setup_file_list.h"
#include "base/text.h"
#include "instrument/instrument.h"
#include "program/block_manager.h"
#include "quillpg/event_handler.h"

#include <utility>

namespace quillpg {

namespace {

// Of all channel-names texts that a file of an old version makes: what an instrument of five
// modules with the longest names needs is far below.
constexpr std::size_t kMostRebuiltBytes = std::size_t{1} << 20;

}  // namespace

CGroupManager::CGroupManager() = default;

CGroupManager::~CGroupManager() = default;

CGroupManager::CGroupManager(const CGroupManager& /*other*/) : CProgramManager() {}

CGroupManager& CGroupManager::operator=(const CGroupManager& other) {
  if (this != &other) (void)DeleteAll();  // deliberate: nothing is copied
  return *this;
}

// --- look-ups ---

int CGroupManager::Find(std::string_view name) const {
  const bool indexed = m_indexedRevision == m_groups.Revision();
  // A column is asked for cell after cell: the group of the last call is tried first. It was the
  // first of its name and still is, since the names are those of the index.
  if (const GROUP* last = indexed ? m_groups.At(m_lastFound) : nullptr) {
    if (last->GetGroupName() == name) return m_lastFound;
  }
  name = Trim(name);
  if (name.empty()) return m_groups.Find(name);  // the index knows no empty names
  if (!indexed && Failed(GuardAllocation([&] { return IndexNames(); }))) {
    return m_groups.Find(name);
  }
  m_lastFound = m_nameIndex.First(name);
  return m_lastFound;
}

Status CGroupManager::IndexNames() const {
  m_lastFound = -1;
  m_nameIndex.Clear(m_groups.Count());
  for (int i = 0; i < m_groups.Count(); ++i) {
    if (const GROUP* group = m_groups.At(i)) m_nameIndex.Add(group->GetGroupName(), i);
  }
  m_indexedRevision = m_groups.Revision();
  return S_OK;
}

Status CGroupManager::GetNoOfGroups(int& count) const {
  count = m_groups.Count();
  return S_OK;
}

Status CGroupManager::GetGroupNames(std::vector<std::string>& names) const {
  return GuardAllocation([&] {
    names.clear();
    m_groups.ForEach([&names](const GROUP& group) { names.push_back(group.GetGroupName()); });
    return S_OK;
  });
}

Status CGroupManager::GetGroup(int index, GROUP** group) const {
  if (!group) return E_FAIL;
  *group = m_groups.At(index);
  return *group ? S_OK : E_FAIL;
}

Status CGroupManager::GetGroup(const std::string& name, GROUP** group) const {
  return GetGroup(Find(name), group);
}

Status CGroupManager::GetGroupName(int index, std::string& name) const {
  const GROUP* group = m_groups.At(index);
  return group ? StoreText(name, group->GetGroupName()) : E_FAIL;
}

Status CGroupManager::FindGroup(const std::string& name, int& index) const {
  index = Find(name);
  return index < 0 ? E_FAIL : S_OK;
}

Status CGroupManager::GetGroupPos(const std::string& name, int& index) const {
  index = -1;
  for (int i = 0; i < m_groups.Count(); ++i) {
    const GROUP* group = m_groups.At(i);
    if (!group) return E_FAIL;
    if (EqualNoCase(group->GetGroupName(), name)) {
      index = i;
      break;
    }
  }
  return S_OK;
}

Status CGroupManager::CountGroups(const std::string& name, int& count) const {
  count = name.empty() ? 0 : m_groups.CountNamed(name);
  return name.empty() ? E_FAIL : S_OK;
}

Status CGroupManager::IsGroupEmpty(const std::string& name, int& empty) const {
  empty = 1;
  const GROUP* group = m_groups.At(Find(name));
  if (!group) return E_FAIL;
  empty = group->GetNoOfChannels() == 0 ? 1 : 0;
  return S_OK;
}

Status CGroupManager::GetNoOfChannels(const std::string& name, int& count) const {
  const GROUP* group = m_groups.At(Find(name));
  if (!group) return PG_E_NO_GROUP;
  count = group->GetNoOfChannels();
  return S_OK;
}

Status CGroupManager::GetProbeChannelNames(const std::string& name, std::string& text) const {
  const GROUP* group = m_groups.At(Find(name));
  return group ? StoreText(text, group->GetChannelNames()) : PG_E_NO_GROUP;
}

Status CGroupManager::GetGroupTextLength(int index, Radix radix, int& length) const {
  const GROUP* group = m_groups.At(index);
  return group ? group->GetTextLength(radix, length) : E_FAIL;
}

Status CGroupManager::GetGroupTextLength(const std::string& name, Radix radix, int& length) const {
  return GetGroupTextLength(Find(name), radix, length);
}

Status CGroupManager::GetChannelGroup(int channel, int& index) const {
  int unused = -1;
  for (index = 0; index < m_groups.Count(); ++index) {
    const GROUP* group = m_groups.At(index);
    if (group && !Failed(group->FindChannel(channel, unused))) return S_OK;
  }
  index = -1;
  return E_FAIL;
}

Status CGroupManager::GetChannelSelectionStatus(int channel, const std::string& groupName,
                                                ChannelSelection& status) const {
  status = ChannelSelection::InNoGroup;
  int holder = -1;
  if (!Failed(GetChannelGroup(channel, holder))) {
    status =
        holder == Find(groupName) ? ChannelSelection::InThisGroup : ChannelSelection::InOtherGroup;
  }
  return S_OK;
}

// --- changes ---

Status CGroupManager::AddGroup(const std::string& name) {
  const std::string_view trimmed = Trim(name);
  if (trimmed.empty()) return E_FAIL;
  if (Find(trimmed) >= 0) return PG_E_NAME_USED;
  return Insert(m_groups.Count(), trimmed);
}

Status CGroupManager::InsertGroup(int position, const std::string& name) {
  const std::string_view trimmed = Trim(name);
  // Deliberate: an empty name passes, and a known one is not reported as AddGroup does.
  if (!trimmed.empty() && Find(trimmed) >= 0) return E_FAIL;
  return Insert(position, trimmed);
}

Status CGroupManager::Insert(int position, std::string_view name) {
  const bool appendToIndex =
      position == m_groups.Count() && m_indexedRevision == m_groups.Revision();
  const Status status = GuardAllocation([&] {
    auto group = std::make_unique<GROUP>();
    const Status named = group->SetGroupName(std::string(name));
    return Failed(named) ? named : m_groups.Insert(position, std::move(group));
  });
  if (Failed(status)) return status;
  if (appendToIndex) {
    (void)GuardAllocation([&] {  // out of memory: the index is built anew at the next look-up
      m_nameIndex.Add(m_groups.At(position)->GetGroupName(), position);
      m_indexedRevision = m_groups.Revision();
      return S_OK;
    });
  }
  UpdateListingState();
  return S_OK;
}

Status CGroupManager::SetGroup(int index, GROUP* group) {
  if (!group) return E_FAIL;
  const Status status = GuardAllocation([&] {
    const std::string name(Trim(group->GetGroupName()));
    if (name != group->GetGroupName()) (void)group->SetGroupName(name);
    GROUP* target = m_groups.At(index);
    if (!target || m_groups.IsNamedElsewhere(name, index)) return E_FAIL;
    *target = *group;
    return S_OK;
  });
  if (!Failed(status)) UpdateListingState();
  return status;
}

Status CGroupManager::SetGroupName(int index, const std::string& newName) {
  return GuardAllocation([&] {
    const std::string name(Trim(newName));
    if (name.empty()) return E_FAIL;
    if (Find(name) >= 0) return PG_E_NAME_USED;
    GROUP* group = m_groups.At(index);
    if (!group) return E_FAIL;
    const auto id = m_groups.IdAt(index);
    const std::string oldName = group->GetGroupName();
    const Status status = group->SetGroupName(name);
    if (Failed(status)) return status;
    const bool outermost = !m_renamed;
    if (outermost) {
      m_renamed = group;
      m_oldName = oldName;
    }
    const Status told =
        Tell([&](CEventHandler& handler) { handler.OnGroupRenamed(oldName, name); });
    if (Failed(told)) return told;
    if (outermost) m_renamed = nullptr;
    // The front end may have renamed it once more, or deleted it.
    group = m_groups.At(m_groups.PositionOf(id, index));
    if (group) {
      RenameGroupStates(oldName, group->GetGroupName());
    } else {
      UpdateListingState();
    }
    return S_OK;
  });
}

std::string_view CGroupManager::StateName(const GROUP& group) const {
  return &group == m_renamed ? m_oldName : std::string_view(group.GetGroupName());
}

void CGroupManager::RenameGroupStates(const std::string& oldName,
                                      const std::string& newName) const {
  CBlockManager* blocks = nullptr;
  if (!Instrument() || Failed(Instrument()->GetBlockManager(&blocks)) || !blocks) return;
  int count = 0;
  (void)blocks->GetNoOfBlocks(count);
  for (int i = 0; i < count; ++i) {
    BLOCK* block = nullptr;
    GROUP_STATE* state = nullptr;
    (void)blocks->GetBlock(i, &block);
    if (block && block->GetGroupState(oldName, &state)) (void)state->SetGroupName(newName);
  }
}

Status CGroupManager::DeleteGroup(int index) {
  const GROUP* group = m_groups.At(index);
  if (!group) return E_FAIL;
  const auto id = m_groups.IdAt(index);
  const Status told = AnnounceDeleted(index);
  if (Failed(told)) return told;
  (void)m_groups.Remove(m_groups.PositionOf(id, index));  // the handler may have deleted it
  UpdateListingState();
  return S_OK;
}

Status CGroupManager::DeleteAllGroups() {
  for (int left = m_groups.Count(); left > 0 && m_groups.Count() > 0; --left) {
    // An empty slot goes silently.
    const Status status = m_groups.At(0) ? DeleteGroup(0) : m_groups.Remove(0);
    if (Failed(status)) return status;
  }
  return S_OK;
}

Status CGroupManager::AnnounceDeleted(int index) const {
  return GuardAllocation([&] {
    const GROUP* group = m_groups.At(index);
    const std::string name = group->GetGroupName();  // the handler may delete the group
    return Tell([&](CEventHandler& handler) { handler.OnGroupDeleted(name); });
  });
}

Status CGroupManager::DeleteAll() {
  m_groups.Clear();
  return S_OK;
}

void CGroupManager::UpdateListingState() const {
  if (Instrument()) (void)Instrument()->UpdateListingState();  // S_OK always
}

// --- setup file ---

Status CGroupManager::GetSize(std::uint64_t& size) const {
  size = 4 + m_groups.SizeOfAll();
  return S_OK;
}

Status CGroupManager::Read(std::istream& stream) { return ReadFromStream(stream, *this); }
Status CGroupManager::Write(std::ostream& stream) const { return WriteToStream(stream, *this); }

Status CGroupManager::Read(CSetupFileReader& reader) {
  (void)DeleteAll();
  const Status status = GuardAllocation([&] {
    int count = 0;
    LayOutList(reader, GROUP_LIST.count, GROUP_LIST.record, GROUP_LIST.leastBytes, count,
               [&](int index) {
                 // A count that the file cannot be held against may lie.
                 const bool bounded = reader.Remaining() != CByteReader::UNKNOWN;
                 AppendPlaceholders(bounded ? count : index + 1);
                 (void)m_groups.At(index)->Read(reader);
               });
    if (reader.Form().rebuildsNames && Instrument()) {
      std::size_t room = kMostRebuiltBytes;
      m_groups.ForEach([&](GROUP& group) {
        Instrument()->RebuildChannelNames(group, room);
        room -= group.GetChannelNames().size();
      });
    }
    return S_OK;
  });
  if (Failed(status)) reader.Refuse(GROUP_LIST.record);
  if (!reader.Form().replacesBlocks) UpdateListingState();
  return reader.GetStatus();
}

// All groups exist, under names of their own, before the first record is read.
void CGroupManager::AppendPlaceholders(int count) {
  for (int i = m_groups.Count(); i < count; ++i) {
    auto group = std::make_unique<GROUP>();
    (void)group->SetGroupName(FormatText("UserGrp%d", {i}));
    m_groups.AppendRead(std::move(group));
  }
}

Status CGroupManager::Write(CByteWriter& writer) const {
  return WriteRecords(writer, GROUP_LIST, m_groups);
}

}  // namespace quillpg
