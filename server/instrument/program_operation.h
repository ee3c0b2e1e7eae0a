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

  /// The front end's router of this moment; null: nobody is told.
  virtual CMessageRouter* Router() const = 0;

  // To the router. It may change or delete what the operation works on: ask the work afterwards.
  void SetProgressTitle(const std::string& text);
  void SetProgressMessage(const std::string& text);
  void SetProgressStatus(int percent);
  /// The object at `index` of `count` is done. False when the instrument is gone after that.
  bool ReportProgress(int index, int count);
  /// Lets the message loop run first; false also when the instrument is gone after that.
  bool YieldAndReport(int index, int count);

  CProgramWork m_work;  ///< the program at hand
};

}  // namespace quillpg
