#include "base/guard.h"
#include "hardware/setting_rule.h"
#include "instrument/instrument.h"
#include "instrument/mode_limits.h"
#include "program/block_manager.h"
#include "program/group_manager.h"
#include "program/waveform_manager.h"
#include "quillpg/app_server.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

// The channel mode and what its change does to the program. Pods keep their order and their bits 0
// to 7; a pod is two bytes of a row in FULL mode and one in HALF mode, so data moves by bytes.

namespace quillpg {

namespace {

constexpr int kSharedPodChannels = 8;  // channels of a pod that both modes have

bool IsChannelMode(ChannelMode mode) {
  return mode == ChannelMode::Full || mode == ChannelMode::Half;
}

// Pods of which a row holds at least the first byte.
std::size_t PodsInRow(std::size_t rowBytes, std::size_t podBytes) {
  return (rowBytes + podBytes - 1) / podBytes;
}

}  // namespace

Status CInstrument::SetChannelMode(ChannelMode mode) {
  if (!IsChannelMode(mode)) return E_FAIL;
  const ChannelMode oldMode = m_settings.channelMode;
  // Sent also when it is the stored mode, so that the hardware agrees.
  const auto outcome =
      ApplySettingToAll(Hardware(), SettingRule::Exact, mode, m_settings.channelMode,
                        &CSorrelModule::SetChannelMode, &CSorrelModule::GetChannelMode);
  if (outcome != SettingOutcome::Accepted) return E_FAIL;
  return mode == oldMode ? S_OK : RelayProgram(oldMode);
}

Status CInstrument::GetChannelMode(ChannelMode& mode) const {
  mode = m_settings.channelMode;
  return S_OK;
}

// A block that runs out of memory is left without data, but never with the old width; the walk goes
// on and the first failure is the answer.
Status CInstrument::RelayProgram(ChannelMode oldMode) {
  const int oldPodChannels = LimitsOf(oldMode).channelsPerPod;
  CAppServer* server = nullptr;
  (void)CAppServer::GetServer(&server);
  char fill = '0';
  if (server) (void)server->GetDefaultChannelValue(fill);
  return GuardAllocation([&] {
    int groups = 0;
    (void)m_groupManager->GetNoOfGroups(groups);
    for (int i = 0; i < groups; ++i) {
      GROUP* group = nullptr;
      if (m_groupManager->GetGroup(i, &group) == S_OK) RelayGroup(*group, oldPodChannels);
    }
    RebuildInhibitControls();
    Status first = S_OK;
    int blocks = 0;
    (void)m_blockManager->GetNoOfBlocks(blocks);
    for (int i = 0; i < blocks; ++i) {
      BLOCK* block = BlockAt(i);
      if (!block) continue;
      const Status status = RelayBlock(*block, oldPodChannels, fill);
      if (first == S_OK) first = status;
      (void)block->GetWaveformManager()->UpdateWaveformList();
    }
    return first;
  });
}

Status CInstrument::RelayBlock(BLOCK& block, int oldPodChannels, char fill) const {
  int smallest = 0;
  (void)GetMinBlocksize(smallest);
  const std::size_t oldRowBytes = block.RowBytes();
  const int oldSize = block.GetBlockSize();
  std::unique_ptr<std::uint8_t[]> oldData;
  const Status status = block.Reshape(std::max(oldSize, smallest), MaxChannels(), fill, oldData);
  MarkChanged(block);
  std::uint8_t* row = block.Data();
  if (!oldData || !row) return status;

  const auto oldPodBytes = static_cast<std::size_t>(oldPodChannels) / 8;
  const auto podBytes = static_cast<std::size_t>(ChannelsPerPod()) / 8;
  const std::size_t rowBytes = block.RowBytes();
  const std::size_t pods =
      std::min(PodsInRow(oldRowBytes, oldPodBytes), PodsInRow(rowBytes, podBytes));
  const std::uint8_t* oldRow = oldData.get();
  for (int vector = 0; vector < oldSize; ++vector, row += rowBytes, oldRow += oldRowBytes) {
    for (std::size_t pod = 0; pod < pods; ++pod) row[pod * podBytes] = oldRow[pod * oldPodBytes];
  }
  return status;
}

void CInstrument::RelayGroup(GROUP& group, int oldPodChannels) const {
  const std::vector<int> channels = group.Channels();
  (void)group.DeleteAll();
  for (const int channel : channels) {
    if (channel < 0 || channel % oldPodChannels >= kSharedPodChannels) continue;
    const int pod = channel / oldPodChannels;
    if (pod >= MaxChannels() / ChannelsPerPod()) continue;
    (void)group.AddChannel(pod * ChannelsPerPod() + channel % oldPodChannels, -1);
  }
  RebuildChannelNames(group);
}

}  // namespace quillpg
