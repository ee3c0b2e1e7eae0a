#pragma once

#include "quillpg/api.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace quillpg {

/// How a group's channels lie in a block's rows, worked out once for a channel list: stretches of
/// neighbouring channels that are moved as one word. A bus on consecutive channels is one stretch,
/// a load, a shift and a mask.
///
/// Values are words, least significant first; bit 0 is the channel at the list's last position.
/// Rows are `rowBytes` bytes; channel c is bit c % 8 of byte c / 8. Channels below 0 or beyond the
/// row read 0 and are not written, so any list of numbers is safe on any row.
class QUILLPG_API CGroupPlan {
 public:
  explicit CGroupPlan(std::span<const int> channels);

  /// Number of channels, that is, of value bits.
  int Bits() const { return m_bits; }
  /// Words that a value takes.
  std::size_t Words() const { return (static_cast<std::size_t>(m_bits) + 63) / 64; }
  /// True when at least one channel lies in rows of that length.
  bool Reaches(std::size_t rowBytes) const {
    return !m_runs.empty() && static_cast<std::size_t>(m_lowest) / 8 < rowBytes;
  }

  /// Gives the value of `row`; `value` holds Words() words, all of which are set.
  void Load(const std::uint8_t* row, std::size_t rowBytes, std::span<std::uint64_t> value) const;
  /// Writes the value into `row`; of a channel that is listed twice the place nearer to the list's
  /// front counts.
  void Store(std::uint8_t* row, std::size_t rowBytes, std::span<const std::uint64_t> value) const;

 private:
  /// `count` (1 to 64) channels from `channel` on are the value bits from `bit` on, in one word.
  struct RUN {
    int channel;
    int bit;
    int count;
  };

  std::vector<RUN> m_runs;
  int m_bits;
  int m_lowest;
};

}  // namespace quillpg
