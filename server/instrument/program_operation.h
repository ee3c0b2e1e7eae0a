#pragma once

#include "base/abort_request.h"
#include "instrument/program_work.h"
#include "quillpg/api.h"
#include "quillpg/result_codes.h"

#include <string>

namespace quillpg {

class CInstrument;
class CMessageRouter;

/// What compile and download share: both walk the programs of all enabled instruments, hand control
/// to the front end after each object, which may abort them then, and tell of their progress.
class QUILLPG_API CProgramOperation : public CAbortRequest {
 public:
  CProgramOperation(const CProgramOperation&) = delete;
  CProgramOperation& operator=(const CProgramOperation&) = delete;
  virtual ~CProgramOperation() = default;

 protected:
  CProgramOperation() = default;

  static bool IsEnabled(const CInstrument& instrument);
  static std::string InstrumentName(const CInstrument& instrument);
  /// Tells the user that an object which must exist is missing; gives `status`.
  static Status ReportMissing(Status status);

  // To the front end's router; nothing happens without one.
  void SetProgressTitle(const std::string& text);
  void SetProgressMessage(const std::string& text);
  void SetProgressStatus(int percent);
  /// The object at `index` of `count` is done.
  void ReportProgress(int index, int count);

  CMessageRouter* m_router = nullptr;  ///< referenced
  CProgramWork m_work;                 ///< the program at hand
};

}  // namespace quillpg
