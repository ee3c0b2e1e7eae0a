#pragma once

#include "quillpg/api.h"
#include "quillpg/result_codes.h"

namespace quillpg {

class CAppServer;

/// Prints the tables of the format manager. Printing is not built yet.
class QUILLPG_API CPrintManager {
 public:
  CPrintManager() = default;
  CPrintManager(const CPrintManager&) = delete;
  CPrintManager& operator=(const CPrintManager&) = delete;
  virtual ~CPrintManager() = default;

  /// Referenced.
  Status Initialize(CAppServer* server);

 private:
  CAppServer* m_server = nullptr;
};

}  // namespace quillpg
