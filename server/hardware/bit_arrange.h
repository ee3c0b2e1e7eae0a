#pragma once

#include "quillpg/engine_types.h"

#include <cstdint>
#include <span>

namespace quillpg {

// The hardware takes pattern data in memory units of 16 words of 16 bits. Units are filled in
// groups; how the bits of a group are spread over its words depends on the channel mode.

inline constexpr int WORDS_PER_UNIT = 16;
inline constexpr int BITS_PER_WORD = 16;
/// Units that one transfer may carry.
inline constexpr int MAX_TRANSFER_UNITS = 2048;

/// A block ends in short units, which hold seven eighths of a full one, so that its size need not
/// be a multiple of a unit.
enum class UnitKind : std::int32_t { Full = 0, Short = 1 };

/// What one bit of a word carries.
struct BIT_ENTRY {
  std::int32_t channel;  ///< from the module's first channel on; -1: unused, sent as 0
  std::int32_t vector;   ///< from the group's first vector on; -1: unused
};

/// One arrangement: the definition of where every bit of a packing group lies.
struct BitArrange {
  std::int32_t unitsPerGroup;
  std::int32_t vectorStep;             ///< vectors of a group; twice that number in FULL mode
  std::int32_t wordsPerGroup;          ///< 16 a unit
  std::span<const BIT_ENTRY> entries;  ///< 16 a word, from bit 0 to bit 15
};

/// The arrangement of a mode. Any mode but Half counts as Full, here and wherever data is packed.
///
/// | mode | full units              | short units              |
/// |------|-------------------------|--------------------------|
/// | HALF | 8 vectors in one unit   | 7 vectors in one unit    |
/// | FULL | 4 vectors in one unit   | 7 vectors in two units   |
const BitArrange& GetBitArrange(ChannelMode mode, UnitKind kind);

/// Vectors that one group holds: the vector step, in FULL mode half of it.
int GetVectorsPerGroup(ChannelMode mode, UnitKind kind);

/// Channels of one module: 32 or 64.
constexpr int GetChannelsPerModule(ChannelMode mode) { return mode == ChannelMode::Half ? 32 : 64; }

}  // namespace quillpg
