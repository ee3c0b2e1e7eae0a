#include "hardware/shift_register_generator.h"

#include "hardware/tap_settings.h"

#include <algorithm>
#include <array>
#include <bit>

namespace quillpg {

namespace {

constexpr int kStages = 32;

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

std::uint64_t CShiftRegisterGenerator::Step64() {
  std::uint64_t word = 0;
  for (int i = 0; i < 64; ++i) word |= static_cast<std::uint64_t>(getNextData()) << i;
  return word;
}

// The stream obeys out(t + n) = sum over j of out(t + j), where j = 0 stands for the last stage and
// j = n - 1 - r for a tapped stage r. Squared six times over GF(2) the same recurrence holds at a
// distance of 64 bits, which makes it one of whole words: w(i + n) = sum over j of w(i + j).
void CShiftRegisterGenerator::getNextWords(std::span<std::uint64_t> words, std::int64_t count) {
  const auto n = static_cast<std::size_t>(m_registers);
  const auto full = static_cast<std::size_t>(count / 64);
  std::size_t i = 0;
  for (; i < std::min(full, n); ++i) words[i] = Step64();

  // A tap on the last stage feeds it back twice, which cancels.
  const std::uint32_t feedback = (m_taps & FirstStages(m_registers)) ^ StageBit(m_registers - 1);
  std::array<std::size_t, kStages> distances{};  // how many words back each term lies
  std::size_t terms = 0;
  for (int stage = 0; stage < m_registers; ++stage) {
    if ((feedback & StageBit(stage)) != 0) distances[terms++] = static_cast<std::size_t>(stage) + 1;
  }
  for (; i < full; ++i) {
    std::uint64_t word = 0;
    for (std::size_t k = 0; k < terms; ++k) word ^= words[i - distances[k]];
    words[i] = word;
  }
  if (full > n) {
    // The register holds what leaves it next: run the recurrence on from the last words to find it.
    std::uint64_t window = words[full - 1];
    for (int step = 0; step < m_registers; ++step) {
      std::uint64_t next = 0;
      for (std::size_t k = 0; k < terms; ++k) next ^= window >> (64 - distances[k]);
      window = window >> 1 | (next & 1) << 63;
    }
    // Bit 63 - r of the window stands in stage r; stages behind the last one remember older bits.
    m_value = 0;
    for (int stage = 0; stage < kStages; ++stage) {
      if ((window >> (63 - stage) & 1) != 0) m_value |= StageBit(stage);
    }
  }
  if (const int rest = static_cast<int>(count % 64); rest != 0) {
    std::uint64_t word = 0;
    for (int bit = 0; bit < rest; ++bit) word |= static_cast<std::uint64_t>(getNextData()) << bit;
    words[full] = word;
  }
}

}  // namespace quillpg
