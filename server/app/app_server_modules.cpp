// The root's work on the modules, together with the instruments that are made of them.

#include "app/instrument_walk.h"
#include "hardware/module.h"
#include "hardware/module_manager.h"
#include "instrument/instrument.h"
#include "quillpg/app_server.h"

namespace quillpg {

namespace {

// A pod that got another type, or lost its probe, changes which channels inhibit pods.
void UpdateInhibitControls(const CInstrumentManager* instruments) {
  ForEachInstrument(instruments, [](CInstrument& instrument) {
    (void)instrument.UpdateInhibitControlList();  // rebuilds what it can
  });
}

void TakeOut(CInstrument& instrument, const CModuleManager& owner) {
  int count = 0;
  (void)instrument.GetNoOfModules(count);
  for (int i = count - 1; i >= 0; --i) {
    CModule* module = nullptr;
    (void)instrument.GetModuleAt(i, &module);
    int position = -1;
    if (owner.GetModulePos(module, position) == S_OK) (void)instrument.RemoveModuleAt(i);
  }
}

}  // namespace

Status CAppServer::InitializeModules() {
  if (!m_moduleManager) return E_FAIL;
  const Status status = m_moduleManager->InitializeModules();
  UpdateInhibitControls(m_instrumentManager.get());
  return status;
}

Status CAppServer::UpdateProbes() {
  Status status = S_OK;
  int count = 0;
  if (!m_moduleManager || m_moduleManager->GetNoOfModules(count) != S_OK) status = E_FAIL;
  for (int i = 0; status == S_OK && i < count; ++i) {
    CModule* module = nullptr;
    (void)m_moduleManager->GetModuleAt(i, &module);  // the pointer tells
    if (module) {
      (void)module->UpdateProbes();  // a module without hardware keeps its probes: no failure
    } else {
      status = E_FAIL;
    }
  }
  UpdateInhibitControls(m_instrumentManager.get());
  return status;
}

void CAppServer::ReleaseModules(const CModuleManager& owner) {
  if (!m_pServer) return;
  ForEachInstrument(m_pServer->m_instrumentManager.get(),
                    [&owner](CInstrument& instrument) { TakeOut(instrument, owner); });
}

}  // namespace quillpg
