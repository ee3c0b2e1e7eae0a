#include "hardware/simulation/simulated_system.h"

#include "base/guard.h"
#include "hardware/simulation/simulated_module.h"
#include "hardware/simulation/stub_file.h"
#include "hardware/simulation/virtual_clock.h"

#include <algorithm>
#include <utility>

namespace quillpg {

CSimulatedSystem::CSimulatedSystem(CCallMonitor& calls, CVirtualClock& clock)
    : m_calls(calls), m_clock(clock), m_modules(MakeDefault()) {
  m_clock.SetModules(m_modules->All());
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

std::unique_ptr<CModuleList> CSimulatedSystem::MakeDefault() const {
  return std::make_unique<CModuleList>(MakeDescriptions(SIMULATED_MODULES, false), m_calls,
                                       m_clock);
}

void CSimulatedSystem::Replace(std::unique_ptr<CModuleList> modules) {
  std::vector<CSimulatedModule*> all = modules->All();
  // Whoever discovered the present modules has let go of those before them.
  if (std::exchange(m_discovered, false)) m_retired.clear();
  m_retired.push_back(std::move(m_modules));
  m_modules = std::move(modules);
  m_declared = false;
  m_clock.SetModules(std::move(all));
}

void CSimulatedSystem::SetModules(std::vector<SIMULATED_MODULE> descriptions) {
  Replace(std::make_unique<CModuleList>(std::move(descriptions), m_calls, m_clock));
  m_hostModules = true;
}

void CSimulatedSystem::SetStubFile(const std::string& path) {
  m_stubPath = path;
  m_hostModules = false;
}

Status CSimulatedSystem::Start() {
  return GuardAllocation([&] {
    if (m_hostModules || m_mainframe.hardwarePresent) return S_OK;
    auto file = std::make_unique<CStubFile>();
    const std::filesystem::path path = m_stubPath.empty() ? FindStubFile() : m_stubPath;
    if (path.empty() || file->Open(path) != S_OK) {
      if (m_declared) Replace(MakeDefault());
      return S_OK;
    }
    const int count = std::min(file->ModuleCount(), SIMULATED_MOST_MODULES);
    const int first = file->ModuleCount() - count;  // of too many the last, as for a setup file
    std::vector<SIMULATED_MODULE> descriptions = MakeDescriptions(count, false);
    for (int i = 0; i < count; ++i) {
      const STUB_DECLARATION& declared = file->Declaration(first + i);
      SIMULATED_MODULE& module = descriptions[static_cast<std::size_t>(i)];
      module.slot = declared.slot;
      module.manufacturer = static_cast<Manufacturer>(declared.manufacturer);
    }
    auto modules = std::make_unique<CModuleList>(std::move(descriptions), m_calls, m_clock);
    modules->TakeFile(std::move(file), first);
    Replace(std::move(modules));
    m_declared = true;
    return S_OK;
  });
}

// --- the frame and its slots ---

Status CSimulatedSystem::GetSystemInfo(CSystemInfo** info) {
  if (!info) return E_FAIL;
  *info = this;
  return S_OK;
}

Status CSimulatedSystem::GetFirstSorrelModulePos(int& pos) {
  pos = m_modules->Count() > 0 ? 0 : -1;
  return S_OK;
}

Status CSimulatedSystem::GetNextSorrelModule(int& pos, CSorrelModule** module) {
  CSimulatedModule* found = m_modules->At(pos);
  if (!module || !found) return E_FAIL;
  *module = found;
  m_discovered = true;
  pos = pos + 1 < m_modules->Count() ? pos + 1 : -1;
  return S_OK;
}

Status CSimulatedSystem::GetModuleAt(int slot, CVXIModule** module) {
  if (!module) return E_FAIL;
  *module = m_modules->InSlot(slot);
  return *module ? S_OK : E_FAIL;
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

// No answer of a file is kept outside the list that is replaced, so there is none to drop here.
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
    auto modules = std::make_unique<CModuleList>(std::exchange(m_fromStub, {}), m_calls, m_clock);
    modules->ExpectFile(m_stubPath);
    Replace(std::move(modules));
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
  count = m_modules->Count();
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
