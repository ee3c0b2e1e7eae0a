#include "server_session.h"

#include "interrupt.h"
#include "quillpg/app_server.h"
#include "report.h"

namespace quillpg::tool {

void CToolHost::YieldToMessageLoop() {
  if (Interrupted() && onInterrupt) onInterrupt();
}

CServerSession::CServerSession(CMessageRouter& router) : m_router(router) {
  m_host.onInterrupt = [this] { Abort(); };
  CHostServices::Set(&m_host);
  CHardwareManager::Install(&m_hardware);
}

CServerSession::~CServerSession() {
  delete m_server;
  CHardwareManager::Install(nullptr);
  CHostServices::Set(nullptr);
}

CAppServer* CServerSession::Server() {
  if (m_server) return m_server;
  CAppServer* server = nullptr;
  const Status status = CAppServer::GetServer(&server);
  m_server = server;
  if (Failed(status)) {
    ReportError("the engine does not start: " + StatusText(status));
    return nullptr;
  }
  (void)m_server->SetMessageRouter(&m_router);
  return m_server;
}

void CServerSession::Abort() {
  if (m_abort) m_abort();
  if (!m_server) return;
  (void)m_server->AbortCompilation();  // what is not running has nothing to abort
  (void)m_server->AbortDownload();
}

}  // namespace quillpg::tool
