#include "program/program_manager.h"

namespace quillpg {

Status CProgramManager::Initialize(CAppServer* server, CInstrument* instrument) {
  if (!server || !instrument) return E_FAIL;
  m_server = server;
  m_instrument = instrument;
  return S_OK;
}

Status CProgramManager::SetEventHandler(CEventHandler* handler) {
  m_frontEnd.SetHandler(handler);
  return S_OK;
}

}  // namespace quillpg
