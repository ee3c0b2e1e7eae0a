#include "program/program_index.h"

#include "base/text.h"
#include "program/block.h"
#include "program/event.h"
#include "program/program_view.h"
#include "program/sequence_line.h"
#include "program/subsequence.h"
#include "program/subsequence_line.h"

namespace quillpg {

namespace {

const INDEXED_NAME* MarkUsed(INDEXED_NAME* name) {
  if (name) name->used = true;
  return name;
}

}  // namespace

void CProgramIndex::Attach(const CProgramView& program) {
  Detach();
  m_program = &program;
}

// Keeps the storage for the next program, and nothing in it: the names go with their objects.
void CProgramIndex::Detach() {
  m_program = nullptr;
  m_built = false;
  for (CNameIndex* index : {&m_blocks, &m_subSequences, &m_events, &m_labels}) index->Clear();
  m_lines.clear();
  m_subLines.clear();
  m_firstSubLine.clear();
}

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
  if (subSequence < 0 || line < 0 || index + 1 >= m_firstSubLine.size()) return nullptr;
  const std::size_t at = m_firstSubLine[index] + static_cast<std::size_t>(line);
  return at < m_firstSubLine[index + 1] ? m_subLines[at] : nullptr;
}

void CProgramIndex::Refresh() {
  if (!m_program) return;
  const CProgramView::REVISIONS revisions = m_program->Revisions();
  if (m_built && revisions == m_revisions) return;
  m_built = false;
  IndexNames();
  ResolveSequence();
  ResolveSubSequences();
  m_revisions = revisions;
  m_built = true;
}

void CProgramIndex::IndexNames() {
  const auto fill = [](CNameIndex& index, int count, auto objectAt) {
    index.Clear(count);
    for (int i = 0; i < count; ++i) {
      if (const auto* object = objectAt(i)) index.Add(NameOf(*object), i);
    }
  };
  fill(m_blocks, m_program->BlockCount(), [this](int i) { return m_program->BlockAt(i); });
  fill(m_subSequences, m_program->SubSequenceCount(),
       [this](int i) { return m_program->SubSequenceAt(i); });
  fill(m_events, m_program->EventCount(), [this](int i) { return m_program->EventAt(i); });
  fill(m_labels, m_program->LineCount(), [this](int i) { return m_program->LineAt(i); });
}

LINE_REFERENCES CProgramIndex::Resolve(const SEQUENCE_LINE& line) {
  return {.block = MarkUsed(m_blocks.Find(line.GetOutput())),
          .subSequence = MarkUsed(m_subSequences.Find(Trim(line.GetOutput()))),
          .waitFor = MarkUsed(m_events.Find(Trim(line.GetWaitFor()))),
          .jumpIf = MarkUsed(m_events.Find(Trim(line.GetJumpIf()))),
          .jumpTo = MarkUsed(m_labels.Find(line.GetJumpTo()))};
}

void CProgramIndex::ResolveSequence() {
  const int count = m_program->LineCount();
  m_lines.assign(static_cast<std::size_t>(count), LINE_REFERENCES());
  for (int i = 0; i < count; ++i) {
    if (const SEQUENCE_LINE* line = m_program->LineAt(i))
      m_lines[static_cast<std::size_t>(i)] = Resolve(*line);
  }
}

void CProgramIndex::ResolveSubSequences() {
  m_subLines.clear();
  m_firstSubLine.assign(1, 0);
  for (int i = 0; i < m_program->SubSequenceCount(); ++i) {
    const SUBSEQUENCE* subSequence = m_program->SubSequenceAt(i);
    const int lines = subSequence ? subSequence->GetNoOfSubSequenceLines() : 0;
    for (int j = 0; j < lines; ++j) {
      SUBSEQUENCE_LINE* line = nullptr;
      (void)subSequence->GetSubSequenceLine(j, &line);  // null for an empty slot
      m_subLines.push_back(line ? MarkUsed(m_blocks.Find(line->GetOutput())) : nullptr);
    }
    m_firstSubLine.push_back(m_subLines.size());
  }
}

}  // namespace quillpg
