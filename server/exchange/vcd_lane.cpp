#include "exchange/vcd_lane.h"

#include "base/text.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <string_view>
#include <utility>

namespace quillpg {

namespace {

constexpr std::size_t kTokenSize = sizeof(std::uint64_t);
constexpr std::size_t kStampSize = CStampText::MAX_LENGTH;
constexpr int kLineBits = 16;
constexpr int kMixedLengths = -1;
constexpr std::int64_t kMostTicks = std::numeric_limits<std::int64_t>::max() / 4 * 3;  // of a stamp

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

// std::popcount is a library call on processors of the base instruction set.
constexpr std::size_t CountBits(std::uint64_t bits) {
  bits -= bits >> 1 & 0x5555555555555555u;
  bits = (bits & 0x3333333333333333u) + (bits >> 2 & 0x3333333333333333u);
  return ((bits + (bits >> 4)) & 0x0F0F0F0F0F0F0F0Fu) * 0x0101010101010101u >> 56;
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
      m_mostVectors(kMostTicks / (period.numerator / period.denominator + 1)),
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
  m_tokenLengths.resize(words * 64);
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
      if (fits && m_tokenLengths[at] == 0) {
        const auto length = static_cast<std::uint8_t>(variable.id.size() + 2);
        m_tokens[at] = {PackToken('0', variable.id), PackToken('1', variable.id)};
        m_tokenLengths[at] = length;
        m_tokenLength = m_tokenLength == 0 || m_tokenLength == length ? length : kMixedLengths;
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
  if (run.count > (m_mostVectors - m_vectors) / run.repeat) m_runsOver = true;
  if (m_runsOver) return;
  WriteAnnotations(run);
  // Equal rows bring no change: a repeated single row is written once.
  const std::int64_t passes = run.count == 1 ? 1 : run.repeat;
  for (std::int64_t pass = 0; pass < passes; ++pass) WritePass(run);
  if (run.count == 1) m_vectors += run.repeat - 1;
}

// Ticks from the stamp before to the one of `passed` vectors later, of a period that is no whole
// number of them.
std::int64_t CVcdLane::RoundedTicks(std::int64_t passed) {
  const std::int64_t before = m_ticks.Rounded();
  m_ticks.Advance(passed);
  return m_ticks.Rounded() - before;
}

inline char* CVcdLane::WriteStamp(char* to, std::int64_t vector) {
  const std::int64_t passed = vector - (m_stampedVector < 0 ? 0 : m_stampedVector);
  m_stampedVector = vector;
  m_stamp.Add(m_period.denominator == 1 ? passed * m_period.numerator : RoundedTicks(passed));
  return m_stamp.CopyTo(to);
}

// The common case, apart from the general form: one word, scalars alone, all driven, identifiers of
// one length. Changes are written four at a time, whether there are so many or not (the next ones
// overwrite what was too much): guessing their number wrong costs more.
template <std::size_t kLength>
void CVcdLane::WriteNarrowRows(const VECTOR_RUN& run, std::int64_t first) {
  constexpr int kAtATime = 4;
  const TOKEN* const tokens = m_tokens.data();
  const auto stride = static_cast<std::size_t>(run.moduleCount);
  const std::uint64_t mask = m_scalarMask[0];
  constexpr std::size_t kRowSize = kStampSize + (64 + kAtATime) * kTokenSize;
  std::uint64_t last = m_levels[0];
  char* to = m_output.Room(kRowSize);
  for (std::int64_t row = first; row < run.count; ++row) {
    const std::uint64_t levels = run.levels[static_cast<std::size_t>(row) * stride];
    std::uint64_t changed = (last ^ levels) & mask;
    last = levels;
    if (changed == 0) continue;
    if (m_output.Limit() - to < static_cast<std::ptrdiff_t>(kRowSize)) {
      m_output.Advance(to);
      to = m_output.Room(kRowSize);
    }
    const std::int64_t vector = m_vectors + row - first;
    if (m_stampedVector != vector) to = WriteStamp(to, vector);
    char* const end = to + kLength * CountBits(changed);
    while (changed != 0) {
      for (int i = 0; i < kAtATime; ++i) {
        const int bit = std::countr_zero(changed) % 64;
        std::memcpy(to, &tokens[bit][levels >> bit & 1], kTokenSize);
        to += kLength;
        changed &= changed - 1;
      }
    }
    to = end;
  }
  m_output.Advance(to);
  m_vectors += run.count - first;
  m_levels[0] = last;
}

bool CVcdLane::IsNarrow(const VECTOR_RUN& run) const {
  return m_vectors > 0 && m_levels.size() == 1 && m_drivenWords == 1 && m_holderMask[0] == 0 &&
         !run.highZ && m_highZ[0] == 0;
}

void CVcdLane::WritePass(const VECTOR_RUN& run) {
  const auto stride = static_cast<std::size_t>(run.moduleCount);
  for (std::int64_t row = 0; row < run.count; ++row) {
    if (m_tokenLength == 3 && IsNarrow(run)) return WriteNarrowRows<3>(run, row);
    if (m_tokenLength == 4 && IsNarrow(run)) return WriteNarrowRows<4>(run, row);
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

char* CVcdLane::WriteScalars(char* to, std::size_t word, std::uint64_t changed) const {
  const std::uint64_t levels = m_levels[word];
  const std::uint64_t highZ = m_highZ[word];
  const TOKEN* tokens = m_tokens.data() + word * 64;
  const std::uint8_t* lengths = m_tokenLengths.data() + word * 64;
  for (; changed != 0; changed &= changed - 1) {
    const int bit = std::countr_zero(changed);
    std::memcpy(to, &tokens[bit][levels >> bit & 1], kTokenSize);
    if ((highZ >> bit & 1) != 0) *to = 'z';
    to += lengths[bit];
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
  return m_output.Finish() && !m_runsOver;
}

}  // namespace quillpg
