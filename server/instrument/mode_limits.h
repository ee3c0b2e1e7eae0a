#pragma once

#include "quillpg/engine_types.h"

namespace quillpg {

/// What the channel mode alone decides. HALF mode has half the channels, the higher speed, the
/// larger smallest block and twice the depth.
struct MODE_LIMITS {
  int channelsPerModule;
  int maxClockSpeed;      ///< MHz
  double minClockPeriod;  ///< s, constants of their own: not derived from the speed
  double maxClockPeriod;  ///< s
  int minBlockSize;       ///< vectors
  int depthFactor;        ///< vectors of a block memory for each one in FULL mode
};

inline constexpr MODE_LIMITS FULL_LIMITS = {64, 134, 7.4626865e-09, 2.0, 40, 1};
inline constexpr MODE_LIMITS HALF_LIMITS = {32, 268, 3.7313432e-09, 1.0, 80, 2};

constexpr const MODE_LIMITS& LimitsOf(ChannelMode mode) {
  return mode == ChannelMode::Full ? FULL_LIMITS : HALF_LIMITS;
}

}  // namespace quillpg
