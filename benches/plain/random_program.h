#pragma once

#include "base/text.h"
#include "support/program_builder.h"

#include <algorithm>
#include <array>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace quillpg {

struct PROGRAM_SHAPE {
  int blocks;
  int lines;
  int subSequences;
  int subSequenceLines;  ///< of each
  int events;
  int oneFaultIn;  ///< fields; 0: a program without findings
};

/// Fills instruments with programs in which every object is referred to, names are spelled in any
/// case, and some fields are at fault.
class CRandomProgram {
 public:
  CRandomProgram(const PROGRAM_SHAPE& shape, unsigned seed) : m_shape(shape), m_random(seed) {}

  void Build(CInstrument& instrument) {
    CProgramBuilder builder(instrument);
    for (int i = 0; i < m_shape.blocks; ++i) {
      builder.Block(Field(Name("Block", i)), Field(0) == 0 ? 40 : 7);
    }
    for (int i = 0; i < m_shape.lines; ++i) builder.Line(Line(i));
    for (int i = 0; i < m_shape.subSequences; ++i) {
      std::vector<std::pair<std::string, int>> lines;
      for (int j = 0; j < m_shape.subSequenceLines; ++j) {
        const int played = (i * m_shape.subSequenceLines + j) % std::max(m_shape.blocks, 1);
        lines.emplace_back(Field(AnyCase(Name("Block", played))), Field(1));
      }
      if (Field(0) != 0) lines.clear();
      builder.Sub(Field(Name("Sub", i)), lines);
    }
    for (int i = 0; i < m_shape.events; ++i) {
      builder.Event(Field(Name("Event", i)),
                    std::vector<std::string>(Field(0) == 0 ? 1 : 0, "1XXXXXXXX"));
    }
  }

 private:
  int Below(int limit) { return static_cast<int>(m_random() % static_cast<unsigned>(limit)); }
  bool IsFault() { return m_shape.oneFaultIn > 0 && Below(m_shape.oneFaultIn) == 0; }

  static std::string Name(const char* kind, int number) { return kind + std::to_string(number); }

  std::string AnyCase(const std::string& name) { return Below(2) == 0 ? FoldCase(name) : name; }
  std::string Reference(const char* kind, int count) {
    return Field(AnyCase(Name(kind, count > 0 ? Below(count) : 0)));
  }

  // The value, or a faulty one.
  int Field(int good) {
    constexpr std::array<int, 4> kBad = {0, -1, 65536, 65537};
    return IsFault() ? kBad[static_cast<std::size_t>(Below(4))] : good;
  }
  std::string Field(const std::string& good) {
    if (!IsFault()) return good;
    const std::array<std::string, 12> bad = {"",
                                             "None",
                                             "always",
                                             "NEVER",
                                             "Block1",
                                             "Sub1",
                                             "Event1",
                                             "Nobody",
                                             good + " ",
                                             "a b",
                                             std::string(33, 'n'),
                                             " "};
    return bad[static_cast<std::size_t>(Below(12))];
  }

  // Lines play the blocks and subsequences in turn, so that each is referred to.
  LINE_TEXT Line(int number) {
    const int played = number % std::max(m_shape.blocks + m_shape.subSequences, 1);
    const std::string output = played < m_shape.subSequences
                                   ? Name("SUB", played)
                                   : Name("BLOCK", played - m_shape.subSequences);
    LINE_TEXT line{.output = Field(output), .repeat = Field(1)};
    line.label = Field(Name("Line", number));
    if (m_shape.events > 0) {
      line.waitFor = Field(Name("eVENT", number % m_shape.events));
      line.jumpIf = Reference("Event", m_shape.events);
      line.jumpTo = Reference("Line", m_shape.lines);
    }
    return line;
  }

  PROGRAM_SHAPE m_shape;
  std::mt19937 m_random;
};

}  // namespace quillpg
