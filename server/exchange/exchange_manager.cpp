#include "exchange/exchange_manager.h"

namespace quillpg {

Status CExchangeManager::Initialize(CAppServer* server) {
  m_server = server;
  return S_OK;
}

Status CExchangeManager::SetMessageRouter(CMessageRouter* router) {
  m_router = router;
  return S_OK;
}

}  // namespace quillpg
