#include "hardware/module_manager.h"

#include "base/guard.h"
#include "hardware/hardware_library.h"
#include "quillpg/app_server.h"

#include <memory>
#include <utility>

namespace quillpg {

namespace {

constexpr int kMaxModules = 256;

// The library's system; null without one.
CSystem* FindSystem() {
  CHardwareManager* manager = nullptr;
  if (CHardwareManager::GetHardwareManager(&manager) != S_OK || !manager) return nullptr;
  CSystem* system = nullptr;
  return manager->GetSystem(&system) == S_OK ? system : nullptr;
}

// The firmware of a simulated module does not matter.
bool IsUsable(CSorrelModule& module) {
  return module.VisaStub() == 1 || module.IsFirmwareCompatible() == S_OK;
}

}  // namespace

CModuleManager::CModuleManager(const CModuleManager& other) { *this = other; }

CModuleManager& CModuleManager::operator=(const CModuleManager& other) {
  if (this == &other) return *this;
  DeleteAll();
  (void)GuardAllocation([&] {
    m_logDirectory = other.m_logDirectory;
    m_logDirectorySet = other.m_logDirectorySet;
    m_messageRouter = other.m_messageRouter;
    Status status = S_OK;
    other.m_modules.ForEach([&](const CModule& module) {
      if (status == S_OK) status = m_modules.Append(std::make_unique<CModule>(module));
    });
    return status;
  });
  return *this;
}

// --- discovery ---

Status CModuleManager::Initialize() {
  CSystem* system = FindSystem();
  DeleteAll();
  if (!system) return S_OK;
  return GuardAllocation([&] { return Discover(*system); });
}

Status CModuleManager::Discover(CSystem& system) {
  int pos = -1;
  (void)system.GetFirstSorrelModulePos(pos);
  // A library that does not get on with its walk must not hold the engine.
  for (int walked = 0; pos >= 0 && walked < kMaxModules; ++walked) {
    const int before = pos;
    CSorrelModule* found = nullptr;
    (void)system.GetNextSorrelModule(pos, &found);
    if (found && IsUsable(*found)) {
      if (const Status status = AppendModule(found); status != S_OK) return status;
    }
    if (pos == before) break;
  }
  return S_OK;
}

Status CModuleManager::AppendModule(CSorrelModule* hardware) {
  auto module = std::make_unique<CModule>();
  (void)module->SetSorrelModule(hardware);
  if (hardware && m_logDirectorySet) (void)hardware->SetLogDirectory(m_logDirectory);
  if (hardware && m_messageRouter) (void)hardware->SetMessageRouter(m_messageRouter);
  return m_modules.Append(std::move(module));
}

Status CModuleManager::Initialize(int count) {
  DeleteAll();
  if (count > kMaxModules) return E_FAIL;
  return GuardAllocation([&] {
    for (int i = 0; i < count; ++i) {
      if (const Status status = AppendModule(nullptr); status != S_OK) return status;
    }
    return S_OK;
  });
}

void CModuleManager::DeleteAll() {
  CAppServer::ReleaseModules(*this);
  m_modules.Clear();
}

// --- all modules ---

Status CModuleManager::InitializeModules() {
  m_modules.ForEach([](CModule& module) { (void)module.Initialize(); });
  return S_OK;
}

Status CModuleManager::ResetModules() {
  m_modules.ForEach([](CModule& module) { (void)module.ResetModule(); });
  return S_OK;
}

template <typename Operation>
void CModuleManager::ForEachHardware(Operation&& operation) const {
  m_modules.ForEach([&](const CModule& module) {
    CSorrelModule* hardware = nullptr;
    (void)module.GetSorrelModule(&hardware);
    if (hardware) operation(*hardware);
  });
}

Status CModuleManager::SetLogDirectory(const std::string& directory) {
  return GuardAllocation([&] {
    m_logDirectory = directory;
    m_logDirectorySet = true;
    ForEachHardware([&](CSorrelModule& hardware) { (void)hardware.SetLogDirectory(directory); });
    return S_OK;
  });
}

Status CModuleManager::SetMessageRouter(CMessageRouter* router) {
  m_messageRouter = router;
  ForEachHardware([&](CSorrelModule& hardware) { (void)hardware.SetMessageRouter(router); });
  return S_OK;
}

// --- look-ups ---

Status CModuleManager::GetNoOfModules(int& count) const {
  count = m_modules.Count();
  return S_OK;
}

Status CModuleManager::GetModuleAt(int index, CModule** module) const {
  if (!module) return E_FAIL;
  *module = m_modules.At(index);
  return S_OK;
}

Status CModuleManager::GetSorrelModuleAt(int index, CSorrelModule** module) const {
  if (!module) return E_FAIL;
  *module = nullptr;
  const CModule* found = m_modules.At(index);
  return found ? found->GetSorrelModule(module) : E_FAIL;
}

Status CModuleManager::GetModulePos(const CModule* module, int& position) const {
  position = -1;
  for (int i = 0; module && i < m_modules.Count(); ++i) {
    if (m_modules.At(i) == module) position = i;
  }
  return position >= 0 ? S_OK : E_FAIL;
}

}  // namespace quillpg
