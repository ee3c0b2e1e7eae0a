#include "program/program_index.h"

#include "base/text.h"
#include "instrument/instrument.h"
#include "program/block.h"
#include "program/block_manager.h"
#include "program/event.h"
#include "program/event_manager.h"
#include "program/sequence_line.h"
#include "program/sequence_manager.h"
#include "program/subsequence.h"
#include "program/subsequence_line.h"
#include "program/subsequence_manager.h"

namespace quillpg {

namespace {

const INDEXED_NAME* MarkUsed(INDEXED_NAME* name) {
  if (name) name->used = true;
  return name;
}

}  // namespace

void CProgramIndex::Attach(const CInstrument& instrument) {
  Detach();
  (void)instrument.GetBlockManager(&m_blockManager);  // accessors of owned objects, never fail
  (void)instrument.GetSequenceManager(&m_sequenceManager);
  (void)instrument.GetSubSequenceManager(&m_subSequenceManager);
  (void)instrument.GetEventManager(&m_eventManager);
}

void CProgramIndex::Detach() { *this = CProgramIndex(); }

const INDEXED_NAME* CProgramIndex::Block(std::string_view name) {
  Refresh();
  return m_blocks.Find(name);
}

const INDEXED_NAME* CProgramIndex::SubSequence(std::string_view name) {
  Refresh();
  return m_subSequences.Find(Trim(name));
}

const INDEXED_NAME* CProgramIndex::Event(std::string_view name) {
  Refresh();
  return m_events.Find(Trim(name));
}

const INDEXED_NAME* CProgramIndex::Label(std::string_view name) {
  Refresh();
  return m_labels.Find(name);
}

LINE_REFERENCES CProgramIndex::SequenceLine(int line) {
  Refresh();
  const auto index = static_cast<std::size_t>(line);
  return index < m_lines.size() ? m_lines[index] : LINE_REFERENCES();
}

const INDEXED_NAME* CProgramIndex::SubSequenceLine(int subSequence, int line) {
  Refresh();
  const auto index = static_cast<std::size_t>(subSequence);
  if (index + 1 >= m_firstSubLine.size() || line < 0) return nullptr;
  const std::size_t at = m_firstSubLine[index] + static_cast<std::size_t>(line);
  return at < m_firstSubLine[index + 1] ? m_subLines[at] : nullptr;
}

CProgramIndex::REVISIONS CProgramIndex::CurrentRevisions() const {
  return {m_blockManager->Revision(), m_sequenceManager->Revision(),
          m_subSequenceManager->Revision(), m_eventManager->Revision()};
}

void CProgramIndex::Refresh() {
  if (!m_blockManager) return;
  const REVISIONS revisions = CurrentRevisions();
  if (m_built && revisions == m_revisions) return;
  m_built = false;
  IndexNames();
  ResolveSequence();
  ResolveSubSequences();
  m_revisions = revisions;
  m_built = true;
}

void CProgramIndex::IndexNames() {
  const auto fill = [](CNameIndex& index, const auto& list, auto nameOf) {
    index.Clear(list.Count());
    for (int i = 0; i < list.Count(); ++i) {
      if (const auto* object = list.At(i)) index.Add(nameOf(*object), i);
    }
  };
  const auto name = [](const auto& object) { return std::string_view(NameOf(object)); };
  fill(m_blocks, m_blockManager->List(), name);
  fill(m_subSequences, m_subSequenceManager->List(), name);
  fill(m_events, m_eventManager->List(), name);
  fill(m_labels, m_sequenceManager->List(),
       [](const SEQUENCE_LINE& line) { return std::string_view(line.GetLabel()); });
}

LINE_REFERENCES CProgramIndex::Resolve(const SEQUENCE_LINE& line) {
  return {.block = MarkUsed(m_blocks.Find(line.GetOutput())),
          .subSequence = MarkUsed(m_subSequences.Find(Trim(line.GetOutput()))),
          .waitFor = MarkUsed(m_events.Find(Trim(line.GetWaitFor()))),
          .jumpIf = MarkUsed(m_events.Find(Trim(line.GetJumpIf()))),
          .jumpTo = MarkUsed(m_labels.Find(line.GetJumpTo()))};
}

void CProgramIndex::ResolveSequence() {
  const auto& lines = m_sequenceManager->List();
  m_lines.clear();
  m_lines.reserve(static_cast<std::size_t>(lines.Count()));
  for (int i = 0; i < lines.Count(); ++i) {
    const SEQUENCE_LINE* line = lines.At(i);
    m_lines.push_back(line ? Resolve(*line) : LINE_REFERENCES());
  }
}

void CProgramIndex::ResolveSubSequences() {
  const auto& subSequences = m_subSequenceManager->List();
  m_subLines.clear();
  m_firstSubLine.assign(1, 0);
  for (int i = 0; i < subSequences.Count(); ++i) {
    const SUBSEQUENCE* subSequence = subSequences.At(i);
    const int lines = subSequence ? subSequence->GetNoOfSubSequenceLines() : 0;
    for (int j = 0; j < lines; ++j) {
      const SUBSEQUENCE_LINE* line = subSequence->List().At(j);
      m_subLines.push_back(line ? MarkUsed(m_blocks.Find(line->GetOutput())) : nullptr);
    }
    m_firstSubLine.push_back(m_subLines.size());
  }
}

}  // namespace quillpg
