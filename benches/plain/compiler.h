#pragma once

#include "base/text.h"
#include "instrument/instrument.h"
#include "program/block.h"
#include "program/event.h"
#include "program/program_view.h"
#include "program/sequence_line.h"
#include "program/subsequence.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quillpg {

/// Checks a program with one walk through a list for every name it meets: what the compiler must
/// agree with, line by line, and the yardstick of its speed. Empty slots are not expected.
class CPlainCompiler {
 public:
  explicit CPlainCompiler(const CInstrument& instrument)
      : m_instrument(instrument), m_program(instrument) {}

  /// Output lines of all findings.
  std::vector<std::string> Check() {
    m_lines.clear();
    CheckBlocks();
    if (!CheckSequence()) return m_lines;
    CheckSubSequences();
    CheckEvents();
    return m_lines;
  }

 private:
  void Find(const std::string& section, int line, int column, const std::string& text,
            const std::string& what, const char* type = "error") {
    m_lines.push_back(section + " [Line:" + std::to_string(line) +
                      "][Column:" + std::to_string(column) + "] : " + type + " : " +
                      (text.empty() ? "< Empty Name >" : text) + " " + what);
  }
  void Say(const std::string& section, int line, int column, const std::string& what) {
    m_lines.push_back(section + " [Line:" + std::to_string(line) +
                      "][Column:" + std::to_string(column) + "] : error : " + what);
  }

  // --- linear walks ---

  int CountBlocks(std::string_view name) const {
    int count = 0;
    for (int i = 0; i < m_program.BlockCount(); ++i) {
      count += EqualNoCase(m_program.BlockAt(i)->GetBlockName(), name) ? 1 : 0;
    }
    return count;
  }
  bool IsBlock(std::string_view name) const {
    for (int i = 0; i < m_program.BlockCount(); ++i) {
      if (EqualNoCase(m_program.BlockAt(i)->GetBlockName(), name)) return true;
    }
    return false;
  }
  // Position of the first one, -1 without one; an empty name finds nothing.
  int FindSubSequence(std::string_view name) const {
    for (int i = 0; i < m_program.SubSequenceCount() && !Trim(name).empty(); ++i) {
      if (EqualNoCase(m_program.SubSequenceAt(i)->GetSubSequenceName(), Trim(name))) return i;
    }
    return -1;
  }
  int CountSubSequences(std::string_view name) const {
    int count = 0;
    for (int i = 0; i < m_program.SubSequenceCount(); ++i) {
      count += EqualNoCase(m_program.SubSequenceAt(i)->GetSubSequenceName(), Trim(name)) ? 1 : 0;
    }
    return count;
  }
  bool IsEvent(std::string_view name) const {
    for (int i = 0; i < m_program.EventCount() && !Trim(name).empty(); ++i) {
      if (EqualNoCase(m_program.EventAt(i)->GetEventName(), Trim(name))) return true;
    }
    return false;
  }
  int CountEvents(std::string_view name) const {
    int count = 0;
    for (int i = 0; i < m_program.EventCount(); ++i) {
      count += EqualNoCase(m_program.EventAt(i)->GetEventName(), Trim(name)) ? 1 : 0;
    }
    return count;
  }
  int CountLabels(std::string_view label) const {
    int count = 0;
    for (int i = 0; i < m_program.LineCount(); ++i) {
      count += EqualNoCase(m_program.LineAt(i)->GetLabel(), label) ? 1 : 0;
    }
    return count;
  }
  bool IsLabel(std::string_view label) const {
    for (int i = 0; i < m_program.LineCount(); ++i) {
      if (EqualNoCase(m_program.LineAt(i)->GetLabel(), label)) return true;
    }
    return false;
  }
  bool IsBlockReferred(std::string_view name) const {
    for (int i = 0; i < m_program.LineCount(); ++i) {
      if (EqualNoCase(m_program.LineAt(i)->GetOutput(), name)) return true;
    }
    for (int i = 0; i < m_program.SubSequenceCount(); ++i) {
      const SUBSEQUENCE* subSequence = m_program.SubSequenceAt(i);
      for (int j = 0; j < subSequence->GetNoOfSubSequenceLines(); ++j) {
        if (EqualNoCase(LineOf(*subSequence, j).GetOutput(), name)) return true;
      }
    }
    return false;
  }
  // A line plays or names what the look-up of its text gives: blanks around it do not count.
  bool IsSubSequenceReferred(std::string_view name) const {
    for (int i = 0; i < m_program.LineCount(); ++i) {
      if (EqualNoCase(Trim(m_program.LineAt(i)->GetOutput()), name)) return true;
    }
    return false;
  }
  bool IsEventReferred(std::string_view name) const {
    for (int i = 0; i < m_program.LineCount(); ++i) {
      if (EqualNoCase(Trim(m_program.LineAt(i)->GetWaitFor()), name)) return true;
      if (EqualNoCase(Trim(m_program.LineAt(i)->GetJumpIf()), name)) return true;
    }
    return false;
  }
  static const SUBSEQUENCE_LINE& LineOf(const SUBSEQUENCE& subSequence, int index) {
    SUBSEQUENCE_LINE* line = nullptr;
    (void)subSequence.GetSubSequenceLine(index, &line);
    return *line;
  }

  // --- checks ---

  static bool Is(const std::string& text, const char* word) { return EqualNoCase(text, word); }

  void CheckName(const std::string& section, int line, const std::string& name) {
    const std::string trimmed(Trim(name));
    if (Is(trimmed, "None") || Is(trimmed, "Always") || Is(trimmed, "Never")) {
      Find(section, line, 1, name, "is a keyword. Not allowed...");
    } else if (trimmed.empty() || trimmed.size() > 32 || trimmed.find(' ') != std::string::npos) {
      Find(section, line, 1, name, "invalid");
    }
  }

  void CheckBlocks() {
    const std::string section = "Block List";
    int least = 0;
    long most = 0;
    long depth = 0;
    ChannelMode mode = ChannelMode::Full;
    (void)m_instrument.GetMinBlocksize(least);
    (void)m_instrument.GetMaxBlocksize(most);
    (void)m_instrument.GetMemoryDepth(depth);
    (void)m_instrument.GetChannelMode(mode);
    const int granularity = mode == ChannelMode::Half ? 8 : 4;
    std::int64_t sum = 0;
    int padding = 0;
    for (int i = 0; i < m_program.BlockCount(); ++i) {
      const std::string& name = m_program.BlockAt(i)->GetBlockName();
      const int size = m_program.BlockAt(i)->GetBlockSize();
      if (name.empty()) {
        Say(section, i + 1, 1, "Block name is empty");
      } else {
        CheckName(section, i + 1, name);
        if (!IsBlockReferred(name))
          Find(section, i + 1, 1, name, "is declared but not referenced", "warning");
        if (CountBlocks(name) != 1) Find(section, i + 1, 1, name, "already defined");
      }
      if (size < least || size > most) Find(section, i + 1, 2, std::to_string(size), "invalid");
      if (size % granularity > 0) padding = granularity - size % granularity;
      sum += size + padding;
    }
    if (sum > depth)
      m_lines.push_back("Block List : error : Total block size exceeds the module depth");
  }

  // False when the run ends here.
  bool CheckSequence() {
    if (m_program.LineCount() == 0)
      m_lines.push_back("Sequence List : error : Sequence List is empty");
    std::int64_t expanded = 0;
    for (int i = 0; i < m_program.LineCount(); ++i) {
      const SEQUENCE_LINE& line = *m_program.LineAt(i);
      CheckLine(i + 1, line);
      const int played = FindSubSequence(line.GetOutput());
      if (line.GetOutput().empty()) continue;
      if (IsBlock(line.GetOutput())) {
        ++expanded;
      } else if (played >= 0) {
        expanded += std::int64_t{line.GetRepeatCount()} *
                    m_program.SubSequenceAt(played)->GetNoOfSubSequenceLines();
      }
    }
    if (m_program.LineCount() >= 4000 || expanded <= 4000) return true;
    Say("Sequence List", m_program.LineCount(), 1,
        "No. of sequence lines including the referred subsequences exceeds 4000 lines.");
    return false;
  }

  void CheckLine(int number, const SEQUENCE_LINE& line) {
    const std::string section = "Sequence List";
    const std::string& label = line.GetLabel();
    if (!label.empty()) {
      CheckName(section, number, label);
      if (CountLabels(label) > 1) Find(section, number, 1, label, "already defined");
    }
    const std::string& waitFor = line.GetWaitFor();
    if (!waitFor.empty() && !Is(waitFor, "None") && !IsEvent(waitFor))
      Find(section, number, 2, waitFor, "undefined");
    const std::string& output = line.GetOutput();
    if (output.empty()) {
      Say(section, number, 4, "Output name is empty");
    } else {
      const bool block = IsBlock(output);
      const bool subSequence = FindSubSequence(output) >= 0;
      if (!block && !subSequence) Find(section, number, 4, output, "undefined");
      if (block && subSequence)
        Find(section, number, 4, output, "A block and a subsequence cannot have the same name. ");
    }
    const int repeat = line.GetRepeatCount();
    if (repeat < 0 || repeat > 65536) Find(section, number, 6, std::to_string(repeat), "invalid");
    const std::string& jumpIf = line.GetJumpIf();
    const std::string& jumpTo = line.GetJumpTo();
    if (!jumpIf.empty() && !Is(jumpIf, "Always") && !Is(jumpIf, "Never") && !IsEvent(jumpIf)) {
      Find(section, number, 7, jumpIf, "undefined");
      return;
    }
    if (!jumpIf.empty() && jumpTo.empty()) Say(section, number, 9, "Jump To must be specified...");
    if (!jumpTo.empty() && !IsLabel(jumpTo)) Find(section, number, 9, jumpTo, "undefined");
  }

  void CheckSubSequences() {
    const std::string list = "Sub Sequence List";
    for (int i = 0; i < m_program.SubSequenceCount(); ++i) {
      const SUBSEQUENCE& subSequence = *m_program.SubSequenceAt(i);
      const std::string name(Trim(subSequence.GetSubSequenceName()));
      const int lines = subSequence.GetNoOfSubSequenceLines();
      if (name.empty()) {
        Say(list, i + 1, 1, "Sub-sequence name is empty");
      } else {
        CheckName(list, i + 1, name);
        if (!IsSubSequenceReferred(name) || CountSubSequences(name) == 0)
          Find(list, i + 1, 1, name, "is declared but not referenced", "warning");
        if (lines == 0) Find(list, i + 1, 1, name, "is declared but definition is not present");
        if (CountSubSequences(name) != 1) Find(list, i + 1, 1, name, "already defined");
      }
      for (int j = 0; j < lines; ++j) {
        const std::string& block = LineOf(subSequence, j).GetOutput();
        const int repeat = LineOf(subSequence, j).GetRepeatCount();
        if (block.empty()) {
          Say("Sub Sequence Definition", j + 1, 1, "Block name is empty");
        } else if (!IsBlock(block)) {
          Find("Sub Sequence Definition", j + 1, 1, block, "undefined");
        }
        if (repeat < 1 || repeat > 65536)
          Find("Sub Sequence Definition", j + 1, 3, std::to_string(repeat), "invalid");
      }
    }
  }

  void CheckEvents() {
    const std::string list = "Event List";
    for (int i = 0; i < m_program.EventCount(); ++i) {
      const EVENT& event = *m_program.EventAt(i);
      const std::string name(Trim(event.GetEventName()));
      if (name.empty()) {
        Say(list, i + 1, 1, "Event name is empty");
      } else {
        CheckName(list, i + 1, name);
        if (!IsEventReferred(name) || CountEvents(name) == 0)
          Find(list, i + 1, 1, name, "is declared but not referenced", "warning");
        if (CountEvents(name) != 1) Find(list, i + 1, 1, name, "already defined");
      }
      if (event.GetNoOfEventDefinitions() == 0)
        Find(list, i + 1, 1, name, "is declared but definition is not present");
    }
  }

  const CInstrument& m_instrument;
  CProgramView m_program;
  std::vector<std::string> m_lines;
};

}  // namespace quillpg
