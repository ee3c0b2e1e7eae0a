#pragma once

#include "hardware/bit_arrange.h"

#include <array>
#include <cstdint>

// Turns memory units (16 words each) back into vectors, in whole words.

namespace quillpg {

inline constexpr int FULL_UNIT_VECTORS_HALF = 8;  ///< HALF mode, full unit
inline constexpr int FULL_UNIT_VECTORS_FULL = 4;  ///< FULL mode, full unit
inline constexpr int SHORT_UNIT_VECTORS = 7;      ///< HALF: a short unit; FULL: two of them

using UNIT_ROWS = std::array<std::uint64_t, 8>;

/// HALF mode: 8 vectors of 32 channels; of a short unit the eighth is 0.
void UnpackHalfUnit(const std::uint16_t* words, UNIT_ROWS& rows);

/// FULL mode, full unit: 4 vectors of 64 channels in rows 0 to 3.
void UnpackFullUnit(const std::uint16_t* words, UNIT_ROWS& rows);

/// FULL mode, two short units: 7 vectors of 64 channels in rows 0 to 6.
void UnpackShortPair(const std::uint16_t* words, UNIT_ROWS& rows);

}  // namespace quillpg
