#include "app/message_service.h"

#include "app/message_catalogue.h"
#include "base/guard.h"
#include "base/text.h"
#include "hardware/hardware_library.h"
#include "quillpg/host_services.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace quillpg {

namespace {

// Help context of a text without a number of its own, and the mark that asks for the number.
constexpr int kOwnHelpContext = -1;

struct REPORT_FORMATS {
  std::string internal;
  std::string warning;
  std::string environment;
};

REPORT_FORMATS& Formats() {
  static REPORT_FORMATS formats;
  return formats;
}

std::string_view FileName(const char* path) {
  const std::string_view text = path ? path : "";
  return text.substr(text.rfind('\\') + 1);  // npos + 1 is 0: the whole path
}

[[noreturn]] void ReportAndExit(const std::string& format, const char* file, int line,
                                const std::string& message) {
  (void)GuardAllocation([&] {
    (void)CMessageService::ShowText(FormatText(format, {FileName(file), line, message}),
                                    BOX_SYSTEM_MODAL | BOX_ICON_STOP | BOX_OK, kOwnHelpContext,
                                    ANSWER_OK);
    return S_OK;
  });
  // No destructors: the state they would work on is broken. The exit code must be 1 all the same.
  (void)std::fflush(nullptr);
  std::_Exit(1);
}

}  // namespace

int CMessageService::ShowMessage(int number, int style, int helpContext, int defaultAnswer) {
  if (GblClientConnected != 0) return defaultAnswer;
  const int context = helpContext == kOwnHelpContext ? number : helpContext;
  return ShowText(Text(number), style, context, defaultAnswer);
}

int CMessageService::ShowText(const std::string& text, int style, int helpContext,
                              int defaultAnswer) {
  if (GblClientConnected != 0) return defaultAnswer;
  int answer = defaultAnswer;
  (void)GuardAllocation([&] {  // a box that does not fit is done without
    answer = CHostServices::Get().ShowBox(text, style, helpContext, defaultAnswer);
    return S_OK;
  });
  return answer;
}

void CMessageService::Notice(int number) {
  (void)ShowMessage(number, BOX_OK, kOwnHelpContext, ANSWER_OK);
}

void CMessageService::Notice(const std::string& text) {
  (void)ShowText(text, BOX_OK, kOwnHelpContext, ANSWER_OK);
}

bool CMessageService::Ask(int number) {
  return ShowMessage(number, BOX_YESNO, kOwnHelpContext, ANSWER_YES) == ANSWER_YES;
}

bool CMessageService::Ask(const std::string& text) {
  return ShowText(text, BOX_YESNO, kOwnHelpContext, ANSWER_YES) == ANSWER_YES;
}

Status CMessageService::GetText(int number, std::string& text) {
  return GuardAllocation([&] {
    if (CHostServices::Get().LoadText(number, text)) return S_OK;
    text = GetBuiltInText(number);
    return text.empty() ? E_FAIL : S_OK;
  });
}

std::string CMessageService::Text(int number) {
  std::string text;
  (void)GetText(number, text);  // an unknown number gives an empty text
  return text;
}

void CMessageService::SetReportFormats(const std::string& internal, const std::string& warning,
                                       const std::string& environment) {
  (void)GuardAllocation([&] {
    Formats() = {internal, warning, environment};
    return S_OK;
  });
}

void CMessageService::ReportInternalError(const char* file, int line, const std::string& message) {
  ReportAndExit(Formats().internal, file, line, message);
}

void CMessageService::ReportEnvironmentError(const char* file, int line,
                                             const std::string& message) {
  ReportAndExit(Formats().environment, file, line, message);
}

void CMessageService::ReportWarning(const std::string& message) {
  (void)GuardAllocation([&] {
    (void)ShowText(FormatText(Formats().warning, {message}), BOX_ICON_INFORMATION | BOX_OK,
                   kOwnHelpContext, ANSWER_OK);
    return S_OK;
  });
}

}  // namespace quillpg
