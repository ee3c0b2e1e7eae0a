// What the root does for the module manager, which must not know the instruments.

#include "hardware/module_manager.h"
#include "instrument/instrument.h"
#include "instrument/instrument_manager.h"
#include "quillpg/app_server.h"

namespace quillpg {

namespace {

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

void CAppServer::ReleaseModules(const CModuleManager& owner) {
  if (!m_pServer || !m_pServer->m_instrumentManager) return;
  const CInstrumentManager& manager = *m_pServer->m_instrumentManager;
  int count = 0;
  (void)manager.GetNoOfInstruments(count);
  for (int i = 0; i < count; ++i) {
    CInstrument* instrument = nullptr;
    (void)manager.GetInstrumentAt(i, &instrument);
    if (instrument) TakeOut(*instrument, owner);
  }
}

}  // namespace quillpg
