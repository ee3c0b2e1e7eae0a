#pragma once

#include "quillpg/api.h"

#include <cstdint>
#include <span>

namespace quillpg {

inline constexpr int MAX_SHIFT_REGISTERS = 32;

/// The tap settings of a register of `registers` stages (0 to 32) as masks, stage r in bit 31 - r,
/// in their fixed order; empty for any other length.
QUILLPG_API std::span<const std::uint32_t> GetTapSettings(int registers);

}  // namespace quillpg
