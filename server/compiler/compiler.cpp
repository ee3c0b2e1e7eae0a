#include "compiler/compiler.h"

#include "base/guard.h"
#include "base/text.h"
#include "instrument/instrument.h"
#include "instrument/instrument_manager.h"
#include "program/block_manager.h"
#include "program/event_manager.h"
#include "program/sequence_manager.h"
#include "program/subsequence_manager.h"
#include "quillpg/app_server.h"
#include "quillpg/host_services.h"
#include "quillpg/message_router.h"

#include <algorithm>

namespace quillpg {

namespace {

// Flags of an output line: an empty line with the first clears the window.
constexpr int kClearWindow = 0;
constexpr int kAppendLine = 1;

}  // namespace

Status CCompiler::Initialize(CAppServer* server) {
  if (!server) return E_FAIL;
  m_server = server;
  (void)m_server->GetInstrumentManager(&m_instruments);  // null is refused by Compile
  return GuardAllocation([this] {
    m_text.Load();
    return S_OK;
  });
}

Status CCompiler::Compile() {
  if (!m_instruments) return E_FAIL;
  const CBusyMark busy(*m_instruments);
  if (!busy.Taken()) return E_FAIL;
  const CWaitCursor cursor;
  const Status status = GuardAllocation([this] { return CompileAll(); });
  m_work.Close();
  // What else ended the run shows in the count, or was told in a box.
  if (status == PG_E_ABORTED || status == E_FAIL) return status;
  return m_errors > 0 ? E_FAIL : S_OK;
}

Status CCompiler::CompileAll() {
  Clear();
  Status status = S_OK;
  int count = 0;
  for (int i = 0; m_instruments->GetNoOfInstruments(count) == S_OK && i < count; ++i) {
    CInstrument* instrument = nullptr;
    (void)m_instruments->GetInstrumentAt(i, &instrument);  // the pointer tells
    if (!instrument || !IsEnabled(*instrument)) continue;
    status = PrepareToCompile(i, *instrument);
    if (status == S_OK) status = CompileInstrument();
    if (status != S_OK) break;
    i = m_work.Position();
  }
  if (status == PG_E_INTERNAL) (void)ReportMissing(status);
  CompilationOver(status);
  return status;
}

Status CCompiler::CompileInstrument() {
  const CProgramView& program = m_work.Program();
  Status status = S_OK;
  if (program.Blocks()->IsModified()) status = TellFindings(CompileBlock());
  if (status == S_OK && program.Sequence()->IsModified()) status = TellFindings(CompileSequence());
  if (status == S_OK && program.SubSequences()->IsModified())
    status = TellFindings(CompileSubSequence());
  if (status == S_OK && program.Events()->IsModified()) status = TellFindings(CompileEvent());
  return status;
}

void CCompiler::Clear() {
  SetMessage("", kClearWindow);
  (void)ResetAbort();
  m_errors = 0;
  m_warnings = 0;
  m_outputLines = 0;
  m_place = CompileErrorInfo();
  m_records.clear();
  m_linesOfRecords.clear();
}

Status CCompiler::PrepareToCompile(int position, CInstrument& instrument) {
  m_work.Open(*m_instruments, instrument, position);
  m_place.instrumentName = InstrumentName(instrument);
  const std::string title = FormatText("Compiling %s...", {m_place.instrumentName});
  SetMessage(title, kAppendLine);
  SetProgressTitle(title);
  return m_work.StillThere() ? S_OK : PG_E_INTERNAL;
}

void CCompiler::CompilationOver(Status status) {
  SetMessage(status == PG_E_ABORTED
                 ? "Compilation Aborted..."
                 : FormatText("%d error(s), %d warning(s)...", {m_errors, m_warnings}),
             kAppendLine);
}

// --- the walk ------------------------------------------------------------------------------------

bool CCompiler::BeginCheck(Section section, int firstLine, std::string_view what) {
  m_place.section = section;
  m_place.line = firstLine;
  m_place.itemIndex = -1;
  SetProgressMessage(
      FormatText("Checking %s %s Definition...", {m_place.instrumentName, std::string(what)}));
  return m_work.StillThere();
}

// --- findings ------------------------------------------------------------------------------------

void CCompiler::Error(int column, CompileError error, const std::string& text) {
  SetErrorInfo(column, ErrorType::Error, error, text);
}

void CCompiler::Warning(int column, CompileError error, const std::string& text) {
  SetErrorInfo(column, ErrorType::Warning, error, text);
}

void CCompiler::SetErrorInfo(int column, ErrorType type, CompileError error,
                             const std::string& text) {
  CompileErrorInfo& record = m_records.emplace_back(m_place);
  record.instrumentIndex = m_work.Position();
  record.column = column;
  record.errorType = type;
  record.error = error;
  record.text = text;
}

Status CCompiler::TellFindings(Status status) {
  while (m_linesOfRecords.size() < m_records.size()) {
    const CompileErrorInfo& record = m_records[m_linesOfRecords.size()];
    m_linesOfRecords.push_back(m_outputLines);
    SetMessage(m_text.Format(record), kAppendLine);
    if (record.errorType == ErrorType::Error) ++m_errors;
    if (record.errorType == ErrorType::Warning) ++m_warnings;
  }
  return status == S_OK && !m_work.StillThere() ? PG_E_INTERNAL : status;
}

Status CCompiler::GetNoOfErrors(int& count) const {
  count = m_errors;
  return S_OK;
}

Status CCompiler::GetNoOfWarnings(int& count) const {
  count = m_warnings;
  return S_OK;
}

Status CCompiler::GetCompileErrorInfo(int outputLine, CompileErrorInfo& info) const {
  const auto line = std::ranges::lower_bound(m_linesOfRecords, outputLine);
  if (line == m_linesOfRecords.end() || *line != outputLine) return E_FAIL;
  return GuardAllocation([&] {
    info = m_records[static_cast<std::size_t>(line - m_linesOfRecords.begin())];
    return S_OK;
  });
}

// --- the front end's router ----------------------------------------------------------------------

// Asked for each time: the front end may replace its router at any time.
CMessageRouter* CCompiler::Router() const {
  CMessageRouter* router = nullptr;
  (void)m_server->GetMessageRouter(&router);  // the pointer tells
  return router;
}

void CCompiler::SetMessage(const std::string& text, int flag) {
  CMessageRouter* router = Router();
  if (!router) return;
  ++m_outputLines;
  router->SetMessage(text, flag);
}

void CCompiler::SetEmptyMessage(int count) {
  for (int i = 0; i < count; ++i) SetMessage("", kAppendLine);
}

}  // namespace quillpg
