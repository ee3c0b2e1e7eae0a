#pragma once

#include "quillpg/engine_types.h"
#include "quillpg/limits.h"

#include <cstdint>

namespace quillpg {

/// What the channel mode alone decides. HALF mode has half the channels, the higher speed, the
/// larger smallest block and twice the depth.
struct MODE_LIMITS {
  int channelsPerPod;
  int maxClockSpeed;      ///< MHz
  double minClockPeriod;  ///< s, constants of their own: not derived from the speed
  double maxClockPeriod;  ///< s
  int minBlockSize;       ///< vectors
  int depthFactor;        ///< vectors of a block memory for each one in FULL mode
  int blockGranularity;   ///< vectors; blocks take up whole multiples of it

  constexpr int ChannelsPerModule() const { return NUM_PODS * channelsPerPod; }
};

inline constexpr MODE_LIMITS FULL_LIMITS = {16, 134, 7.4626865e-09, 2.0, 40, 1, 4};
inline constexpr MODE_LIMITS HALF_LIMITS = {8, 268, 3.7313432e-09, 1.0, 80, 2, 8};

constexpr const MODE_LIMITS& LimitsOf(ChannelMode mode) {
  return mode == ChannelMode::Full ? FULL_LIMITS : HALF_LIMITS;
}

/// Adds up the vectors that a program's blocks take.
class CBlockMemory {
 public:
  explicit CBlockMemory(int granularity) : m_granularity(granularity) {}

  void Add(std::int64_t blockSize) {
    const std::int64_t rest = blockSize % m_granularity;
    if (rest > 0) m_padding = m_granularity - rest;
    m_vectors += blockSize + m_padding;
  }
  std::int64_t Vectors() const { return m_vectors; }

 private:
  int m_granularity;
  std::int64_t m_vectors = 0;
  // Deliberately kept from block to block: an aligned block adds the last one's.
  std::int64_t m_padding = 0;
};

}  // namespace quillpg
