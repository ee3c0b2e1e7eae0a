#pragma once

#include "quillpg/api.h"
#include "quillpg/result_codes.h"

namespace quillpg {

class CAppServer;
class CMessageRouter;

/// Lays out set-up, program and system properties as tables. The tables are not built yet.
class QUILLPG_API CFormatManager {
 public:
  CFormatManager() = default;
  CFormatManager(const CFormatManager&) = delete;
  CFormatManager& operator=(const CFormatManager&) = delete;
  virtual ~CFormatManager() = default;

  /// Referenced.
  Status Initialize(CAppServer* server);
  /// Referenced; null is legal.
  Status SetMessageRouter(CMessageRouter* router);

 private:
  CAppServer* m_server = nullptr;
  CMessageRouter* m_router = nullptr;
};

}  // namespace quillpg
