#pragma once

#include "base/abort_request.h"
#include "quillpg/api.h"
#include "quillpg/result_codes.h"

namespace quillpg {

class CAppServer;
class CMessageRouter;

/// What export and import share: what the root wires and what aborts a running operation.
class QUILLPG_API CExchangeManager : public CAbortRequest {
 public:
  CExchangeManager(const CExchangeManager&) = delete;
  CExchangeManager& operator=(const CExchangeManager&) = delete;
  virtual ~CExchangeManager() = default;

  /// Referenced.
  Status Initialize(CAppServer* server);
  /// Referenced; null drops the progress reports.
  Status SetMessageRouter(CMessageRouter* router);

 protected:
  CExchangeManager() = default;

 private:
  CAppServer* m_server = nullptr;
  CMessageRouter* m_router = nullptr;
};

}  // namespace quillpg
