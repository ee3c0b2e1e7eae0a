#include "program/waveform_manager.h"

#include "instrument/instrument.h"
#include "program/group_manager.h"
#include "program/waveform_index.h"

#include <algorithm>
#include <new>
#include <utility>

namespace quillpg {

CWaveformManager::CWaveformManager() : m_rows(std::make_shared<WAVEFORM_ROWS>()) {}

CWaveformManager::~CWaveformManager() = default;

Status CWaveformManager::Initialize(CInstrument* instrument) {
  if (!instrument) return E_FAIL;
  m_instrument = instrument;
  (void)instrument->GetGroupManager(&m_groupManager);
  return IsEmpty() ? UpdateWaveformList() : S_OK;
}

Status CWaveformManager::SetEventHandler(CEventHandler* handler) {
  m_eventHandler = handler;
  return S_OK;
}

// --- building rows ---

Status CWaveformManager::UpdateWaveformList() {
  if (!m_groupManager) return E_FAIL;
  return GuardAllocation([&] {
    WAVEFORM_ROW_CACHE& cache = m_groupManager->WaveformRows();
    ChannelMode mode = ChannelMode::Full;
    int modules = 0;
    (void)m_instrument->GetChannelMode(mode);
    (void)m_instrument->GetNoOfModules(modules);
    if (!cache.groupRows || cache.groupRevision != m_groupManager->Revision() ||
        cache.channelMode != mode || cache.modules != modules) {
      cache.groupRows = MakeGroupRows();
      cache.groupRevision = m_groupManager->Revision();
      cache.channelMode = mode;
      cache.modules = modules;
    }
    m_rows = cache.groupRows;
    return UpdateInhibitControlList();
  });
}

std::shared_ptr<WAVEFORM_ROWS> CWaveformManager::MakeGroupRows() const {
  auto rows = std::make_shared<WAVEFORM_ROWS>();
  int groups = 0;
  (void)m_groupManager->GetNoOfGroups(groups);
  for (int i = 0; i < groups; ++i) {
    GROUP* group = nullptr;
    if (Failed(m_groupManager->GetGroup(i, &group)) || group->GetNoOfChannels() == 0) continue;
    CWaveformData row;
    row.groupIndex = i;
    row.groupName = group->GetGroupName();
    row.waveType = WaveType::Group;
    (void)rows->Append(std::make_unique<CWaveformData>(row));
    row.waveType = WaveType::Channel;
    for (const int channel : group->Channels()) {
      row.channel = channel;
      row.channelName.clear();
      (void)m_instrument->GetChannelDefaultName(channel, row.channelName);
      (void)rows->Append(std::make_unique<CWaveformData>(row));
    }
  }
  return rows;
}

Status CWaveformManager::UpdateInhibitControlList() {
  if (!m_groupManager) return E_FAIL;
  return GuardAllocation([&] {
    WAVEFORM_ROW_CACHE& cache = m_groupManager->WaveformRows();
    std::vector<INHIBIT_CONTROL> controls = InhibitControls();
    const std::uint64_t revision = m_groupManager->Revision();
    if (cache.outdated == m_rows && cache.updateRevision == revision &&
        cache.controls == controls) {
      m_rows = cache.updated;
      return S_OK;
    }
    const std::shared_ptr<WAVEFORM_ROWS> shared = m_rows.use_count() > 1 ? m_rows : nullptr;
    const Status status = UpdateInhibitRows(controls);
    if (!Failed(status) && shared) {  // the next block need not do it again
      cache.outdated = shared;
      cache.updateRevision = revision;
      cache.controls = std::move(controls);
      cache.updated = m_rows;
    }
    return status;
  });
}

// Rows that stay keep their places.
Status CWaveformManager::UpdateInhibitRows(const std::vector<INHIBIT_CONTROL>& controls) {
  for (const INHIBIT_CONTROL& control : controls) {
    if (FindInhibitRow(control.name) >= 0) continue;
    const Status status = AppendInhibitRow(control);
    if (Failed(status)) return status;
  }
  for (int row = m_rows->Count() - 1; row >= 0; --row) {
    if (!IsInhibitControl(row)) continue;
    const std::string& name = m_rows->At(row)->channelName;
    const bool stays = std::ranges::any_of(
        controls, [&](const INHIBIT_CONTROL& control) { return EqualNoCase(control.name, name); });
    if (!stays) (void)OwnRows().Remove(row);
  }
  return S_OK;
}

Status CWaveformManager::AppendInhibitRow(const INHIBIT_CONTROL& control) {
  auto row = std::make_unique<CWaveformData>();
  row->channel = control.channel;
  row->channelName = control.name;
  row->waveType = WaveType::Inhibit;
  (void)m_groupManager->GetChannelGroup(control.channel, row->groupIndex);  // -1 for none
  (void)m_groupManager->GetGroupName(row->groupIndex, row->groupName);      // stays empty then
  return OwnRows().Append(std::move(row));
}

std::vector<INHIBIT_CONTROL> CWaveformManager::InhibitControls() const {
  int count = 0;
  if (m_instrument) (void)m_instrument->GetNoOfInhibitControls(count);
  std::vector<INHIBIT_CONTROL> controls(static_cast<std::size_t>(std::max(count, 0)));
  for (int i = 0; i < count; ++i) {
    INHIBIT_CONTROL& control = controls[static_cast<std::size_t>(i)];
    (void)m_instrument->GetInhibitControlAt(i, control.channel);
    (void)m_instrument->GetInhibitControlName(i, control.name);
  }
  return controls;
}

// The rows for a change: a list that others show too is copied first.
WAVEFORM_ROWS& CWaveformManager::OwnRows() {
  if (m_rows.use_count() > 1) {
    auto rows = std::make_shared<WAVEFORM_ROWS>();
    if (Failed(rows->CopyFrom(*m_rows))) throw std::bad_alloc();
    m_rows = std::move(rows);
  }
  return *m_rows;
}

// --- inhibit rows ---

Status CWaveformManager::AddInhibitControl(const std::string& name) {
  return GuardAllocation([&] {
    for (const INHIBIT_CONTROL& control : InhibitControls()) {
      if (!EqualNoCase(control.name, name)) continue;
      return FindInhibitRow(name) >= 0 ? S_OK : AppendInhibitRow(control);
    }
    return E_FAIL;
  });
}

int CWaveformManager::FindInhibitRow(std::string_view name) const {
  for (int row = 0; row < m_rows->Count(); ++row) {
    if (IsInhibitControl(row) && EqualNoCase(m_rows->At(row)->channelName, name)) return row;
  }
  return -1;
}

int CWaveformManager::IsInhibitControl(int row) const {
  return GetWaveType(row) == WaveType::Inhibit ? 1 : 0;
}

int CWaveformManager::IsInhibitControl(const std::string& name) const {
  int found = 0;
  (void)GuardAllocation([&] {
    found = static_cast<int>(std::ranges::any_of(
        InhibitControls(),
        [&](const INHIBIT_CONTROL& control) { return EqualNoCase(control.name, name); }));
    return S_OK;
  });
  return found;
}

int CWaveformManager::IsInhibitControlExists() const {
  const bool any =
      m_rows->Any([](const CWaveformData& row) { return row.waveType == WaveType::Inhibit; });
  return any ? 1 : 0;
}

int CWaveformManager::IsInhibitControlExists(int row) const { return IsInhibitControl(row); }

int CWaveformManager::IsInhibitControlExists(const std::string& name) const {
  return Find(WaveType::Inhibit, name) >= 0 ? 1 : 0;
}

Status CWaveformManager::GetInhibitControlData(int row, CWaveformData& data) const {
  if (!IsInhibitControl(row)) return E_FAIL;
  return GuardAllocation([&] {
    data = *m_rows->At(row);
    return S_OK;
  });
}

Status CWaveformManager::GetInhibitControlData(const std::string& name, CWaveformData& data) const {
  return GetInhibitControlData(Find(WaveType::Inhibit, name), data);
}

// --- the list of rows ---

Status CWaveformManager::UpdateGroupInfo() { return S_OK; }

Status CWaveformManager::UpdateGroupSize(const std::string& /*name*/, int /*oldSize*/,
                                         int /*newSize*/) {
  return S_OK;
}

Status CWaveformManager::GetNoOfRows(int& count) const {
  count = m_rows->Count();
  return S_OK;
}

Status CWaveformManager::GetNoOfWaveData(int& count) const { return GetNoOfRows(count); }

int CWaveformManager::IsEmpty() const { return m_rows->Count() == 0 ? 1 : 0; }

Status CWaveformManager::GetWaveformData(int row, CWaveformData** data) {
  if (!data) return E_FAIL;
  *data = nullptr;
  if (!m_rows->At(row)) return E_FAIL;
  return GuardAllocation([&] {
    *data = OwnRows().At(row);  // the caller may change it
    Index().HandedOut(m_rows);
    return S_OK;
  });
}

Status CWaveformManager::AddWaveformData(std::unique_ptr<CWaveformData>&& data) {
  return InsertWaveformData(m_rows->Count(), std::move(data));
}

Status CWaveformManager::InsertWaveformData(int row, std::unique_ptr<CWaveformData>&& data) {
  return GuardAllocation([&] { return OwnRows().Insert(row, std::move(data)); });
}

Status CWaveformManager::DeleteWaveformData(int first, int count) {
  return GuardAllocation([&] { return OwnRows().Remove(first, count); });
}

Status CWaveformManager::DeleteAll() {
  return GuardAllocation([&] {
    m_rows = std::make_shared<WAVEFORM_ROWS>();
    return S_OK;
  });
}

WaveType CWaveformManager::GetWaveType(int row) const {
  const CWaveformData* data = m_rows->At(row);
  return data ? data->waveType : WaveType::NoRow;
}

int CWaveformManager::IsChannelRow(int row) const {
  return GetWaveType(row) == WaveType::Group ? 0 : 1;
}

}  // namespace quillpg
