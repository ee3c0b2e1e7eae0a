#include "hardware/shift_register_generator.h"

#include "hardware/tap_settings.h"

#include <algorithm>
#include <bit>

namespace quillpg {

namespace {

constexpr int kStages = MAX_SHIFT_REGISTERS;
constexpr std::size_t kLongestRun = 128;  // words; what it is made of stays in the fastest memory

constexpr std::uint32_t StageBit(int stage) {
  return stage >= 0 && stage < kStages ? std::uint32_t{1} << (kStages - 1 - stage) : 0;
}

// Bits of the stages 0 to count - 1.
constexpr std::uint32_t FirstStages(int count) { return ~std::uint32_t{0} << (kStages - count); }

}  // namespace

CShiftRegisterGenerator::CShiftRegisterGenerator() { setMaximumTapSetting(1); }

void CShiftRegisterGenerator::setNumRegister(short count) {
  m_registers = std::clamp<int>(count, 1, MAX_SHIFT_REGISTERS);
}

void CShiftRegisterGenerator::setMaximumTapSetting(int reset) {
  const auto settings = GetTapSettings(m_registers);
  const int next = reset != 0 ? 0 : m_tapSetting + 1;
  // The length may have shrunk since the last setting was loaded.
  m_tapSetting = next < static_cast<int>(settings.size()) ? next : 0;
  m_taps = settings[static_cast<std::size_t>(m_tapSetting)];
}

void CShiftRegisterGenerator::setTap(int stage) { m_taps |= StageBit(stage); }
void CShiftRegisterGenerator::clearTap(int stage) { m_taps &= ~StageBit(stage); }
void CShiftRegisterGenerator::toggleTap(int stage) { m_taps ^= StageBit(stage); }
int CShiftRegisterGenerator::getTap(int stage) const { return (m_taps & StageBit(stage)) != 0; }

void CShiftRegisterGenerator::setValue(int stage, int bit) {
  m_value = bit != 0 ? m_value | StageBit(stage) : m_value & ~StageBit(stage);
}

int CShiftRegisterGenerator::getValue(int stage) const { return (m_value & StageBit(stage)) != 0; }

void CShiftRegisterGenerator::setValueAll(int bit) { m_value = bit != 0 ? 0xFFFFFFFFu : 0; }

void CShiftRegisterGenerator::setInitialValue(std::uint32_t value) {
  m_initialValue = value;
  m_value = value << (kStages - m_registers);
}

std::uint32_t CShiftRegisterGenerator::getOneCycleLength() const {
  return (std::uint32_t{1} << (m_registers % kStages)) - 1;
}

int CShiftRegisterGenerator::getNextData() {
  const std::uint32_t last = StageBit(m_registers - 1);
  const int out = (m_value & last) != 0 ? 1 : 0;
  const int count = out + std::popcount(m_value & m_taps & FirstStages(m_registers));
  m_value >>= 1;
  if (count % 2 != 0) m_value |= StageBit(0);
  return out;
}

// The stream obeys out(t) = sum over the terms of out(t - distance), a term for each stage that
// feeds back, stage r at distance r + 1. Squared over GF(2) the same recurrence holds at twice the
// distances: once squared it makes two bits at a time of earlier pairs, six times squared it is one
// of whole words, and from there on of runs of words. So each pass below makes pieces twice as long
// as the one before, as soon as there is enough of the stream behind them.
void CShiftRegisterGenerator::getNextWords(std::span<std::uint64_t> words, std::int64_t count) {
  count = std::clamp<std::int64_t>(count, 0, std::ssize(words) * 64);
  const auto n = static_cast<std::size_t>(m_registers);
  const auto full = static_cast<std::size_t>(count / 64);
  std::size_t made = 0;
  if (full >= n) {
    const TERMS terms = FeedbackTerms();
    MakeFirstWords(terms, words.data());
    for (made = n; made < full;) {
      const std::size_t run = std::min(std::bit_floor(made / n), kLongestRun);
      const std::size_t length = std::min(run, full - made);
      MakeRun(terms, words.data() + made, run, length);
      made += length;
    }
    TakeUp(terms, words[full - 1]);
  }
  for (; made < full; ++made) words[made] = StepBits(64);
  if (count % 64 != 0) words[full] = StepBits(static_cast<int>(count % 64));
}

CShiftRegisterGenerator::TERMS CShiftRegisterGenerator::FeedbackTerms() const {
  // A tap on the last stage feeds it back twice, which cancels.
  const std::uint32_t feedback = (m_taps & FirstStages(m_registers)) ^ StageBit(m_registers - 1);
  TERMS terms;
  for (int stage = 0; stage < m_registers; ++stage) {
    if ((feedback & StageBit(stage)) != 0) {
      terms.distances[terms.count++] = static_cast<std::size_t>(stage) + 1;
    }
  }
  return terms;
}

std::uint64_t CShiftRegisterGenerator::StepBits(int count) {
  std::uint64_t word = 0;
  for (int i = 0; i < count; ++i) word |= static_cast<std::uint64_t>(getNextData()) << i;
  return word;
}

// As many words as the register has stages, from the bits that it holds: those leave it next.
void CShiftRegisterGenerator::MakeFirstWords(const TERMS& terms, std::uint64_t* words) const {
  const auto n = static_cast<std::size_t>(m_registers);
  std::fill_n(words, n, 0);
  words[0] = m_value >> (kStages - m_registers);
  for (std::size_t piece = 1; piece < 64; piece *= 2) {
    const std::uint64_t mask = (std::uint64_t{1} << piece) - 1;
    for (std::size_t bit = n * piece; bit < 2 * n * piece; bit += piece) {
      std::uint64_t bits = 0;
      for (std::size_t k = 0; k < terms.count; ++k) {
        const std::size_t from = bit - terms.distances[k] * piece;
        bits ^= words[from / 64] >> (from % 64);
      }
      words[bit / 64] |= (bits & mask) << (bit % 64);
    }
  }
}

// `length` words of earlier runs of `run` words, which reach back by whole runs.
void CShiftRegisterGenerator::MakeRun(const TERMS& terms, std::uint64_t* words, std::size_t run,
                                      std::size_t length) {
  if (terms.count == 0) {  // the only tap cancels the last stage
    std::fill_n(words, length, 0);
    return;
  }
  const auto earlier = [&](std::size_t k) { return words - terms.distances[k] * run; };
  // Two terms a pass. Settings of maximal length have an even number of them.
  if (terms.count % 2 != 0) {
    std::copy_n(earlier(0), length, words);
  } else {
    const std::uint64_t* a = earlier(0);
    const std::uint64_t* b = earlier(1);
    for (std::size_t i = 0; i < length; ++i) words[i] = a[i] ^ b[i];
  }
  for (std::size_t k = 2 - terms.count % 2; k < terms.count; k += 2) {
    const std::uint64_t* a = earlier(k);
    const std::uint64_t* b = earlier(k + 1);
    for (std::size_t i = 0; i < length; ++i) words[i] ^= a[i] ^ b[i];
  }
}

// Leaves the register as it is after the stream's bits up to those of `window`.
void CShiftRegisterGenerator::TakeUp(const TERMS& terms, std::uint64_t window) {
  // It holds what leaves it next: run the recurrence on to find it.
  for (int step = 0; step < m_registers; ++step) {
    std::uint64_t next = 0;
    for (std::size_t k = 0; k < terms.count; ++k) next ^= window >> (64 - terms.distances[k]);
    window = window >> 1 | (next & 1) << 63;
  }
  // Bit 63 - r stands in stage r; stages behind the last one remember older bits.
  m_value = static_cast<std::uint32_t>(window >> 32);
}

}  // namespace quillpg
