#pragma once

#include "hardware/hardware_library.h"
#include "hardware/pattern_packer.h"
#include "plain/packer.h"

#include <cstdint>
#include <vector>

namespace quillpg {

/// Creates a block on a module and sends its rows (bit c is channel c), packed bit by bit from the
/// entry tables. The module must be in `mode`.
inline void SendBlock(CSorrelModule& module, int block, ChannelMode mode,
                      const std::vector<std::uint64_t>& rows) {
  std::vector<std::uint8_t> bytes;
  for (const std::uint64_t row : rows) {
    for (int shift = 0; shift < 64; shift += 8) {
      bytes.push_back(static_cast<std::uint8_t>(row >> shift));
    }
  }
  const PATTERN_ROWS pattern{bytes.data(), 8, static_cast<std::int64_t>(rows.size())};
  const bool abort = false;
  (void)module.CreateDataBlock(block, static_cast<int>(rows.size()));
  for (const PACK_RUN& run : SplitIntoRuns(mode, static_cast<int>(rows.size()))) {
    const int groups = run.unitCount / GetBitArrange(mode, run.kind).unitsPerGroup;
    std::vector<std::uint16_t> words(static_cast<std::size_t>(run.unitCount) * WORDS_PER_UNIT);
    PackPlain(pattern, mode, run.kind, 0, run.firstVector, groups, abort, words.data());
    (void)module.DataVectorsSM(words.data(), block, run.firstUnit, run.unitCount, 0);
  }
}

}  // namespace quillpg
