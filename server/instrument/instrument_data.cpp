#include "base/guard.h"
#include "hardware/module.h"
#include "instrument/channel_fill.h"
#include "instrument/group_data.h"
#include "instrument/instrument.h"
#include "instrument/radix.h"
#include "instrument/test_data.h"
#include "program/block_manager.h"
#include "program/group_manager.h"
#include "program/group_plan.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

// Pattern data: single channels, group values, generated data.

namespace quillpg {

namespace {

// The byte that holds the channel's bit in that vector; null for a place outside the block. Safe
// for blocks of any width: a program can hold blocks of a width that the instrument had before.
template <typename Block>
auto ByteOf(Block& block, int channel, int vector) -> decltype(block.Data()) {
  if (!block.Data() || channel < 0 || vector < 0 || vector >= block.GetBlockSize()) return nullptr;
  const auto byte = static_cast<std::size_t>(channel) / 8;
  if (byte >= block.RowBytes()) return nullptr;
  return block.Data() + static_cast<std::size_t>(vector) * block.RowBytes() + byte;
}

}  // namespace

BLOCK* CInstrument::BlockAt(int position) const {
  BLOCK* block = nullptr;
  (void)m_blockManager->GetBlock(position, &block);  // null for a bad position
  return block;
}

void CInstrument::MarkChanged(BLOCK& block) const {
  (void)block.SetChanged(1);
  (void)m_blockManager->SetModified(1);
}

Status CInstrument::GetChannelData(int channel, int block, int vector, int& bit) const {
  bit = 0;
  const BLOCK* data = BlockAt(block);
  const std::uint8_t* byte = data ? ByteOf(*data, channel, vector) : nullptr;
  if (!byte) return E_FAIL;
  bit = *byte >> channel % 8 & 1;
  return S_OK;
}

Status CInstrument::SetChannelData(int channel, int block, int vector, int bit) {
  BLOCK* data = BlockAt(block);
  std::uint8_t* byte = data ? ByteOf(*data, channel, vector) : nullptr;
  if (!byte) return E_FAIL;
  const unsigned mask = 1u << channel % 8;
  *byte = static_cast<std::uint8_t>(bit != 0 ? *byte | mask : *byte & ~mask);
  MarkChanged(*data);
  return S_OK;
}

// --- inhibit masks: channels 4 to 7 of pod D hold pods A to D in high impedance ---

int CInstrument::InhibitControlOf(int module, int pod) const {
  return 3 * ChannelsPerPod() + 4 + pod + module * ChannelsPerModule();
}

Status CInstrument::FindInhibitControl(int channel, int& control) const {
  control = -1;
  if (!HoldsChannel(channel)) return E_FAIL;
  const int module = channel / ChannelsPerModule();
  const int pod = channel % ChannelsPerModule() / ChannelsPerPod();
  PodType type = PodType::None;
  if (GetPodType(module, pod, type) != S_OK || type == PodType::None) return E_FAIL;
  int inhibited = 0;
  (void)GetInhibitByPodD(module, pod, inhibited);
  if (inhibited != 0) control = InhibitControlOf(module, pod);
  return S_OK;
}

Status CInstrument::GetChannelInhibitMask(int channel, int block, int vector, int& mask) const {
  mask = 0;
  int control = -1;
  const Status status = FindInhibitControl(channel, control);
  if (Failed(status) || control < 0) return status;
  return GetChannelData(control, block, vector, mask);
}

Status CInstrument::SetChannelInhibitMask(int channel, int block, int vector, int mask) {
  int control = -1;
  const Status status = FindInhibitControl(channel, control);
  if (Failed(status)) return status;
  if (control < 0) return mask == 0 ? S_OK : E_FAIL;
  return SetChannelData(control, block, vector, mask);
}

// --- groups ---

Status CInstrument::GetGroupData(const std::string& group, int block, int vector, Radix radix,
                                 std::string& text) const {
  const GROUP* source = FindGroup(group);
  if (!source) return E_FAIL;
  if (!IsRadix(radix)) {
    text.clear();
    return E_FAIL;
  }
  const BLOCK* data = BlockAt(block);
  if (!data) return E_FAIL;
  return GuardAllocation([&] {
    ReadGroupText(source->Plan(), *data, vector, radix, text);
    return S_OK;
  });
}

Status CInstrument::SetGroupData(const std::string& group, int block, int vector, Radix radix,
                                 const std::string& text) {
  return SetGroupData(group, block, vector, radix, text, 1);
}

Status CInstrument::SetGroupData(const std::string& group, int block, int vector, Radix radix,
                                 const std::string& text, int count) {
  const GROUP* target = FindGroup(group);
  BLOCK* data = BlockAt(block);
  if (!target || !data || !IsRadix(radix)) return E_FAIL;
  return GuardAllocation([&] {
    if (WriteGroupText(target->Plan(), *data, vector, count, radix, text)) MarkChanged(*data);
    return S_OK;
  });
}

Status CInstrument::GetGroupInhibitMask(const std::string& group, int block, int vector,
                                        Radix radix, std::string& text) const {
  const GROUP* source = FindGroup(group);
  if (!source) return E_FAIL;
  if (!IsRadix(radix)) {
    text.clear();
    return E_FAIL;
  }
  const BLOCK* data = BlockAt(block);
  if (!data) return E_FAIL;
  return GuardAllocation([&] {
    // Grids ask for the mask of every value that they show: one look at each pod, not each channel.
    std::array<std::uint8_t, std::size_t{MAX_INSTRUMENT_MODULES} * NUM_PODS> inhibited{};
    for (std::size_t pod = 0; pod < NUM_PODS * m_modules.size(); ++pod) {
      int control = -1;
      (void)FindInhibitControl(static_cast<int>(pod) * ChannelsPerPod(), control);
      const std::uint8_t* byte = ByteOf(*data, control, vector);  // null for -1
      if (byte) inhibited[pod] = *byte >> control % 8 & 1;
    }
    ReadMaskText(source->Channels(), ChannelsPerPod(), inhibited, radix, text);
    return S_OK;
  });
}

Status CInstrument::GetMaxDecStrLen(const std::string& group, int& length) const {
  const GROUP* source = FindGroup(group);
  if (!source) return E_FAIL;
  length = MaxDecimalDigits(source->GetNoOfChannels());
  return S_OK;
}

// --- generated data ---

Status CInstrument::FillChannelData(int channel, int block, int first, int last,
                                    CShiftRegisterGenerator& generator) {
  return FillChannelData({&channel, 1}, block, first, last, generator);
}

Status CInstrument::FillChannelData(std::span<const int> channels, int block, int first, int last,
                                    CShiftRegisterGenerator& generator) {
  BLOCK* data = BlockAt(block);
  const auto isMissing = [&](int channel) { return !ByteOf(*data, channel, 0); };
  if (!data || std::ranges::any_of(channels, isMissing)) return E_FAIL;
  const int from = std::max(first, 0);
  const int to = std::min(last, data->GetBlockSize() - 1);
  if (channels.empty() || from > to) return S_OK;
  return GuardAllocation([&] {
    FillChannels(*data, channels, from, to - from + 1, generator);
    MarkChanged(*data);
    return S_OK;
  });
}

Status CInstrument::CreateTestData(TestDataType type) { return GenerateTestData(*this, type); }

}  // namespace quillpg
