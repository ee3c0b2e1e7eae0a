#include "base/guard.h"
#include "base/text.h"
#include "hardware/hardware_library.h"
#include "hardware/module.h"
#include "instrument/instrument.h"

#include <algorithm>
#include <limits>

// Limits that follow from the channel mode and the modules. HALF mode has half the channels, the
// higher speed, the larger smallest block and twice the depth.

namespace quillpg {

namespace {

struct MODE_LIMITS {
  int maxClockSpeed;      // MHz
  double minClockPeriod;  // s, constants of their own: not derived from the speed
  double maxClockPeriod;  // s
  int minBlockSize;       // vectors
};

constexpr MODE_LIMITS kFullLimits = {134, 7.4626865e-09, 2.0, 40};
constexpr MODE_LIMITS kHalfLimits = {268, 3.7313432e-09, 1.0, 80};

}  // namespace

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
  vectors = IsFull() ? smallest : std::min(smallest, std::numeric_limits<long>::max() / 2) * 2;
  return S_OK;
}

Status CInstrument::GetMaxBlocksize(long& vectors) const { return GetMemoryDepth(vectors); }

Status CInstrument::GetMinBlocksize(int& vectors) const {
  vectors = (IsFull() ? kFullLimits : kHalfLimits).minBlockSize;
  return S_OK;
}

Status CInstrument::GetMaxClockSpeed(int& megahertz) const {
  megahertz = (IsFull() ? kFullLimits : kHalfLimits).maxClockSpeed;
  return S_OK;
}

Status CInstrument::GetMinClockPeriod(double& seconds) const {
  seconds = (IsFull() ? kFullLimits : kHalfLimits).minClockPeriod;
  return S_OK;
}

Status CInstrument::GetMaxClockPeriod(double& seconds) const {
  seconds = (IsFull() ? kFullLimits : kHalfLimits).maxClockPeriod;
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
