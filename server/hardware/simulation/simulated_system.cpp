#include "hardware/simulation/simulated_system.h"

#include "base/guard.h"
#include "hardware/simulation/virtual_clock.h"

#include <algorithm>
#include <utility>

namespace quillpg {

CSimulatedSystem::CSimulatedSystem(CCallMonitor& calls, CVirtualClock& clock)
    : m_calls(calls), m_clock(clock) {
  SetModules(MakeDescriptions(SIMULATED_MODULES, false));
}

CSimulatedModule* CSimulatedSystem::Module(int index) const {
  return index >= 0 && index < ModuleCount() ? m_modules[static_cast<std::size_t>(index)].get()
                                             : nullptr;
}

std::vector<SIMULATED_MODULE> CSimulatedSystem::MakeDescriptions(int count, bool option) {
  std::vector<SIMULATED_MODULE> descriptions;
  for (int i = 0; i < count; ++i) {
    SIMULATED_MODULE& module = descriptions.emplace_back();
    module.slot = SIMULATED_FIRST_SLOT + SIMULATED_MODULE_SLOTS * i;
    module.option = option;
  }
  return descriptions;
}

void CSimulatedSystem::SetModules(std::vector<SIMULATED_MODULE> descriptions) {
  MODULES modules;
  std::vector<CSimulatedModule*> clocked;
  for (SIMULATED_MODULE& description : descriptions) {
    const int index = static_cast<int>(modules.size());
    modules.push_back(
        std::make_unique<CSimulatedModule>(index, std::move(description), m_calls, m_clock));
    clocked.push_back(modules.back().get());
  }
  m_clock.SetModules(std::move(clocked));
  m_modules.swap(modules);
  if (m_handedOut) m_retired.swap(modules);
  m_handedOut = false;
}

// --- the frame and its slots ---

Status CSimulatedSystem::GetSystemInfo(CSystemInfo** info) {
  if (!info) return E_FAIL;
  *info = this;
  return S_OK;
}

Status CSimulatedSystem::GetFirstSorrelModulePos(int& pos) {
  pos = m_modules.empty() ? -1 : 0;
  return S_OK;
}

Status CSimulatedSystem::GetNextSorrelModule(int& pos, CSorrelModule** module) {
  CSimulatedModule* found = Module(pos);
  if (!module || !found) return E_FAIL;
  *module = found;
  m_handedOut = true;
  pos = pos + 1 < ModuleCount() ? pos + 1 : -1;
  return S_OK;
}

Status CSimulatedSystem::GetModuleAt(int slot, CVXIModule** module) {
  if (!module) return E_FAIL;
  *module = nullptr;
  const auto found = std::ranges::find_if(
      m_modules, [slot](const auto& candidate) { return candidate->Description().slot == slot; });
  if (found == m_modules.end()) return E_FAIL;
  *module = found->get();
  m_handedOut = true;
  return S_OK;
}

Status CSimulatedSystem::IsSorrelModule(Device device, Manufacturer manufacturer, int& is) {
  is = device == Device::PatternGenerator && manufacturer == Manufacturer::Quillmark ? 1 : 0;
  return S_OK;
}

Status CSimulatedSystem::IsBenchTop(int& is) {
  is = m_mainframe.type == Mainframe::BenchTop ? 1 : 0;
  return S_OK;
}

Status CSimulatedSystem::GetControllerSlots(int& first, int& last) {
  first = SIMULATED_FIRST_CONTROLLER_SLOT;
  last = SIMULATED_LAST_CONTROLLER_SLOT;
  return S_OK;
}

Status CSimulatedSystem::GetControllerProperties(int /*controller*/, std::string& text) {
  text.clear();
  return S_OK;
}

// --- modules of a setup file ---

Status CSimulatedSystem::PrepareLoadFromStub() {
  m_fromStub.clear();
  return S_OK;
}

Status CSimulatedSystem::AddModuleFromStub(int option) {
  return GuardAllocation([&] {
    if (m_fromStub.size() >= SIMULATED_MOST_MODULES) return E_FAIL;
    const int slot =
        SIMULATED_FIRST_SLOT + SIMULATED_MODULE_SLOTS * static_cast<int>(m_fromStub.size());
    SIMULATED_MODULE& module = m_fromStub.emplace_back();
    module.slot = slot;
    module.option = option != 0;
    return S_OK;
  });
}

Status CSimulatedSystem::LoadFromStubComplete() {
  return GuardAllocation([&] {
    SetModules(std::exchange(m_fromStub, {}));
    return S_OK;
  });
}

// --- properties ---

Status CSimulatedSystem::GetMainframeType(quillpg::Mainframe& type) {
  type = m_mainframe.type;
  return S_OK;
}

Status CSimulatedSystem::GetNoOfExpansions(int& count) {
  count = m_mainframe.expansions;
  return S_OK;
}

Status CSimulatedSystem::GetNoOfModules(int& count) {
  count = ModuleCount();
  return S_OK;
}

Status CSimulatedSystem::GetSystemSlots(int& count) {
  count = m_mainframe.slots;
  return S_OK;
}

Status CSimulatedSystem::GetFrontPanelConfig(std::string& text) {
  text = m_mainframe.frontPanel;
  return S_OK;
}

}  // namespace quillpg
