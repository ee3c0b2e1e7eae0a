#include "instrument/program_operation.h"

#include "app/message_catalogue.h"
#include "app/message_service.h"
#include "instrument/instrument.h"
#include "quillpg/message_router.h"

#include <cstdint>

namespace quillpg {

bool CProgramOperation::IsEnabled(const CInstrument& instrument) {
  int enabled = 0;
  (void)instrument.IsInstrumentEnabled(enabled);  // a stored value, cannot fail
  return enabled != 0;
}

std::string CProgramOperation::InstrumentName(const CInstrument& instrument) {
  std::string name;
  (void)instrument.GetInstrumentName(name);  // a stored value, cannot fail
  return name;
}

Status CProgramOperation::ReportMissing(Status status) {
  CMessageService::Notice(MSG_INTERNAL_ERROR);
  return status;
}

void CProgramOperation::SetProgressTitle(const std::string& text) {
  if (CMessageRouter* router = Router()) router->SetProgressTitle(text);
}

void CProgramOperation::SetProgressMessage(const std::string& text) {
  if (CMessageRouter* router = Router()) router->SetProgressMessage(text);
}

void CProgramOperation::SetProgressStatus(int percent) {
  if (CMessageRouter* router = Router()) router->SetProgressStatus(percent);
}

bool CProgramOperation::ReportProgress(int index, int count) {
  if (count > 0) SetProgressStatus(static_cast<int>(std::int64_t{index} * 100 / count));
  return m_work.StillThere();
}

bool CProgramOperation::YieldAndReport(int index, int count) {
  return m_work.Yield() && ReportProgress(index, count);
}

}  // namespace quillpg
