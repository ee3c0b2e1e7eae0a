#include "reporting/print_manager.h"

namespace quillpg {

Status CPrintManager::Initialize(CAppServer* server) {
  m_server = server;
  return S_OK;
}

}  // namespace quillpg
