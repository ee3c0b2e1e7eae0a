#pragma once

#include "quillpg/api.h"
#include "quillpg/result_codes.h"

namespace quillpg {

/// The front end's wish to end a running operation, made while that hands control over. What
/// derives from it says where it looks and when it forgets an earlier one.
class QUILLPG_API CAbortRequest {
 public:
  Status AbortOperation() {
    m_aborted = true;
    return S_OK;
  }
  Status ResetAbort() {
    m_aborted = false;
    return S_OK;
  }
  /// 1 after AbortOperation, until ResetAbort.
  Status IsAborted(int& aborted) const {
    aborted = m_aborted ? 1 : 0;
    return S_OK;
  }

 protected:
  CAbortRequest() = default;
  ~CAbortRequest() = default;

  bool AbortRequested() const { return m_aborted; }

 private:
  bool m_aborted = false;
};

}  // namespace quillpg
