#pragma once

#include "instrument/instrument.h"
#include "program/block_manager.h"
#include "program/event_manager.h"
#include "program/program_view.h"
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
  explicit CProgramBuilder(CInstrument& instrument)
      : m_instrument(instrument), m_program(instrument) {
    (void)m_program.Blocks()->DeleteAll();
    (void)m_program.Sequence()->DeleteAll();
    (void)m_program.SubSequences()->DeleteAll();
    (void)m_program.Events()->DeleteAll();
    (void)SetModified(1);
  }

  CProgramBuilder& Block(const std::string& name, int size = 40) {
    auto block = std::make_unique<BLOCK>();
    int width = 0;
    (void)m_instrument.GetBlockWidth(width);
    (void)block->Initialize(name, size, width, '\0');
    (void)block->SetBlockName(name);  // as it stands, blanks included
    (void)m_program.Blocks()->InsertBlock(m_program.BlockCount(), std::move(block));
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
    (void)m_program.Sequence()->InsertLine(m_program.LineCount(), std::move(line));
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
    (void)m_program.SubSequences()->InsertSubSequence(m_program.SubSequenceCount(),
                                                      std::move(subSequence));
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
    (void)m_program.Events()->InsertEvent(m_program.EventCount(), std::move(event));
    return *this;
  }

  /// The modified flags of all four lists.
  CProgramBuilder& SetModified(int flag) {
    (void)m_program.Blocks()->SetModified(flag);
    (void)m_program.Sequence()->SetModified(flag);
    (void)m_program.SubSequences()->SetModified(flag);
    (void)m_program.Events()->SetModified(flag);
    return *this;
  }

 private:
  CInstrument& m_instrument;
  CProgramView m_program;
};

}  // namespace quillpg
