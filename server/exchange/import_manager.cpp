#include "exchange/import_manager.h"

namespace quillpg {

Status CImportManager::Initialize(CAppServer* server) {
  m_server = server;
  return S_OK;
}

Status CImportManager::SetMessageRouter(CMessageRouter* router) {
  m_router = router;
  return S_OK;
}

Status CImportManager::AbortOperation() {
  m_abort = true;
  return S_OK;
}

Status CImportManager::ResetAbort() {
  m_abort = false;
  return S_OK;
}

Status CImportManager::IsAborted(int& aborted) const {
  aborted = m_abort ? 1 : 0;
  return S_OK;
}

}  // namespace quillpg
