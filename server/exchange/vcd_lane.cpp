#include "exchange/vcd_lane.h"

#include "base/text.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstring>
#include <string_view>
#include <utility>

namespace quillpg {

namespace {

constexpr std::size_t kTokenSize = sizeof(std::uint64_t);
constexpr std::size_t kStampSize = 24;
constexpr int kLineBits = 16;

char* Put(char* to, std::string_view text) {
  std::memcpy(to, text.data(), text.size());
  return to + text.size();
}

std::uint64_t PackToken(char level, const std::string& id) {
  std::array<char, kTokenSize> text{};
  char* end = Put(text.data() + 1, id);
  text[0] = level;
  *end = '\n';
  return std::bit_cast<std::uint64_t>(text);
}

char SignalLevel(int signal) { return signal == 0 ? '0' : signal == 1 ? '1' : 'x'; }

}  // namespace

CVcdLane::CVcdLane(CVcdOutput output, int module, RATIO period, std::vector<VCD_VARIABLE> variables,
                   std::string lineId, std::string signalId)
    : m_output(std::move(output)),
      m_module(module),
      m_period(period),
      m_variables(std::move(variables)),
      m_lineId(std::move(lineId)),
      m_signalId(std::move(signalId)),
      m_ticks(period) {
  PrepareWords();
}

void CVcdLane::PrepareWords() {
  int bits = 0;
  std::size_t widest = kStampSize + 2 * kTokenSize + kLineBits;
  for (const VCD_VARIABLE& variable : m_variables) {
    for (const int bit : variable.bits) bits = std::max(bits, bit + 1);
    widest += variable.bits.size() + variable.id.size() + kTokenSize;
  }
  const std::size_t words = (static_cast<std::size_t>(bits) + 63) / 64;
  m_tokens.resize(words * 64);
  m_holders.resize(words * 64);
  m_scalarMask.assign(words, 0);
  m_holderMask.assign(words, 0);
  m_levels.assign(words, 0);
  m_highZ.assign(words, 0);
  m_isDirty.assign(m_variables.size(), false);
  m_output.Reserve(widest + words * 64 * kTokenSize);

  for (std::size_t i = 0; i < m_variables.size(); ++i) {
    const VCD_VARIABLE& variable = m_variables[i];
    const bool fits = variable.bits.size() == 1 && variable.id.size() + 2 <= kTokenSize;
    for (const int bit : variable.bits) {
      const auto at = static_cast<std::size_t>(bit);
      const std::uint64_t mask = std::uint64_t{1} << (bit % 64);
      if (fits && m_tokens[at].length == 0) {
        m_tokens[at] = {{PackToken('0', variable.id), PackToken('1', variable.id)},
                        static_cast<std::uint8_t>(variable.id.size() + 2)};
        m_scalarMask[at / 64] |= mask;
      } else {
        m_holders[at].push_back(static_cast<int>(i));
        m_holderMask[at / 64] |= mask;
      }
    }
  }
}

void CVcdLane::Write(const VECTOR_RUN& run) {
  if (run.count <= 0) return;
  // Words of modules that the sequencer does not drive stay 0.
  m_drivenWords = std::min(m_levels.size(), static_cast<std::size_t>(run.moduleCount));
  WriteAnnotations(run);
  // Equal rows bring no change: a repeated single row is written once.
  const std::int64_t passes = run.count == 1 ? 1 : run.repeat;
  for (std::int64_t pass = 0; pass < passes; ++pass) WritePass(run);
  if (run.count == 1) m_vectors += run.repeat - 1;
}

void CVcdLane::WritePass(const VECTOR_RUN& run) {
  const auto stride = static_cast<std::size_t>(run.moduleCount);
  for (std::int64_t row = 0; row < run.count; ++row) {
    const std::size_t at = static_cast<std::size_t>(row) * stride;
    WriteRow(run.levels + at, run.highZ ? run.highZ + at : nullptr, m_vectors);
    ++m_vectors;
  }
}

void CVcdLane::WriteRow(const std::uint64_t* levels, const std::uint64_t* highZ,
                        std::int64_t vector) {
  if (vector == 0) {
    for (std::size_t w = 0; w < m_drivenWords; ++w) {
      m_levels[w] = levels[w];
      m_highZ[w] = highZ ? highZ[w] : 0;
    }
    WriteAll();
    return;
  }
  for (std::size_t w = 0; w < m_drivenWords; ++w) {
    const std::uint64_t newZ = highZ ? highZ[w] : 0;
    const std::uint64_t changed = ((m_highZ[w] ^ newZ) | (~newZ & (m_levels[w] ^ levels[w]))) &
                                  (m_scalarMask[w] | m_holderMask[w]);
    m_highZ[w] = newZ;
    m_levels[w] = levels[w];
    if (changed == 0) continue;
    char* to = m_output.Room(kStampSize + 64 * kTokenSize);
    if (m_stampedVector != vector) to = WriteStamp(to, vector);
    m_output.Advance(WriteScalars(to, w, changed & m_scalarMask[w]));
    for (std::uint64_t held = changed & m_holderMask[w]; held != 0; held &= held - 1) {
      for (const int variable :
           m_holders[w * 64 + static_cast<std::size_t>(std::countr_zero(held))]) {
        if (m_isDirty[static_cast<std::size_t>(variable)]) continue;
        m_isDirty[static_cast<std::size_t>(variable)] = true;
        m_dirty.push_back(variable);
      }
    }
  }
  for (const int index : m_dirty) {
    const VCD_VARIABLE& variable = m_variables[static_cast<std::size_t>(index)];
    m_isDirty[static_cast<std::size_t>(index)] = false;
    char* to = m_output.Room(variable.bits.size() + variable.id.size() + kTokenSize);
    m_output.Advance(WriteVariable(to, variable));
  }
  m_dirty.clear();
}

char* CVcdLane::WriteScalars(char* to, std::size_t word, std::uint64_t changed) {
  const std::uint64_t levels = m_levels[word];
  const std::uint64_t highZ = m_highZ[word];
  const TOKEN* tokens = m_tokens.data() + word * 64;
  for (; changed != 0; changed &= changed - 1) {
    const int bit = std::countr_zero(changed);
    const TOKEN& token = tokens[bit];
    std::memcpy(to, &token.text[levels >> bit & 1], kTokenSize);
    if ((highZ >> bit & 1) != 0) *to = 'z';
    to += token.length;
  }
  return to;
}

// Every value at the start; in declared order.
void CVcdLane::WriteAll() {
  m_output.Advance(WriteStamp(m_output.Room(kStampSize), 0));
  for (const VCD_VARIABLE& variable : m_variables) {
    char* to = m_output.Room(variable.bits.size() + variable.id.size() + kTokenSize);
    m_output.Advance(WriteVariable(to, variable));
  }
  m_output.Append(AnnotationText());
}

char CVcdLane::LevelOf(int bit) const {
  const auto word = static_cast<std::size_t>(bit) / 64;
  if ((m_highZ[word] >> (bit % 64) & 1) != 0) return 'z';
  return (m_levels[word] >> (bit % 64) & 1) != 0 ? '1' : '0';
}

char* CVcdLane::WriteVariable(char* to, const VCD_VARIABLE& variable) const {
  const bool isVector = variable.bits.size() != 1;
  if (isVector) *to++ = 'b';
  for (const int bit : variable.bits) *to++ = LevelOf(bit);
  if (isVector) *to++ = ' ';
  to = Put(to, variable.id);
  *to++ = '\n';
  return to;
}

std::int64_t CVcdLane::StampOf(std::int64_t vector) {
  if (m_period.denominator == 1) return vector * m_period.numerator;
  m_ticks.Advance(vector - m_tickedVector);
  m_tickedVector = vector;
  return m_ticks.Rounded();
}

char* CVcdLane::WriteStamp(char* to, std::int64_t vector) {
  m_stampedVector = vector;
  *to++ = '#';
  to = std::to_chars(to, to + kStampSize, StampOf(vector)).ptr;
  *to++ = '\n';
  return to;
}

void CVcdLane::WriteAnnotations(const VECTOR_RUN& run) {
  if (m_lineId.empty() || (run.line == m_line && run.signal == m_signal)) return;
  m_line = run.line;
  m_signal = run.signal;
  if (m_vectors == 0) return;  // written with all other values
  if (m_stampedVector != m_vectors) {
    m_output.Advance(WriteStamp(m_output.Room(kStampSize), m_vectors));
  }
  m_output.Append(AnnotationText());
}

std::string CVcdLane::AnnotationText() const {
  if (m_lineId.empty()) return {};
  std::string text = "b";
  for (int bit = kLineBits - 1; bit >= 0; --bit) {
    text += m_line < 0 ? 'x' : (m_line >> bit & 1) != 0 ? '1' : '0';
  }
  return text + ' ' + m_lineId + '\n' + SignalLevel(m_signal) + m_signalId + '\n';
}

bool CVcdLane::Finish() {
  if (m_vectors == 0) {
    // Nothing was ever driven: every value is unknown.
    std::string text = "#0\n";
    for (const VCD_VARIABLE& variable : m_variables) {
      text += variable.bits.size() == 1 ? "x" : "bx ";
      text += variable.id + '\n';
    }
    m_output.Append(text + AnnotationText());
  } else {
    m_output.Advance(WriteStamp(m_output.Room(kStampSize), m_vectors));
  }
  return m_output.Finish();
}

}  // namespace quillpg
