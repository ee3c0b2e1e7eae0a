#include "reporting/format_manager.h"

namespace quillpg {

Status CFormatManager::Initialize(CAppServer* server) {
  m_server = server;
  return S_OK;
}

Status CFormatManager::SetMessageRouter(CMessageRouter* router) {
  m_router = router;
  return S_OK;
}

}  // namespace quillpg
