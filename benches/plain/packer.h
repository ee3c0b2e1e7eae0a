#pragma once

#include "hardware/bit_arrange.h"
#include "hardware/pattern_packer.h"

#include <cstddef>
#include <cstdint>

namespace quillpg {

/// One channel of one vector; 0 outside the block.
inline int ReadBit(const PATTERN_ROWS& rows, int channel, std::int64_t vector) {
  const auto byte = static_cast<std::size_t>(channel / 8);
  if (vector < 0 || vector >= rows.size || byte >= rows.rowBytes) return 0;
  return rows.data[static_cast<std::size_t>(vector) * rows.rowBytes + byte] >> (channel % 8) & 1;
}

/// Packs bit by bit from the entry table, the abort flag looked at for every bit: what the packer
/// must agree with, and the yardstick of its speed. False when it was aborted.
inline bool PackPlain(const PATTERN_ROWS& rows, ChannelMode mode, UnitKind kind, int baseChannel,
                      std::int64_t firstVector, int groups, const volatile bool& abort,
                      std::uint16_t* words) {
  const BitArrange& arrange = GetBitArrange(mode, kind);
  for (int group = 0; group < groups; ++group) {
    std::size_t next = 0;
    for (int i = 0; i < arrange.wordsPerGroup; ++i) {
      unsigned word = 0;
      for (int bit = 0; bit < BITS_PER_WORD; ++bit) {
        if (abort) return false;
        const BIT_ENTRY& entry = arrange.entries[next++];
        if (entry.channel == -1) continue;
        if (ReadBit(rows, baseChannel + entry.channel, firstVector + entry.vector) != 0) {
          word |= 1U << bit;
        }
      }
      *words++ = static_cast<std::uint16_t>(word);
    }
    firstVector += mode == ChannelMode::Half ? arrange.vectorStep : arrange.vectorStep / 2;
  }
  return true;
}

}  // namespace quillpg
