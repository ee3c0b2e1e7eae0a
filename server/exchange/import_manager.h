#pragma once

#include "quillpg/api.h"
#include "quillpg/result_codes.h"

namespace quillpg {

class CAppServer;
class CMessageRouter;

/// Reads pattern data from exchange files. The formats are not built yet: here stands
/// what the root wires and what aborts a running operation.
class QUILLPG_API CImportManager {
 public:
  CImportManager() = default;
  CImportManager(const CImportManager&) = delete;
  CImportManager& operator=(const CImportManager&) = delete;
  virtual ~CImportManager() = default;

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
