#include "program/program_view.h"

#include "instrument/instrument.h"
#include "program/block_manager.h"
#include "program/event_manager.h"
#include "program/group_manager.h"
#include "program/sequence_manager.h"
#include "program/subsequence_manager.h"

namespace quillpg {

CProgramView::CProgramView(const CInstrument& instrument) {
  (void)instrument.GetGroupManager(&m_groups);  // accessors of owned objects, they cannot fail
  (void)instrument.GetBlockManager(&m_blocks);
  (void)instrument.GetSequenceManager(&m_sequence);
  (void)instrument.GetSubSequenceManager(&m_subSequences);
  (void)instrument.GetEventManager(&m_events);
}

CProgramView::REVISIONS CProgramView::Revisions() const {
  return {m_blocks ? m_blocks->Revision() : 0, m_sequence ? m_sequence->Revision() : 0,
          m_subSequences ? m_subSequences->Revision() : 0, m_events ? m_events->Revision() : 0};
}

// The managers' fetches give null for a bad position: the pointer tells it.

int CProgramView::GroupCount() const {
  int count = 0;
  if (m_groups) (void)m_groups->GetNoOfGroups(count);
  return count;
}

int CProgramView::BlockCount() const {
  int count = 0;
  if (m_blocks) (void)m_blocks->GetNoOfBlocks(count);
  return count;
}

int CProgramView::LineCount() const {
  int count = 0;
  if (m_sequence) (void)m_sequence->GetNoOfSequenceLines(count);
  return count;
}

int CProgramView::SubSequenceCount() const {
  int count = 0;
  if (m_subSequences) (void)m_subSequences->GetNoOfSubSequences(count);
  return count;
}

int CProgramView::EventCount() const {
  int count = 0;
  if (m_events) (void)m_events->GetNoOfEvents(count);
  return count;
}

GROUP* CProgramView::GroupAt(int index) const {
  GROUP* group = nullptr;
  if (m_groups) (void)m_groups->GetGroup(index, &group);
  return group;
}

BLOCK* CProgramView::BlockAt(int index) const {
  BLOCK* block = nullptr;
  if (m_blocks) (void)m_blocks->GetBlock(index, &block);
  return block;
}

SEQUENCE_LINE* CProgramView::LineAt(int index) const {
  SEQUENCE_LINE* line = nullptr;
  if (m_sequence) (void)m_sequence->GetSequenceLine(index, &line);
  return line;
}

SUBSEQUENCE* CProgramView::SubSequenceAt(int index) const {
  SUBSEQUENCE* subSequence = nullptr;
  if (m_subSequences) (void)m_subSequences->GetSubSequence(index, &subSequence);
  return subSequence;
}

EVENT* CProgramView::EventAt(int index) const {
  EVENT* event = nullptr;
  if (m_events) (void)m_events->GetEvent(index, &event);
  return event;
}

}  // namespace quillpg
