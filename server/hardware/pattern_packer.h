#pragma once

#include "hardware/bit_arrange.h"
#include "quillpg/engine_types.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace quillpg {

/// A block's bits as the packer reads them: one row a vector, channel c of the instrument is bit
/// (c mod 8) of byte (c / 8) of the row. Refers to the block's data, take it anew after a yield.
struct PATTERN_ROWS {
  const std::uint8_t* data = nullptr;  ///< null: every bit reads 0
  std::size_t rowBytes = 0;
  std::int64_t size = 0;  ///< rows
};

/// One transfer of a block to the modules.
struct PACK_RUN {
  UnitKind kind;
  int firstUnit;
  int unitCount;             ///< 1 to MAX_TRANSFER_UNITS
  std::int64_t firstVector;  ///< vector of the block that the first unit starts with

  bool operator==(const PACK_RUN&) const = default;
};

/// The transfers that carry a block of `size` vectors: full units first, at most
/// MAX_TRANSFER_UNITS a run, then the short ones. A block too small for as many full units goes out
/// in short units alone, which reach past its end: meant so. No runs for a size below 1.
/// Allocates: a failure throws.
std::vector<PACK_RUN> SplitIntoRuns(ChannelMode mode, int size);

/// Puts rows of pattern data into the word layout of the hardware; see GetBitArrange for what that
/// is. Bits outside the block (rows past its end, channels past its width) read 0; nothing outside
/// the block's memory is touched.
class CPatternPacker {
 public:
  CPatternPacker(ChannelMode mode, UnitKind kind);

  int UnitsPerGroup() const { return m_unitsPerGroup; }
  int VectorsPerGroup() const { return m_vectorsPerGroup; }
  int WordsPerGroup() const { return m_unitsPerGroup * WORDS_PER_UNIT; }

  /// Packs `groupCount` groups of one module from `firstVector` on into the start of `words`; only
  /// as many groups as `words` has room for. `baseChannel` is the module's first channel in the
  /// block, a multiple of 8: module position times GetChannelsPerModule.
  void Pack(const PATTERN_ROWS& rows, int baseChannel, std::int64_t firstVector, int groupCount,
            std::span<std::uint16_t> words) const;

 private:
  bool m_half;
  bool m_short;
  int m_unitsPerGroup;
  int m_vectorsPerGroup;
};

}  // namespace quillpg
