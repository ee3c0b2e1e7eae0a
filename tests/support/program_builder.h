#pragma once

#include "instrument/instrument.h"
#include "program/block_manager.h"
#include "program/event_manager.h"
#include "program/sequence_manager.h"
#include "program/subsequence_manager.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace quillpg {

struct LINE_TEXT {
  std::string output;
  int repeat = 1;
  std::string label = {};
  std::string waitFor = {};
  std::string jumpIf = {};
  std::string jumpTo = {};
  SignalValue signal = SignalValue::High;
};

/// Writes a program into an instrument object by object, past the checks of the managers where a
/// setup file could bring it past them too. Starts by emptying the program.
class CProgramBuilder {
 public:
  explicit CProgramBuilder(CInstrument& instrument) : m_instrument(instrument) {
    (void)instrument.GetBlockManager(&m_blocks);
    (void)instrument.GetSequenceManager(&m_sequence);
    (void)instrument.GetSubSequenceManager(&m_subSequences);
    (void)instrument.GetEventManager(&m_events);
    (void)m_blocks->DeleteAll();
    (void)m_sequence->DeleteAll();
    (void)m_subSequences->DeleteAll();
    (void)m_events->DeleteAll();
    (void)SetModified(1);
  }

  CProgramBuilder& Block(const std::string& name, int size = 40) {
    auto block = std::make_unique<BLOCK>();
    int width = 0;
    (void)m_instrument.GetBlockWidth(width);
    (void)block->Initialize(name, size, width, '\0');
    (void)block->SetBlockName(name);  // as it stands, blanks included
    int count = 0;
    (void)m_blocks->GetNoOfBlocks(count);
    (void)m_blocks->InsertBlock(count, std::move(block));
    return *this;
  }

  CProgramBuilder& Line(const LINE_TEXT& text) {
    auto line = std::make_unique<SEQUENCE_LINE>();
    (void)line->SetLabel(text.label);
    (void)line->SetWaitFor(text.waitFor);
    (void)line->SetOutput(text.output);
    (void)line->SetRepeatCount(text.repeat);
    (void)line->SetJumpIf(text.jumpIf);
    (void)line->SetJumpTo(text.jumpTo);
    (void)line->SetSignalValue(text.signal);
    int count = 0;
    (void)m_sequence->GetNoOfSequenceLines(count);
    (void)m_sequence->InsertLine(count, std::move(line));
    return *this;
  }

  CProgramBuilder& Sub(const std::string& name,
                       const std::vector<std::pair<std::string, int>>& lines) {
    auto subSequence = std::make_unique<SUBSEQUENCE>();
    (void)subSequence->SetSubSequenceName(name);
    for (const auto& [block, repeat] : lines) {
      auto line = std::make_unique<SUBSEQUENCE_LINE>();
      (void)line->SetOutput(block);
      (void)line->SetRepeatCount(repeat);
      (void)subSequence->AddSubSequenceLine(std::move(line));
    }
    int count = 0;
    (void)m_subSequences->GetNoOfSubSequences(count);
    (void)m_subSequences->InsertSubSequence(count, std::move(subSequence));
    return *this;
  }

  CProgramBuilder& Event(const std::string& name, const std::vector<std::string>& rows) {
    auto event = std::make_unique<EVENT>();
    (void)event->SetEventName(name);
    for (const std::string& row : rows) {
      auto definition = std::make_unique<EVENT_DEFINITION>();
      for (std::size_t i = 0; i < row.size(); ++i) {
        (void)definition->SetEventDefBit(static_cast<int>(i), row[i]);
      }
      (void)event->AddEventDefinition(std::move(definition));
    }
    int count = 0;
    (void)m_events->GetNoOfEvents(count);
    (void)m_events->InsertEvent(count, std::move(event));
    return *this;
  }

  /// The modified flags of all four lists.
  CProgramBuilder& SetModified(int flag) {
    (void)m_blocks->SetModified(flag);
    (void)m_sequence->SetModified(flag);
    (void)m_subSequences->SetModified(flag);
    (void)m_events->SetModified(flag);
    return *this;
  }

 private:
  CInstrument& m_instrument;
  CBlockManager* m_blocks = nullptr;
  CSequenceManager* m_sequence = nullptr;
  CSubSequenceManager* m_subSequences = nullptr;
  CEventManager* m_events = nullptr;
};

}  // namespace quillpg
