#pragma once

#include "quillpg/engine_types.h"
#include "quillpg/result_codes.h"

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace quillpg {

/// The pattern memory of one module: blocks as the packed words that arrived, unpacked to rows only
/// when they are played.
class CPatternMemory {
 public:
  void DeleteAll();

  /// Reserves a block of `size` vectors, all 0; one of the same number is replaced. E_FAIL, nothing
  /// changed, for a negative number or size or when all blocks together would exceed `depth`
  /// vectors. The block keeps the layout of `mode`, whatever the mode becomes later.
  Status Create(int block, int size, ChannelMode mode, std::int64_t depth);

  /// Stores `unitCount` units of 16 words from unit `firstUnit` of the block on. E_FAIL when the
  /// block was never created; units beyond its size are dropped and give E_FAIL too.
  Status Write(const std::uint16_t* words, int block, int firstUnit, int unitCount);

  /// Vectors of the block; 0 when there is none.
  std::int64_t Size(int block) const;

  /// Writes the first `count` vectors of the block to rows[0], rows[stride], ...: bit c is channel
  /// c. Leaves those alone that the block does not have.
  void Unpack(int block, std::uint64_t* rows, std::size_t stride, std::int64_t count) const;

  /// Rises with every change of the memory.
  std::uint64_t Revision() const { return m_revision; }

 private:
  struct PACKED_BLOCK {
    std::int64_t size = 0;
    bool half = false;
    std::int64_t fullUnits = 0;
    std::int64_t shortUnits = 0;  // 7 vectors each (HALF) or for every two of them (FULL)
    std::vector<std::uint16_t> words;
  };
  static PACKED_BLOCK MakeBlock(int size, ChannelMode mode);

  std::unordered_map<int, PACKED_BLOCK> m_blocks;
  std::int64_t m_vectors = 0;  // of all blocks
  std::uint64_t m_revision = 0;
};

}  // namespace quillpg
