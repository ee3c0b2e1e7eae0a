#pragma once

#include "quillpg/api.h"
#include "quillpg/result_codes.h"

namespace quillpg {

class CAppServer;
class CMessageRouter;

/// Writes pattern data to exchange files. The formats are not built yet: here stands
/// what the root wires and what aborts a running operation.
class QUILLPG_API CExportManager {
 public:
  CExportManager() = default;
  CExportManager(const CExportManager&) = delete;
  CExportManager& operator=(const CExportManager&) = delete;
  virtual ~CExportManager() = default;

  /// Referenced.
  Status Initialize(CAppServer* server);
  /// Referenced; null drops the progress reports.
  Status SetMessageRouter(CMessageRouter* router);

  Status AbortOperation();
  Status ResetAbort();
  /// 1 after AbortOperation, until ResetAbort.
  Status IsAborted(int& aborted) const;

 private:
  CAppServer* m_server = nullptr;
  CMessageRouter* m_router = nullptr;
  bool m_abort = false;
};

}  // namespace quillpg
