#include "instrument/instrument.h"
#include "program/group_manager.h"
#include "program/waveform_index.h"
#include "program/waveform_manager.h"

#include <utility>

// Adding, removing, moving and renaming rows.

namespace quillpg {

// --- adding rows by name ---

Status CWaveformManager::AddWaveformData(const std::string& name, SelectWfmType type, int value) {
  if (!m_groupManager) return E_FAIL;
  return GuardAllocation([&] {
    const std::string trimmed(Trim(name));
    switch (type) {
      case SelectWfmType::Group:
        return AddGroupRow(trimmed, value);
      case SelectWfmType::Channel:
        return AddChannelRow(trimmed, value);
      case SelectWfmType::Inhibit:
        return AddInhibitRow(trimmed, value);
      default:
        return E_FAIL;
    }
  });
}

Status CWaveformManager::AddGroupRow(const std::string& name, int value) {
  CWaveformData row;
  if (Failed(m_groupManager->FindGroup(name, row.groupIndex))) return S_OK;
  if (Find(WaveType::Group, name) >= 0) return S_OK;
  (void)m_groupManager->GetGroupName(row.groupIndex, row.groupName);
  row.reserved = value;
  row.waveType = WaveType::Group;
  return InsertRow(PlaceOfGroupRow(row.groupIndex), row);
}

Status CWaveformManager::AddChannelRow(const std::string& name, int value) {
  CWaveformData row;
  if (Failed(m_instrument->GetChannelId(name, row.channel))) return S_OK;
  (void)m_instrument->GetChannelDefaultName(row.channel, row.channelName);
  if (Find(WaveType::Channel, row.channelName) >= 0) return S_OK;
  (void)m_groupManager->GetChannelGroup(row.channel, row.groupIndex);  // -1 for none
  (void)m_groupManager->GetGroupName(row.groupIndex, row.groupName);   // stays empty then
  row.reserved = value;
  row.waveType = WaveType::Channel;
  return InsertRow(PlaceOfChannelRow(row.groupIndex), row);
}

Status CWaveformManager::AddInhibitRow(const std::string& name, int value) {
  if (Find(WaveType::Inhibit, name) >= 0) return AddInhibitControl(name);
  const Status status = AddInhibitControl(name);
  if (!Failed(status)) OwnRows().At(m_rows->Count() - 1)->reserved = value;
  return status;
}

Status CWaveformManager::InsertRow(int position, const CWaveformData& row) {
  return OwnRows().Insert(position, std::make_unique<CWaveformData>(row));
}

// After the last row of the group; without one where its rows would begin.
int CWaveformManager::PlaceOfChannelRow(int group) const {
  if (group < 0) return EndOfGroupRows();
  for (int row = m_rows->Count(); row-- > 0;) {
    const CWaveformData* data = m_rows->At(row);
    if (data && data->waveType != WaveType::Inhibit && data->groupIndex == group) return row + 1;
  }
  return PlaceOfGroupRow(group);
}

// Before the first row of that group or a later one; inhibit rows do not count.
int CWaveformManager::PlaceOfGroupRow(int group) const {
  for (int row = 0; row < m_rows->Count(); ++row) {
    const CWaveformData* data = m_rows->At(row);
    if (data && data->waveType != WaveType::Inhibit && data->groupIndex >= group) return row;
  }
  return EndOfGroupRows();
}

int CWaveformManager::EndOfGroupRows() const {
  for (int row = m_rows->Count(); row-- > 0;) {
    const CWaveformData* data = m_rows->At(row);
    if (data && data->waveType != WaveType::Inhibit) return row + 1;
  }
  return 0;
}

// --- removing rows ---

Status CWaveformManager::DeleteGroup(const std::string& name) {
  int index = -1;
  if (!m_groupManager || Failed(m_groupManager->FindGroup(name, index))) return E_FAIL;
  return GuardAllocation([&] {
    const std::string group(Trim(name));  // the name may be a row's own
    for (const WaveType type : {WaveType::Channel, WaveType::Group}) {
      for (int row = m_rows->Count(); row-- > 0;) {
        const CWaveformData* data = m_rows->At(row);
        const bool goes = data && data->waveType == type && EqualNoCase(data->groupName, group);
        if (goes) (void)OwnRows().Remove(row);
      }
    }
    return S_OK;
  });
}

Status CWaveformManager::DeleteChannel(const std::string& name) {
  const int row = Find(WaveType::Channel, name);
  return row < 0 ? E_FAIL : DeleteWaveformData(row, 1);
}

// --- cut and paste ---

Status CWaveformManager::Cut(int row) {
  if (!Row(row)) return E_FAIL;
  return GuardAllocation([&] {
    auto cut = std::make_unique<CWaveformData>(*Row(row));
    const Status status = OwnRows().Remove(row);
    if (!Failed(status)) m_cut = std::move(cut);
    return status;
  });
}

Status CWaveformManager::CanPaste() const {
  if (!m_cut) return E_FAIL;
  const std::string& name =
      m_cut->waveType == WaveType::Group ? m_cut->groupName : m_cut->channelName;
  return Find(m_cut->waveType, name) < 0 ? S_OK : E_FAIL;
}

Status CWaveformManager::Paste(int row) {
  if (!m_rows->Holds(row) || Failed(CanPaste())) return E_FAIL;
  return GuardAllocation([&] { return InsertRow(row, *m_cut); });
}

// --- moving ---

Status CWaveformManager::Swap(int a, int b) {
  if (!Row(a) || !Row(b)) return E_FAIL;
  return GuardAllocation([&] { return OwnRows().Move(a, b, 1); });
}

Status CWaveformManager::Move(int first, int to, int count) {
  if (to < 0 || !m_rows->HoldsRange(first, count)) return E_FAIL;
  for (int row = first; row < first + count; ++row) {
    if (!Row(row)) return E_FAIL;
  }
  return GuardAllocation([&] { return OwnRows().Move(first, to, count); });
}

Status CWaveformManager::MoveUp(int row) {
  if (row < 1 || !m_rows->Holds(row)) return E_FAIL;
  return GuardAllocation([&] { return OwnRows().MoveUp(row); });
}

Status CWaveformManager::MoveDown(int row) {
  if (!m_rows->HoldsRange(row, 2)) return E_FAIL;
  return GuardAllocation([&] { return OwnRows().MoveDown(row); });
}

// --- renaming ---

Status CWaveformManager::SetGroupName(const std::string& oldName, const std::string& newName) {
  return GuardAllocation([&] {
    const WAVEFORM_RENAMING names{.oldName = oldName,
                                  .newName = newName};  // they may be a row's own
    return Rename(names, [&names](CWaveformData& row, bool rename) {
      if (!EqualNoCase(row.groupName, names.oldName)) return false;
      if (rename) row.groupName = names.newName;
      return true;
    });
  });
}

Status CWaveformManager::SetChannelName(const std::string& name, int channel) {
  return GuardAllocation([&] {
    std::string newName = name;
    if (name.empty() && m_instrument) (void)m_instrument->GetChannelDefaultName(channel, newName);
    const WAVEFORM_RENAMING names{
        .type = WaveType::Channel, .channel = channel, .newName = newName};
    return Rename(names, [&](CWaveformData& row, bool rename) {
      if (row.waveType != WaveType::Channel || row.channel != channel) return false;
      if (rename) row.channelName = newName;
      return true;
    });
  });
}

// Calls `visit(row, false)` to learn whether a row is to be renamed and `visit(row, true)` to do
// it. Front ends rename block after block: blocks that share their rows go on sharing them.
template <typename Visit>
Status CWaveformManager::Rename(const WAVEFORM_RENAMING& renaming, Visit&& visit) {
  WAVEFORM_ROW_CACHE* cache = m_groupManager ? &m_groupManager->WaveformRows() : nullptr;
  if (cache && cache->misnamed == m_rows && cache->renaming == renaming) {
    m_rows = cache->renamed;
    return S_OK;
  }
  const std::shared_ptr<WAVEFORM_ROWS> shared = m_rows.use_count() > 1 ? m_rows : nullptr;
  for (int row = 0; row < m_rows->Count(); ++row) {
    if (m_rows->At(row) && visit(*m_rows->At(row), false)) (void)visit(*OwnRows().At(row), true);
  }
  if (m_index) m_index->Renamed();
  if (cache && shared && m_rows != shared) {
    cache->misnamed = shared;
    cache->renaming = renaming;
    cache->renamed = m_rows;
  }
  return S_OK;
}

int CWaveformManager::CanEnableAddWaveform() const {
  int groups = 0;
  if (m_groupManager) (void)m_groupManager->GetNoOfGroups(groups);
  return groups > 0 ? 1 : 0;
}

}  // namespace quillpg
