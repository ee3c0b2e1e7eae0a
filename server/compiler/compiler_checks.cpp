#include "base/text.h"
#include "compiler/compiler.h"
#include "instrument/instrument.h"
#include "instrument/mode_limits.h"
#include "program/block.h"
#include "program/event.h"
#include "program/keywords.h"
#include "program/sequence_line.h"
#include "program/subsequence.h"
#include "quillpg/limits.h"

#include <algorithm>

namespace quillpg {

namespace {

// Columns of the front end's grids.
constexpr int kNameColumn =
    1;  // of blocks, subsequences and events; the block of a definition line
constexpr int kBlockSizeColumn = 2;
constexpr int kLabelColumn = 1;
constexpr int kWaitForColumn = 2;
constexpr int kOutputColumn = 4;
constexpr int kRepeatColumn = 6;
constexpr int kJumpIfColumn = 7;
constexpr int kJumpToColumn = 9;
constexpr int kDefinitionRepeatColumn = 3;
constexpr int kEventRowsColumn = 0;

// Line numbers run from 1; the sequence's from 2, see CompileErrorInfo::line.
constexpr int kFirstLine = 1;
constexpr int kFirstSequenceLine = 2;

// "Blank" is the space character alone; trimming knows more.
bool IsValidName(std::string_view trimmed) {
  return !trimmed.empty() && trimmed.size() <= MAX_NAME_LENGTH &&
         trimmed.find(' ') == std::string_view::npos;
}

bool IsValidRepeat(int count) { return count >= 1 && count <= MAX_REPEAT_COUNT; }

}  // namespace

// --- names ---------------------------------------------------------------------------------------

void CCompiler::CheckName(const std::string& name) {
  const std::string_view trimmed = Trim(name);
  if (IsKeyword(trimmed)) {
    Error(kNameColumn, CompileError::Keyword, name);
  } else if (!IsValidName(trimmed)) {
    Error(kNameColumn, CompileError::Invalid, name);
  }
}

void CCompiler::CheckUse(const INDEXED_NAME* name, const std::string& text) {
  if (!name || !name->used) Warning(kNameColumn, CompileError::NotReferenced, text);
}

void CCompiler::CheckUnique(const INDEXED_NAME* name, const std::string& text) {
  if (!name || name->count != 1) Error(kNameColumn, CompileError::AlreadyDefined, text);
}

// --- blocks --------------------------------------------------------------------------------------

Status CCompiler::CompileBlock() {
  if (!BeginCheck(Section::BlockList, kFirstLine, "Block")) return PG_E_INTERNAL;
  if (m_work.Program().BlockCount() > MAX_BLOCKS)
    Error(kNameColumn, CompileError::InvalidRange, "");
  const Status status = ForEachObject(&CProgramView::BlockCount, &CProgramView::BlockAt, kFirstLine,
                                      [this](int, BLOCK& block) {
                                        CheckOneBlock(block);
                                        return S_OK;
                                      });
  if (status != S_OK) return status;
  if (CheckBlockSize() == PG_E_LIMIT) Error(kBlockSizeColumn, CompileError::MemoryExceeded, "");
  return S_OK;
}

void CCompiler::CheckOneBlock(BLOCK& block) {
  const std::string& name = block.GetBlockName();
  const INDEXED_NAME* found = m_work.Index().Block(name);
  (void)block.SetUsed(found && found->used ? 1 : 0);  // a plain store
  if (name.empty()) {
    Error(kNameColumn, CompileError::NameEmpty, "");
  } else {
    CheckName(name);
    CheckUse(found, name);
    CheckUnique(found, name);
  }
  if (!IsValidBlockSize(block.GetBlockSize()))
    Error(kBlockSizeColumn, CompileError::Invalid, FormatText("%d", {block.GetBlockSize()}));
}

bool CCompiler::IsValidBlockSize(int size) const {
  const CInstrument* instrument = m_work.Instrument();
  int least = 0;
  long most = 0;
  if (!instrument || instrument->GetMinBlocksize(least) != S_OK ||
      instrument->GetMaxBlocksize(most) != S_OK)
    return false;
  return size >= least && size <= most;
}

Status CCompiler::CheckBlockSize() const {
  const CInstrument* instrument = m_work.Instrument();
  ChannelMode mode = ChannelMode::Full;
  long depth = 0;
  if (!instrument || instrument->GetChannelMode(mode) != S_OK ||
      instrument->GetMemoryDepth(depth) != S_OK)
    return E_FAIL;
  CBlockMemory memory(LimitsOf(mode).blockGranularity);
  for (int i = 0; i < m_work.Program().BlockCount(); ++i) {
    const BLOCK* block = m_work.Program().BlockAt(i);
    if (block) memory.Add(block->GetBlockSize());
  }
  return memory.Vectors() > depth ? PG_E_LIMIT : S_OK;
}

// --- sequence ------------------------------------------------------------------------------------

Status CCompiler::CompileSequence() {
  if (!BeginCheck(Section::SequenceList, kFirstSequenceLine, "Sequence")) return PG_E_INTERNAL;
  const int count = m_work.Program().LineCount();
  if (count > MAX_SEQUENCE_LINES) Error(kLabelColumn, CompileError::InvalidRange, "");
  if (count == 0) Error(kLabelColumn, CompileError::ListEmpty, "");
  const Status status =
      ForEachObject(&CProgramView::LineCount, &CProgramView::LineAt, kFirstSequenceLine,
                    [this](int index, const SEQUENCE_LINE& line) {
                      CheckLine(line, m_work.Index().SequenceLine(index));
                      return S_OK;
                    });
  if (status != S_OK) return status;
  const Status length = CheckMaxSequenceLines();
  if (length != S_OK) Error(kLabelColumn, CompileError::TooManyLines, "");
  return length;
}

void CCompiler::CheckLine(const SEQUENCE_LINE& line, const LINE_REFERENCES& references) {
  CheckLabel(line.GetLabel());
  const std::string& waitFor = line.GetWaitFor();
  if (!waitFor.empty() && !references.waitFor && !EqualNoCase(waitFor, KEYWORD_NONE))
    Error(kWaitForColumn, CompileError::Undefined, waitFor);
  CheckOutput(line.GetOutput(), references);
  const int repeat = line.GetRepeatCount();
  if (repeat != 0 && !IsValidRepeat(repeat))  // 0: endlessly
    Error(kRepeatColumn, CompileError::Invalid, FormatText("%d", {repeat}));
  CheckJump(line, references);
}

void CCompiler::CheckLabel(const std::string& label) {
  if (label.empty()) return;
  CheckName(label);
  const INDEXED_NAME* found = m_work.Index().Label(label);
  if (found && found->count > 1) Error(kLabelColumn, CompileError::AlreadyDefined, label);
}

void CCompiler::CheckOutput(const std::string& output, const LINE_REFERENCES& references) {
  if (output.empty()) {
    Error(kOutputColumn, CompileError::NameEmpty, "");
  } else if (!references.block && !references.subSequence) {
    Error(kOutputColumn, CompileError::Undefined, output);
  } else if (references.block && references.subSequence) {
    Error(kOutputColumn, CompileError::BlockAndSubSequence, output);
  }
}

void CCompiler::CheckJump(const SEQUENCE_LINE& line, const LINE_REFERENCES& references) {
  const std::string& jumpIf = line.GetJumpIf();
  const std::string& jumpTo = line.GetJumpTo();
  if (!jumpIf.empty() && !references.jumpIf && !EqualNoCase(jumpIf, KEYWORD_ALWAYS) &&
      !EqualNoCase(jumpIf, KEYWORD_NEVER)) {
    Error(kJumpIfColumn, CompileError::Undefined, jumpIf);
    return;  // the target means nothing then
  }
  // "Never" needs a target too: deliberate.
  if (!jumpIf.empty() && jumpTo.empty()) Error(kJumpToColumn, CompileError::JumpToMissing, "");
  if (!jumpTo.empty() && !references.jumpTo) Error(kJumpToColumn, CompileError::Undefined, jumpTo);
}

Status CCompiler::CheckMaxSequenceLines() {
  const int count = m_work.Program().LineCount();
  if (count >= MAX_SEQUENCE_LINES) return S_OK;          // a full list is not tested: deliberate
  constexpr std::int64_t kMost = std::int64_t{1} << 50;  // of one line: the sum cannot overflow
  std::int64_t sum = 0;
  for (int i = 0; i < count; ++i) {
    const LINE_REFERENCES references = m_work.Index().SequenceLine(i);
    if (references.block) {
      ++sum;
    } else if (references.subSequence) {
      const SUBSEQUENCE* played = m_work.Program().SubSequenceAt(references.subSequence->first);
      const std::int64_t lines = played ? played->GetNoOfSubSequenceLines() : 0;
      sum += std::clamp(m_work.Program().LineAt(i)->GetRepeatCount() * lines, -kMost, kMost);
    }
  }
  return sum > MAX_SEQUENCE_LINES ? PG_E_LIMIT : S_OK;
}

// --- subsequences --------------------------------------------------------------------------------

Status CCompiler::CompileSubSequence() {
  if (!BeginCheck(Section::SubSequenceList, kFirstLine, "Sub Sequence")) return PG_E_INTERNAL;
  if (m_work.Program().SubSequenceCount() > MAX_SUBSEQUENCES)
    Error(kNameColumn, CompileError::InvalidRange, "");
  return ForEachObject(&CProgramView::SubSequenceCount, &CProgramView::SubSequenceAt, kFirstLine,
                       [this](int index, const SUBSEQUENCE& subSequence) {
                         CheckSubSequenceName(subSequence);
                         const Status status = CompileSubSeqDefinition(index, subSequence);
                         m_place.section = Section::SubSequenceList;
                         m_place.itemIndex = -1;
                         return status;
                       });
}

void CCompiler::CheckSubSequenceName(const SUBSEQUENCE& subSequence) {
  const std::string name(Trim(subSequence.GetSubSequenceName()));
  if (name.empty()) {
    Error(kNameColumn, CompileError::NameEmpty, "");
    return;
  }
  const INDEXED_NAME* found = m_work.Index().SubSequence(name);
  CheckName(name);
  CheckUse(found, name);
  if (subSequence.GetNoOfSubSequenceLines() == 0)
    Error(kNameColumn, CompileError::NoDefinition, name);
  CheckUnique(found, name);
}

Status CCompiler::CompileSubSeqDefinition(int index, const SUBSEQUENCE& subSequence) {
  const int count = subSequence.GetNoOfSubSequenceLines();
  m_place.itemIndex = index;
  if (count > MAX_SUBSEQUENCE_LINES)  // still a finding of the list: deliberate
    Error(kNameColumn, CompileError::InvalidRange, "");
  m_place.section = Section::SubSequenceDefinition;
  for (int i = 0; i < count; ++i) {
    SUBSEQUENCE_LINE* line = nullptr;
    (void)subSequence.GetSubSequenceLine(i, &line);  // the pointer tells
    if (!line) return PG_E_INTERNAL;
    m_place.line = kFirstLine + i;
    const std::string& block = line->GetOutput();
    if (block.empty()) {
      Error(kNameColumn, CompileError::NameEmpty, "");
    } else if (!m_work.Index().SubSequenceLine(index, i)) {
      Error(kNameColumn, CompileError::Undefined, block);
    }
    if (!IsValidRepeat(line->GetRepeatCount()))  // 0 too, unlike in the sequence: deliberate
      Error(kDefinitionRepeatColumn, CompileError::Invalid,
            FormatText("%d", {line->GetRepeatCount()}));
  }
  return S_OK;
}

// --- events --------------------------------------------------------------------------------------

Status CCompiler::CompileEvent() {
  if (!BeginCheck(Section::EventList, kFirstLine, "Event")) return PG_E_INTERNAL;
  if (m_work.Program().EventCount() > MAX_EVENTS)
    Error(kNameColumn, CompileError::InvalidRange, "");
  return ForEachObject(&CProgramView::EventCount, &CProgramView::EventAt, kFirstLine,
                       [this](int index, const EVENT& event) {
                         CheckEventName(event);
                         CompileEventExpression(index, event);
                         m_place.itemIndex = -1;
                         return S_OK;
                       });
}

void CCompiler::CheckEventName(const EVENT& event) {
  const std::string name(Trim(event.GetEventName()));
  if (name.empty()) {
    Error(kNameColumn, CompileError::NameEmpty, "");
    return;
  }
  const INDEXED_NAME* found = m_work.Index().Event(name);
  CheckName(name);
  CheckUse(found, name);
  CheckUnique(found, name);
}

void CCompiler::CompileEventExpression(int index, const EVENT& event) {
  const int count = event.GetNoOfEventDefinitions();
  m_place.itemIndex = index;
  if (count > MAX_EVENT_DEFINITIONS) Error(kEventRowsColumn, CompileError::InvalidRange, "");
  if (count == 0)
    Error(kNameColumn, CompileError::NoDefinition, std::string(Trim(event.GetEventName())));
}

}  // namespace quillpg
