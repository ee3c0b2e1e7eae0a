#include "program_file.h"

#include "exchange/sample_period.h"
#include "exchange/vcd_description.h"
#include "exchange/vcd_reader.h"
#include "exit_status.h"
#include "input_text.h"
#include "instrument/instrument_manager.h"
#include "interrupt.h"
#include "quillpg/app_server.h"
#include "report.h"
#include "server_session.h"
#include "setup_file.h"
#include "terminal_router.h"

namespace quillpg::tool {
namespace {

// What the user can do about a capture that cannot be planned.
std::string_view HintFor(Status planned) {
  if (planned == E_FAIL) return "; give --period";
  return planned == PG_E_LIMIT ? "; a longer --period gives fewer vectors" : "";
}

}  // namespace

int CProgramFile::Load(const INPUT_OPTIONS& options, CServerSession& session,
                       CTerminalRouter& router) {
  std::string fault;
  if (!IsReadable(options.file, fault)) return Refuse(fault);
  const int status = CSetupFile::IsSetupFile(options.file) ? LoadSetup(options, session)
                                                           : LoadCapture(options, session, router);
  session.OnInterrupt(nullptr);
  return status;
}

int CProgramFile::LoadSetup(const INPUT_OPTIONS& options, CServerSession& session) {
  CSetupFile file;
  int status = file.Read(options);
  if (status == STATUS_GOOD) status = file.LoadForPlay(session);
  if (status != STATUS_GOOD) return status;
  CInstrumentManager* instruments = nullptr;
  int count = 0;
  (void)session.Server()->GetInstrumentManager(&instruments);
  (void)instruments->GetNoOfInstruments(count);
  for (int i = 0; i < count; ++i) {
    CInstrument* instrument = nullptr;
    (void)instruments->GetInstrumentAt(i, &instrument);
    VCD_INSTRUMENT description;
    // An instrument that got no module drives no pins.
    if (!instrument || Failed(DescribeInstrument(*instrument, description))) continue;
    m_instruments.push_back(std::move(description));
  }
  const SETUP_FILE_CONTENTS& contents = file.Contents();
  m_summary =
      Counted(count, "instrument") + ", " +
      Counted(static_cast<std::int64_t>(contents.fixedSection.memoryDepths.size()), "module") +
      (contents.fixedSection.programDataSaved != 0 ? "" : ", without a program");
  return STATUS_GOOD;
}

int CProgramFile::LoadCapture(const INPUT_OPTIONS& options, CServerSession& session,
                              CTerminalRouter& router) {
  RATIO period;
  if (!options.period.empty() && ParsePeriod(options.period, period) != S_OK) {
    return Refuse("--period " + options.period + ": not a period such as 62.5ns, 1us or 1e-6");
  }
  m_import.SetMessageRouter(&router);
  session.OnInterrupt([this] { m_import.AbortOperation(); });

  Status status = m_import.Read(options.file);
  std::string_view hint;
  if (!Failed(status)) {
    status = m_import.Plan(period);
    hint = HintFor(status);
  }
  if (!Failed(status)) status = m_import.ConfigureSimulation(session.Simulation());
  router.EraseBar();
  if (Failed(status)) return RefuseCapture(status, options, hint);
  if (!session.Server()) return STATUS_UNUSABLE;

  CInstrument* instrument = nullptr;
  status = m_import.Load(&instrument);
  VCD_INSTRUMENT description;
  if (!Failed(status)) status = m_import.DescribeForVcd(description);
  router.EraseBar();
  if (Failed(status)) return RefuseCapture(status, options);

  for (const std::string& notice : m_import.GetNotices()) ReportNotice(notice);
  m_length = m_import.GetLength();
  m_instruments = {std::move(description)};
  Summarize();
  return STATUS_GOOD;
}

int CProgramFile::RefuseCapture(Status status, const INPUT_OPTIONS& options,
                                std::string_view hint) {
  if (status == PG_E_ABORTED && Interrupted()) return InterruptStatus();
  const std::string& text = m_import.GetErrorText();
  if (text.empty()) return Refuse(options.file + ": " + StatusText(status));
  return Refuse(text + std::string(hint));
}

void CProgramFile::Summarize() {
  const CAPTURE& capture = m_import.GetCapture();
  const CAPTURE_PLAN& plan = m_import.GetPlan();
  m_summary = Counted(static_cast<std::int64_t>(capture.signals.size()), "signal") + ", " +
              Counted(m_import.GetLength(), "vector") + " of " + FormatPeriod(plan.grid.period) +
              "; " + Counted(plan.modules, "module") + ", " +
              std::string(GetDisplayText(plan.mode)) +
              (plan.memoryOption ? " with memory option" : "") + "; " +
              Counted(static_cast<std::int64_t>(plan.program.blocks.size()), "block") + " in " +
              Counted(static_cast<std::int64_t>(plan.program.lines.size()), "line");
}

}  // namespace quillpg::tool
