#include "commands.h"
#include "compiler/compiler.h"
#include "exchange/vcd_writer.h"
#include "exit_status.h"
#include "hardware/simulation/call_trace.h"
#include "interrupt.h"
#include "pending_file.h"
#include "player.h"
#include "program_file.h"
#include "quillpg/app_server.h"
#include "report.h"
#include "server_session.h"
#include "stimulus_file.h"
#include "terminal_router.h"

#include <algorithm>
#include <memory>

namespace quillpg::tool {
namespace {

// Where a program that has no length of its own is stopped without --max-vectors.
constexpr std::int64_t kUnlimitedVectors = 16777216;

/// One `quillpg run`. The steps stand in the order of their calls; each gives an exit status.
class CRun {
 public:
  explicit CRun(const RUN_OPTIONS& options)
      : m_options(options),
        m_router(!options.input.quiet && CTerminalRouter::OnTerminal()),
        m_session(m_router) {}

  ~CRun() {
    m_session.Simulation().RemoveVectorSink(&m_dump);
    if (m_trace) m_session.Simulation().RemoveCallSink(m_trace.get());
  }
  CRun(const CRun&) = delete;
  CRun& operator=(const CRun&) = delete;

  int Execute() {
    for (const auto step : {&CRun::CheckPaths, &CRun::ReadStimulus, &CRun::StartTrace, &CRun::Load,
                            &CRun::Check, &CRun::Download, &CRun::OpenDump}) {
      const int status = (this->*step)();
      if (status != STATUS_GOOD) return status;
      if (Interrupted()) return InterruptStatus();
    }
    return Finish(Play());
  }

 private:
  void Tell(const std::string& text) {
    m_router.EraseBar();
    if (!m_options.input.quiet) PrintLine(text);
  }

  /// No output may replace an input or the other output.
  int CheckPaths() {
    const std::string* const outputs[] = {&m_options.vcd, &m_options.trace};
    const std::string* const all[] = {&m_options.input.file, &m_options.stimulus, &m_options.vcd,
                                      &m_options.trace};
    for (const std::string* output : outputs) {
      for (const std::string* other : all) {
        if (output == other || output->empty() || other->empty()) continue;
        if (IsSameFile(*output, *other)) {
          return Refuse(
              *output + ": cannot be output and " +
              (other == &m_options.vcd || other == &m_options.trace ? "another output" : "input") +
              " at once");
        }
      }
    }
    return STATUS_GOOD;
  }

  int ReadStimulus() {
    if (m_options.stimulus.empty()) return STATUS_GOOD;
    std::string error;
    if (!ReadStimulusFile(m_options.stimulus, m_stimulus, error)) return Refuse(error);
    return STATUS_GOOD;
  }

  /// From before the engine starts, so that discovery and settings are seen too.
  int StartTrace() {
    if (m_options.trace.empty()) return STATUS_GOOD;
    std::string error;
    if (!m_traceFile.Open(m_options.trace, error)) return Refuse(error);
    m_trace = std::make_unique<CCallTrace>(m_traceFile.Stream());
    m_session.Simulation().AddCallSink(m_trace.get());
    return STATUS_GOOD;
  }

  int Load() {
    const int status = m_file.Load(m_options.input, m_session, m_router);
    m_router.EraseBar();
    if (status == STATUS_GOOD) Tell(m_options.input.file + ": " + m_file.Summary());
    return status;
  }

  int Check() {
    const Status status = m_session.Server()->Compile();
    m_router.EraseBar();
    if (status == PG_E_ABORTED) return InterruptStatus();
    if (status == S_OK) {
      CCompiler* compiler = nullptr;
      int warnings = 0;
      if (m_session.Server()->GetCompiler(&compiler) == S_OK) {
        (void)compiler->GetNoOfWarnings(warnings);
      }
      Tell("checked: no errors, " + Counted(warnings, "warning"));
      return STATUS_GOOD;
    }
    for (const std::string& line : m_router.OutputLines()) {
      ReportError(m_options.input.file + ": " + line);
    }
    return STATUS_PROGRAM_ERRORS;
  }

  int Download() {
    const Status status = m_session.Server()->Download();
    m_router.EraseBar();
    if (status == PG_E_ABORTED) return InterruptStatus();
    if (Failed(status)) return Refuse("the download failed: " + StatusText(status));
    Tell("downloaded");
    return STATUS_GOOD;
  }

  int OpenDump() {
    if (m_options.vcd.empty()) return STATUS_GOOD;
    const VCD_OPTIONS format{m_options.bits, m_options.annotate};
    const Status status = m_dump.Open(m_options.vcd, m_file.Instruments(), format);
    if (Failed(status)) return Refuse(m_dump.GetErrorText());
    m_session.Simulation().AddVectorSink(&m_dump);
    return STATUS_GOOD;
  }

  PlayResult Play() {
    if (Failed(m_session.Simulation().SetStimulus(m_stimulus))) return PlayResult::Failed;
    PLAY_LIMITS limits{.vectors = m_file.Length().value_or(kUnlimitedVectors),
                       .holdWaits = m_options.maxVectors.has_value()};
    if (m_options.maxVectors) {
      limits.vectors = m_file.Length() ? std::min(*m_file.Length(), *m_options.maxVectors)
                                       : *m_options.maxVectors;
    }
    CPlayer player(*m_session.Server(), m_session.Simulation(), m_router);
    const PlayResult result =
        m_options.step ? player.PlayStepwise(limits, *m_options.step) : player.Play(limits);
    m_router.EraseBar();
    if (result == PlayResult::Limit && !m_file.Length() && !m_options.maxVectors) {
      ReportNotice("stopped after " + Counted(kUnlimitedVectors, "vector") +
                   "; --max-vectors plays longer");
    }
    if (result == PlayResult::Idle || result == PlayResult::Limit) {
      Tell("played " + Counted(player.Clocked(), "vector"));
    } else if (result == PlayResult::Waiting) {
      ReportError("the play ended after " + Counted(player.Clocked(), "vector") +
                  ": it waits for an event that cannot come any more");
    }
    return result;
  }

  /// Gives the output files their names, but only after a play that ended by itself.
  int Finish(PlayResult result) {
    if (result == PlayResult::Interrupted) return InterruptStatus();
    if (result == PlayResult::Failed) return Refuse("the simulation cannot go on: out of memory");
    if (!m_options.vcd.empty()) {
      if (Failed(m_dump.Commit())) return Refuse(m_dump.GetErrorText());
      Tell("pins written to " + m_options.vcd);
    }
    if (!m_options.trace.empty()) {
      std::string error;
      if (!m_traceFile.Commit(error)) return Refuse(error);
      Tell("calls written to " + m_options.trace);
    }
    if (!FlushOutput()) return STATUS_UNUSABLE;
    return result == PlayResult::Waiting ? STATUS_WAITS_FOR_GOOD : STATUS_GOOD;
  }

  const RUN_OPTIONS& m_options;
  std::vector<STIMULUS_LINE> m_stimulus;
  CPendingFile m_traceFile;
  std::unique_ptr<CCallTrace> m_trace;
  CVcdWriter m_dump;
  CTerminalRouter m_router;
  CServerSession m_session;
  CProgramFile m_file;
};

}  // namespace

int RunCommand(const RUN_OPTIONS& options) { return CRun(options).Execute(); }

}  // namespace quillpg::tool
