#include "exchange/export_manager.h"

namespace quillpg {

Status CExportManager::Initialize(CAppServer* server) {
  m_server = server;
  return S_OK;
}

Status CExportManager::SetMessageRouter(CMessageRouter* router) {
  m_router = router;
  return S_OK;
}

Status CExportManager::AbortOperation() {
  m_abort = true;
  return S_OK;
}

Status CExportManager::ResetAbort() {
  m_abort = false;
  return S_OK;
}

Status CExportManager::IsAborted(int& aborted) const {
  aborted = m_abort ? 1 : 0;
  return S_OK;
}

}  // namespace quillpg
