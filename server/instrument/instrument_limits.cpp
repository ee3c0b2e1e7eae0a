#include "base/guard.h"
#include "base/text.h"
#include "hardware/hardware_library.h"
#include "hardware/module.h"
#include "instrument/instrument.h"
#include "instrument/mode_limits.h"

#include <algorithm>
#include <limits>

// Limits that follow from the channel mode and the modules.

namespace quillpg {

Status CInstrument::GetMaxChannels(int& channels) const {
  channels = MaxChannels();
  return S_OK;
}

Status CInstrument::GetBlockWidth(int& width) const { return GetMaxChannels(width); }

Status CInstrument::GetMaxChannelsPerPod(int& channels) const {
  channels = ChannelsPerPod();
  return S_OK;
}

Status CInstrument::GetMaxChannelsPerModule(int& channels) const {
  channels = ChannelsPerModule();
  return S_OK;
}

Status CInstrument::GetMemoryDepth(long& vectors) const {
  long smallest = m_modules.empty() ? DEFAULT_MEMORY_DEPTH : std::numeric_limits<long>::max();
  for (const CModule* module : m_modules) {
    long depth = 0;
    const Status status = module->GetMemoryDepth(depth);
    if (Failed(status)) return status;
    smallest = std::min(smallest, depth);
  }
  const int factor = LimitsOf(m_settings.channelMode).depthFactor;
  vectors = std::min(smallest, std::numeric_limits<long>::max() / factor) * factor;
  return S_OK;
}

Status CInstrument::GetMaxBlocksize(long& vectors) const { return GetMemoryDepth(vectors); }

Status CInstrument::GetMinBlocksize(int& vectors) const {
  vectors = LimitsOf(m_settings.channelMode).minBlockSize;
  return S_OK;
}

Status CInstrument::GetMaxClockSpeed(int& megahertz) const {
  megahertz = LimitsOf(m_settings.channelMode).maxClockSpeed;
  return S_OK;
}

Status CInstrument::GetMinClockPeriod(double& seconds) const {
  seconds = LimitsOf(m_settings.channelMode).minClockPeriod;
  return S_OK;
}

Status CInstrument::GetMaxClockPeriod(double& seconds) const {
  seconds = LimitsOf(m_settings.channelMode).maxClockPeriod;
  return S_OK;
}

Status CInstrument::GetModuleProperties(int position, std::string& text) const {
  if (!ModuleAt(position)) return PG_E_SLOT_EMPTY;
  CSorrelModule* hardware = HardwareAt(position);
  if (!hardware) return E_FAIL;
  return GuardAllocation([&] {
    std::string description;
    Status status = hardware->GetModuleProperties(description);
    int speed = 0;
    if (!Failed(status)) status = GetMaxClockSpeed(speed);
    long size = 0;
    if (!Failed(status)) status = GetMaxBlocksize(size);
    if (!Failed(status)) text = FormatText("%s,%d MHz,%d", {description, speed, size});
    return status;
  });
}

}  // namespace quillpg
