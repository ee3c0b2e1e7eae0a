#include "program/group_plan.h"

#include <algorithm>
#include <limits>

namespace quillpg {

namespace {

constexpr std::size_t kWordBytes = 8;
constexpr int kWordBits = 64;

// Byte order is spelled out, byte for byte and not as a loop: compilers then make one load or store
// of it.
std::uint64_t LoadWord(const std::uint8_t* p) {
  return std::uint64_t{p[0]} | std::uint64_t{p[1]} << 8 | std::uint64_t{p[2]} << 16 |
         std::uint64_t{p[3]} << 24 | std::uint64_t{p[4]} << 32 | std::uint64_t{p[5]} << 40 |
         std::uint64_t{p[6]} << 48 | std::uint64_t{p[7]} << 56;
}

void StoreWord(std::uint8_t* p, std::uint64_t word) {
  p[0] = static_cast<std::uint8_t>(word);
  p[1] = static_cast<std::uint8_t>(word >> 8);
  p[2] = static_cast<std::uint8_t>(word >> 16);
  p[3] = static_cast<std::uint8_t>(word >> 24);
  p[4] = static_cast<std::uint8_t>(word >> 32);
  p[5] = static_cast<std::uint8_t>(word >> 40);
  p[6] = static_cast<std::uint8_t>(word >> 48);
  p[7] = static_cast<std::uint8_t>(word >> 56);
}

// Rows of fewer than eight bytes.
std::uint64_t LoadShortRow(const std::uint8_t* row, std::size_t rowBytes) {
  std::uint64_t word = 0;
  for (std::size_t i = 0; i < rowBytes; ++i) word |= std::uint64_t{row[i]} << (8 * i);
  return word;
}

constexpr std::uint64_t LowBits(int count) {
  return count >= kWordBits ? ~std::uint64_t{0} : (std::uint64_t{1} << count) - 1;
}

// The eight bytes through which a channel is reached: the channel's own byte and those above it,
// moved down where they would leave the row.
struct WINDOW {
  std::size_t byte;
  std::size_t shift;
};

WINDOW WindowOf(std::size_t channel, std::size_t rowBytes) {
  const std::size_t byte = std::min(channel / 8, rowBytes - kWordBytes);
  return {byte, channel - 8 * byte};
}

std::uint64_t LoadBits(const std::uint8_t* row, std::size_t rowBytes, std::size_t channel,
                       int count) {
  if (channel / 8 >= rowBytes) return 0;
  if (rowBytes < kWordBytes) {
    return (LoadShortRow(row, rowBytes) >> channel) & LowBits(count);
  }
  const WINDOW at = WindowOf(channel, rowBytes);
  std::uint64_t bits = LoadWord(row + at.byte) >> at.shift;
  const bool spills = at.shift + static_cast<std::size_t>(count) > kWordBits;
  if (spills && at.byte + kWordBytes < rowBytes) {
    bits |= std::uint64_t{row[at.byte + kWordBytes]} << (kWordBits - at.shift);
  }
  return bits & LowBits(count);
}

void StoreBits(std::uint8_t* row, std::size_t rowBytes, std::size_t channel, int count,
               std::uint64_t bits) {
  if (channel / 8 >= rowBytes) return;
  const std::uint64_t mask = LowBits(count);
  if (rowBytes < kWordBytes) {
    const std::uint64_t word = LoadShortRow(row, rowBytes);
    const std::uint64_t merged = (word & ~(mask << channel)) | ((bits & mask) << channel);
    for (std::size_t i = 0; i < rowBytes; ++i) row[i] = static_cast<std::uint8_t>(merged >> 8 * i);
    return;
  }
  const WINDOW at = WindowOf(channel, rowBytes);
  const std::uint64_t word = LoadWord(row + at.byte);
  StoreWord(row + at.byte, (word & ~(mask << at.shift)) | ((bits & mask) << at.shift));
  const bool spills = at.shift + static_cast<std::size_t>(count) > kWordBits;
  if (spills && at.byte + kWordBytes < rowBytes) {
    std::uint8_t& last = row[at.byte + kWordBytes];
    const std::size_t held = kWordBits - at.shift;
    last = static_cast<std::uint8_t>((last & ~(mask >> held)) | ((bits & mask) >> held));
  }
}

}  // namespace

CGroupPlan::CGroupPlan(std::span<const int> channels)
    : m_bits(static_cast<int>(channels.size())), m_lowest(std::numeric_limits<int>::max()) {
  for (int bit = 0; bit < m_bits; ++bit) {
    const int channel = channels[static_cast<std::size_t>(m_bits - 1 - bit)];
    if (channel < 0) continue;
    m_lowest = std::min(m_lowest, channel);
    RUN* last = m_runs.empty() || bit % kWordBits == 0 ? nullptr : &m_runs.back();
    if (last && last->bit + last->count == bit && channel - last->count == last->channel) {
      ++last->count;
    } else {
      m_runs.push_back({channel, bit, 1});
    }
  }
}

void CGroupPlan::Load(const std::uint8_t* row, std::size_t rowBytes,
                      std::span<std::uint64_t> value) const {
  if (m_runs.size() == 1 && m_runs[0].count == m_bits) {  // a bus of up to 64 channels in a row
    value[0] = LoadBits(row, rowBytes, static_cast<std::size_t>(m_runs[0].channel), m_bits);
    return;
  }
  std::ranges::fill(value, 0);
  for (const RUN& run : m_runs) {
    value[static_cast<std::size_t>(run.bit / kWordBits)] |=
        LoadBits(row, rowBytes, static_cast<std::size_t>(run.channel), run.count)
        << (run.bit % kWordBits);
  }
}

void CGroupPlan::Store(std::uint8_t* row, std::size_t rowBytes,
                       std::span<const std::uint64_t> value) const {
  for (const RUN& run : m_runs) {
    const std::uint64_t word = value[static_cast<std::size_t>(run.bit / kWordBits)];
    StoreBits(row, rowBytes, static_cast<std::size_t>(run.channel), run.count,
              word >> (run.bit % kWordBits));
  }
}

}  // namespace quillpg
