#include "hardware/hardware_library.h"

#include "base/guard.h"
#include "hardware/simulation/simulated_hardware.h"

namespace quillpg {

int GblClientConnected = 0;

namespace {

CHardwareManager* installedManager = nullptr;

// Made when it is first asked for: a host with hardware of its own never has it.
CHardwareManager& Simulation() {
  static CSimulatedHardware simulation;
  return simulation;
}

}  // namespace

Status CHardwareManager::GetHardwareManager(CHardwareManager** manager) {
  if (!manager) return E_FAIL;
  return GuardAllocation([&] {
    *manager = installedManager ? installedManager : &Simulation();
    return S_OK;
  });
}

void CHardwareManager::Install(CHardwareManager* manager) { installedManager = manager; }

}  // namespace quillpg
