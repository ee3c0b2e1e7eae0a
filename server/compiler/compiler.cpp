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
  (void)m_server->GetMessageRouter(&m_router);  // none: nobody is told
  const Status status = GuardAllocation([this] { return CompileAll(); });
  m_router = nullptr;
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
    PrepareToCompile(i, *instrument);
    status = CompileInstrument();
    if (status != S_OK) break;
    i = m_work.Position();
  }
  CompilationOver(status);
  return status;
}

Status CCompiler::CompileInstrument() {
  Status status = S_OK;
  if (m_work.Program().Blocks()->IsModified()) status = CompileBlock();
  if (status == S_OK && m_work.Program().Sequence()->IsModified()) status = CompileSequence();
  if (status == S_OK && m_work.Program().SubSequences()->IsModified())
    status = CompileSubSequence();
  if (status == S_OK && m_work.Program().Events()->IsModified()) status = CompileEvent();
  return status;
}

void CCompiler::Clear() {
  SetMessage("", kClearWindow);
  (void)ResetAbort();
  m_errors = 0;
  m_warnings = 0;
  m_outputLines = 0;
  m_place = CompileErrorInfo();
  m_keys.clear();
  m_records.clear();
}

void CCompiler::PrepareToCompile(int position, CInstrument& instrument) {
  m_work.Open(*m_instruments, instrument, position);
  m_place.instrumentIndex = position;
  m_place.instrumentName = InstrumentName(instrument);
  const std::string title = FormatText("Compiling %s...", {m_place.instrumentName});
  SetMessage(title, kAppendLine);
  SetProgressTitle(title);
}

void CCompiler::CompilationOver(Status status) {
  SetMessage(status == PG_E_ABORTED
                 ? "Compilation Aborted..."
                 : FormatText("%d error(s), %d warning(s)...", {m_errors, m_warnings}),
             kAppendLine);
}

// --- the walk ------------------------------------------------------------------------------------

void CCompiler::BeginCheck(Section section, int firstLine, std::string_view what) {
  m_place.section = section;
  m_place.line = firstLine;
  m_place.itemIndex = -1;
  SetProgressMessage(
      FormatText("Checking %s %s Definition...", {m_place.instrumentName, std::string(what)}));
}

Status CCompiler::AfterObject(int index, int count) {
  if (!m_work.Yield()) return ReportMissing(PG_E_INTERNAL);
  m_place.instrumentIndex = m_work.Position();
  (void)m_server->GetMessageRouter(&m_router);  // anew: it may have been replaced
  ReportProgress(index, count);
  return S_OK;
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
  record.column = column;
  record.errorType = type;
  record.error = error;
  record.text = text;
  m_keys.push_back({m_outputLines, static_cast<int>(m_records.size()) - 1});
  SetMessage(m_text.Format(record), kAppendLine);
  if (type == ErrorType::Error) ++m_errors;
  if (type == ErrorType::Warning) ++m_warnings;
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
  const auto key = std::ranges::lower_bound(m_keys, outputLine, {}, &KEY::outputLine);
  if (key == m_keys.end() || key->outputLine != outputLine) return E_FAIL;
  return GuardAllocation([&] {
    info = m_records[static_cast<std::size_t>(key->record)];
    return S_OK;
  });
}

// --- the front end's router ----------------------------------------------------------------------

void CCompiler::SetMessage(const std::string& text, int flag) {
  if (!m_router) return;
  ++m_outputLines;
  m_router->SetMessage(text, flag);
}

void CCompiler::SetEmptyMessage(int count) {
  for (int i = 0; i < count; ++i) SetMessage("", kAppendLine);
}

}  // namespace quillpg
