// The text records of the download: events, subsequences, the sequence.

#include "base/text.h"
#include "hardware/hardware_library.h"
#include "hardware/server2hal.h"
#include "program/event_manager.h"
#include "program/keywords.h"
#include "program/sequence_manager.h"
#include "program/subsequence_manager.h"

#include <initializer_list>
#include <optional>

namespace quillpg {

namespace {

constexpr int kJumpAlways = -1;
constexpr int kNoEvent = 0;  // events count from 1 in the records

void AppendRecord(std::string& text, std::initializer_list<int> fields) {
  for (const int field : fields) {
    if (!text.empty()) text += ',';
    AppendNumber(text, field);
  }
}

// Subsequences are told from blocks by the complement of their index.
std::optional<int> OutputField(const LINE_REFERENCES& references) {
  if (references.block) return references.block->first;
  if (references.subSequence) return ~references.subSequence->first;
  return std::nullopt;
}

std::optional<int> EventField(const INDEXED_NAME* event) {
  if (!event) return std::nullopt;
  return event->first + 1;
}

std::optional<int> WaitForField(const SEQUENCE_LINE& line, const LINE_REFERENCES& references) {
  const std::string& waitFor = line.GetWaitFor();
  if (waitFor.empty() || EqualNoCase(waitFor, KEYWORD_NONE)) return kNoEvent;
  return EventField(references.waitFor);
}

std::optional<int> JumpIfField(const SEQUENCE_LINE& line, const LINE_REFERENCES& references) {
  const std::string& jumpIf = line.GetJumpIf();
  if (jumpIf.empty()) return line.GetJumpTo().empty() ? kNoEvent : kJumpAlways;
  if (EqualNoCase(jumpIf, KEYWORD_NEVER)) return kNoEvent;
  if (EqualNoCase(jumpIf, KEYWORD_ALWAYS)) return kJumpAlways;
  return EventField(references.jumpIf);
}

std::optional<int> JumpToField(const SEQUENCE_LINE& line, const LINE_REFERENCES& references) {
  if (line.GetJumpTo().empty()) return 0;
  if (!references.jumpTo) return std::nullopt;
  return references.jumpTo->first;
}

// False when a name refers to nothing.
bool AppendSequenceRecord(const SEQUENCE_LINE& line, const LINE_REFERENCES& references,
                          std::string& text) {
  const auto output = OutputField(references);
  const auto waitFor = WaitForField(line, references);
  const auto jumpIf = JumpIfField(line, references);
  const auto jumpTo = JumpToField(line, references);
  if (!output || !waitFor || !jumpIf || !jumpTo) return false;
  AppendRecord(text, {*output, line.GetRepeatCount(), *waitFor, *jumpIf, *jumpTo,
                      static_cast<int>(line.GetSignalValue())});
  return true;
}

}  // namespace

char CServer2HAL::FormatEventSigVal(SignalValue value) {
  switch (value) {
    case SignalValue::Low:
      return '0';
    case SignalValue::High:
      return '1';
    default:
      return 'X';
  }
}

// A list that was edited while it was sent keeps its flag: the edits are sent next time.

// --- events --------------------------------------------------------------------------------------

Status CServer2HAL::SendEvents() {
  for (int module = 0; module < ModuleCount(); ++module) {
    // Asked for each module and cleared after the first: deliberate, the others get no events.
    if (!m_work.Program().Events()->IsModified()) return S_OK;
    const auto revision = m_work.Program().Events()->Revision();
    for (int i = 0; i < m_work.Program().EventCount(); ++i) {
      std::string text;
      const Status status = FormatEvent(i, text);
      if (status != S_OK) return status;
      if (CSorrelModule* hardware = HardwareAt(module))
        (void)hardware->DefineEvent(i + 1, text.c_str());  // the library reports its errors itself
      if (!YieldAndReport(i, m_work.Program().EventCount())) return ReportMissing(PG_E_INTERNAL);
    }
    if (m_work.Program().Events()->Revision() != revision) return S_OK;
    (void)m_work.Program().Events()->SetModified(0);
  }
  return S_OK;
}

Status CServer2HAL::FormatEvent(int index, std::string& text) const {
  const EVENT* event = m_work.Program().EventAt(index);
  if (!event) return ReportMissing(PG_E_INTERNAL);
  for (int i = 0; i < event->GetNoOfEventDefinitions(); ++i) {
    EVENT_DEFINITION* row = nullptr;
    (void)event->GetEventDefinition(i, &row);  // the pointer tells
    if (!row) return ReportMissing(PG_E_INTERNAL);
    if (i > 0) text += '|';
    text += row->Pattern();
  }
  return S_OK;
}

// --- subsequences --------------------------------------------------------------------------------

Status CServer2HAL::SendSubSequences() {
  if (!m_work.Program().SubSequences()->IsModified()) return S_OK;
  // Each subsequence's own flag goes with the first module: the list's keeps the others owed
  // theirs.
  (void)m_work.Program().SubSequences()->SetModified(1);
  const auto revision = m_work.Program().SubSequences()->Revision();
  for (int module = 0; module < ModuleCount(); ++module) {
    for (int i = 0; i < m_work.Program().SubSequenceCount(); ++i) {
      const Status status = SendSubSequence(i, module);
      if (status != S_OK) return status;
    }
  }
  if (m_work.Program().SubSequences()->Revision() == revision)
    (void)m_work.Program().SubSequences()->SetModified(0);
  return S_OK;
}

Status CServer2HAL::SendSubSequence(int index, int module) {
  std::string text;
  const auto revision = m_work.Program().SubSequences()->Revision();
  SUBSEQUENCE* subSequence = m_work.Program().SubSequenceAt(index);
  if (!subSequence) return ReportMissing(E_FAIL);
  for (int i = 0; i < subSequence->GetNoOfSubSequenceLines(); ++i) {
    if (AbortRequested()) return PG_E_ABORTED;
    SUBSEQUENCE_LINE* line = nullptr;
    (void)subSequence->GetSubSequenceLine(i, &line);  // the pointer tells
    if (!line) return ReportMissing(E_FAIL);
    const INDEXED_NAME* block = m_work.Index().SubSequenceLine(index, i);
    if (!block) return E_FAIL;
    AppendRecord(text, {block->first, line->GetRepeatCount()});
    if (!YieldAndReport(i, subSequence->GetNoOfSubSequenceLines())) return ReportMissing(E_FAIL);
    subSequence = m_work.Program().SubSequenceAt(index);
    if (!subSequence) return ReportMissing(E_FAIL);
  }
  if (CSorrelModule* hardware = HardwareAt(module))
    (void)hardware->DefineSubSequence(index + 1, subSequence->GetNoOfSubSequenceLines(), text);
  if (m_work.Program().SubSequences()->Revision() == revision) (void)subSequence->SetModified(0);
  return S_OK;
}

// --- sequence ------------------------------------------------------------------------------------

Status CServer2HAL::SendSequence() {
  if (!m_work.Program().Sequence()->IsModified()) return S_OK;
  const auto revision = m_work.Program().Sequence()->Revision();
  for (int module = 0; module < ModuleCount(); ++module) {
    const Status status = SendSequenceTo(module);
    if (status != S_OK) return status;
  }
  if (m_work.Program().Sequence()->Revision() == revision)
    (void)m_work.Program().Sequence()->SetModified(0);
  return S_OK;
}

Status CServer2HAL::SendSequenceTo(int module) {
  std::string text;
  for (int i = 0; i < m_work.Program().LineCount(); ++i) {
    if (AbortRequested()) return PG_E_ABORTED;
    const SEQUENCE_LINE* line = m_work.Program().LineAt(i);
    if (!line) return ReportMissing(E_FAIL);
    if (!AppendSequenceRecord(*line, m_work.Index().SequenceLine(i), text)) return E_FAIL;
    if (!YieldAndReport(i, m_work.Program().LineCount())) return ReportMissing(E_FAIL);
  }
  CSorrelModule* hardware = HardwareAt(module);
  if (hardware && !text.empty()) (void)hardware->DefineSequence(m_work.Program().LineCount(), text);
  return S_OK;
}

}  // namespace quillpg
