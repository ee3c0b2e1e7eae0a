#include "base/guard.h"
#include "hardware/hardware_library.h"
#include "hardware/module_manager.h"
#include "hardware/simulation/simulated_identity.h"
#include "instrument/instrument_manager.h"
#include "persistence/file_manager.h"
#include "persistence/fixed_section.h"
#include "persistence/visa_stub_gen.h"
#include "quillpg/app_server.h"
#include "quillpg/limits.h"

namespace quillpg {
namespace {

VISA_STUB_MODULE MakeEntry(int position, std::int32_t depth) {
  VISA_STUB_MODULE entry;
  entry.slot = SIMULATED_FIRST_SLOT + SIMULATED_MODULE_SLOTS * position;
  // Deeper than without the option: the option is fitted.
  entry.option = depth > DEFAULT_MEMORY_DEPTH ? 1 : 0;
  entry.pods = SIMULATED_PODS;
  return entry;
}

}  // namespace

int CFileManager::IsHardwarePresent() {
  CHardwareManager* hardware = nullptr;
  int present = 0;
  if (CHardwareManager::GetHardwareManager(&hardware) != S_OK || !hardware) return 0;
  return hardware->IsHardwarePresent(present) == S_OK && present != 0 ? 1 : 0;
}

Status CFileManager::GenerateVisaStub() {
  if (IsHardwarePresent() != 0) return S_OK;
  if (m_working || !m_server || !m_instruments || m_instruments->IsBusy()) return S_OK;
  (void)GuardAllocation([&] { return SimulateModules(); });
  return S_OK;
}

Status CFileManager::SimulateModules() {
  CSystem* system = nullptr;
  CModuleManager* modules = nullptr;
  CVisaStubGen* generator = nullptr;
  (void)m_server->GetSystem(&system);
  (void)m_server->GetModuleManager(&modules);
  (void)m_server->GetVisaStubGenerator(&generator);
  if (!system || !modules || !generator) return E_FAIL;

  // The modules come up before the file stands: the library opens it when it is first asked.
  (void)system->PrepareLoadFromStub();
  int position = 0;
  for (const std::int32_t depth : m_fixedSection->memoryDepths) {
    const VISA_STUB_MODULE entry = MakeEntry(position++, depth);
    (void)generator->AddModule(entry);
    (void)system->AddModuleFromStub(entry.option);
  }
  (void)system->LoadFromStubComplete();
  (void)modules->Initialize();
  return generator->WriteFile();
}

}  // namespace quillpg
