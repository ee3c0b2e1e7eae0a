#include "instrument/instrument.h"
#include "program/group_manager.h"
#include "program/waveform_index.h"
#include "program/waveform_manager.h"
#include "quillpg/event_handler.h"

// Looking rows up, and the pattern data behind them.

namespace quillpg {

namespace {

// The mask digit of a whole digit of inhibited channels; decimal digits belong to no channels.
char FullDigit(Radix radix) {
  switch (radix) {
    case Radix::Hex:
      return 'F';
    case Radix::Octal:
      return '7';
    default:
      return '1';
  }
}

// Both texts come from the same group in the same radix; a missing mask digit marks nothing.
void MarkInhibited(const std::string& mask, Radix radix, std::string& text) {
  const char full = FullDigit(radix);
  for (std::size_t i = 0; i < text.size() && i < mask.size(); ++i) {
    if (mask[i] != '0') text[i] = mask[i] == full ? 'Z' : '?';
  }
}

}  // namespace

// --- look-ups ---

CWaveformIndex& CWaveformManager::Index() const {
  if (!m_index) m_index = std::make_unique<CWaveformIndex>();
  return *m_index;
}

int CWaveformManager::Find(WaveType type, std::string_view name) const {
  int row = -1;
  (void)GuardAllocation([&] {
    row = Index().Find(m_rows, type, name);
    return S_OK;
  });
  return row;
}

Status CWaveformManager::IsWaveformExists(const std::string& name, WaveType type) const {
  return Find(type, name) < 0 ? PG_E_NO_WAVEFORM_ROW : S_OK;
}

Status CWaveformManager::GetWaveformName(int row, std::string& name) const {
  return IsChannelRow(row) ? GetChannelName(row, name) : GetGroupName(row, name);
}

Status CWaveformManager::GetGroupName(int row, std::string& name) const {
  const CWaveformData* data = Row(row);
  return data ? StoreText(name, data->groupName) : E_FAIL;
}

Status CWaveformManager::GetChannelName(int row, std::string& name) const {
  const CWaveformData* data = Row(row);
  return data ? StoreText(name, data->channelName) : E_FAIL;
}

Status CWaveformManager::GetGroupId(int row, int& group) const {
  group = -1;
  const CWaveformData* data = Row(row);
  if (!data || !m_groupManager) return E_FAIL;
  if (data->groupIndex == -1) return S_OK;
  GROUP* held = nullptr;
  if (Failed(m_groupManager->GetGroup(data->groupIndex, &held))) return E_FAIL;
  group = data->groupIndex;
  return S_OK;
}

Status CWaveformManager::GetChannelId(int row, int& channel) const {
  channel = -1;
  const CWaveformData* data = Row(row);
  if (!data || !m_instrument) return E_FAIL;
  if (data->channel == -1) return S_OK;
  int channels = 0;
  (void)m_instrument->GetMaxChannels(channels);
  if (data->channel < 0 || data->channel >= channels) return E_FAIL;
  channel = data->channel;
  return S_OK;
}

Status CWaveformManager::GetRowFromChannel(int channel, int& row) const {
  row = -1;
  return GuardAllocation([&] {
    row = Index().FindChannel(m_rows, channel);
    return row < 0 ? E_FAIL : S_OK;
  });
}

Status CWaveformManager::GetRowFromChannel(const std::string& name, int& row) const {
  row = Find(WaveType::Channel, name);
  return row < 0 ? E_FAIL : S_OK;
}

Status CWaveformManager::GetRowFromGroup(const std::string& name, int& row) const {
  row = Find(WaveType::Group, name);
  return row < 0 ? E_FAIL : S_OK;
}

// --- groups ---

Status CWaveformManager::GetGroupData(int block, int groupIndex, int vector, Radix radix,
                                      std::string& text) const {
  GROUP* group = nullptr;
  if (!m_groupManager || Failed(m_groupManager->GetGroup(groupIndex, &group))) return E_FAIL;
  const std::string& name = group->GetGroupName();
  if (Failed(m_instrument->GetGroupData(name, block, vector, radix, text))) return E_FAIL;
  if (radix == Radix::Decimal) return S_OK;
  std::string mask;  // a failure leaves no marks
  if (!Failed(m_instrument->GetGroupInhibitMask(name, block, vector, radix, mask))) {
    MarkInhibited(mask, radix, text);
  }
  return S_OK;
}

Status CWaveformManager::SetGroupData(int block, int groupIndex, int vector, Radix radix,
                                      const std::string& text, int count) {
  GROUP* group = nullptr;
  if (!m_groupManager || Failed(m_groupManager->GetGroup(groupIndex, &group))) return E_FAIL;
  const Status status =
      m_instrument->SetGroupData(group->GetGroupName(), block, vector, radix, text, count);
  NotifyPatternData(block);
  return status;
}

Status CWaveformManager::GetGroupTextLength(int groupIndex, Radix radix, int& length) const {
  return m_groupManager ? m_groupManager->GetGroupTextLength(groupIndex, radix, length) : E_FAIL;
}

// --- channels: the instrument takes (channel, block, vector) ---

Status CWaveformManager::GetChannelData(int block, int channel, int vector, int& value) const {
  if (!m_instrument) return E_FAIL;
  const Status status = m_instrument->GetChannelData(channel, block, vector, value);
  int mask = 0;  // a pod without a probe shows its bits
  if (!Failed(status)) (void)m_instrument->GetChannelInhibitMask(channel, block, vector, mask);
  if (mask == 1) value = -1;
  return status;
}

Status CWaveformManager::SetChannelData(int block, int channel, int vector, int value) {
  if (!m_instrument) return E_FAIL;
  const Status status = m_instrument->SetChannelData(channel, block, vector, value);
  NotifyPatternData(block);
  return status;
}

Status CWaveformManager::SetChannelInhibitMask(int block, int channel, int vector, int mask) {
  return m_instrument ? m_instrument->SetChannelInhibitMask(channel, block, vector, mask) : E_FAIL;
}

void CWaveformManager::NotifyPatternData(int block) const {
  if (m_eventHandler) m_eventHandler->OnPatternDataChanged(block);
}

}  // namespace quillpg
