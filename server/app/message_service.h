#pragma once

#include "quillpg/api.h"
#include "quillpg/result_codes.h"

#include <string>

namespace quillpg {

/// Shows the user what happened, through the host's message box. While GblClientConnected is
/// non-zero nothing is shown and every question is answered with its default.
///
/// Never asks for the root object: it serves while that is being made.
class QUILLPG_API CMessageService {
 public:
  CMessageService() = delete;

  /// Shows catalogue entry `number` (see message_catalogue.h) and gives the button pressed. A help
  /// context of -1 stands for the number itself; an unknown number shows an empty box.
  static int ShowMessage(int number, int style, int helpContext, int defaultAnswer);

  /// The same for a text that the caller has formatted; the help context goes on as it is.
  static int ShowText(const std::string& text, int style, int helpContext, int defaultAnswer);

  /// Plain notice: OK box, default answer OK.
  static void Notice(int number);
  static void Notice(const std::string& text);

  /// Yes/no question, true for yes; the default answer is yes, so that a remote client goes on.
  static bool Ask(int number);
  static bool Ask(const std::string& text);

  /// The host's localised text or the built-in one; empty and E_FAIL for an unknown number.
  static Status GetText(int number, std::string& text);
  static std::string Text(int number);

  /// Formats of the three reports, empty at start. `internal` and `environment` take %s file name,
  /// %d line, %s message (catalogue MSG_REPORT_INTERNAL_ERROR, MSG_REPORT_ENVIRONMENT_ERROR),
  /// `warning` takes %s message (MSG_REPORT_WARNING). Mind the order of the arguments.
  static void SetReportFormats(const std::string& internal, const std::string& warning,
                               const std::string& environment);

  // Reports for fatal situations of a front end; the engine itself raises none. The first two end
  // the process with exit code 1, shown or not. `file` is cut to what follows its last backslash; a
  // path with slashes stays whole. Null counts as empty.
  [[noreturn]] static void ReportInternalError(const char* file, int line,
                                               const std::string& message);
  [[noreturn]] static void ReportEnvironmentError(const char* file, int line,
                                                  const std::string& message);
  static void ReportWarning(const std::string& message);
};

}  // namespace quillpg
