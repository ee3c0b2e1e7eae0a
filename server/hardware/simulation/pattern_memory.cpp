#include "hardware/simulation/pattern_memory.h"

#include "hardware/simulation/unit_unpacker.h"

#include <algorithm>
#include <cstddef>

namespace quillpg {

void CPatternMemory::DeleteAll() {
  m_blocks.clear();
  m_vectors = 0;
  ++m_revision;
}

CPatternMemory::PACKED_BLOCK CPatternMemory::MakeBlock(int size, ChannelMode mode) {
  PACKED_BLOCK block;
  block.size = size;
  block.half = mode == ChannelMode::Half;
  const std::int64_t n = block.half ? block.size : 2 * block.size;
  const std::int64_t units = (n + 7) / 8;
  const std::int64_t missing = (8 - n % 8) % 8;
  // A block too short for a full unit beside its short ones is sent as short units alone, which
  // reach past its end.
  block.fullUnits = units > missing || missing == 0 ? units - missing : 0;
  block.shortUnits = missing;
  block.words.resize(static_cast<std::size_t>(block.fullUnits + block.shortUnits) * WORDS_PER_UNIT);
  return block;
}

Status CPatternMemory::Create(int block, int size, ChannelMode mode, std::int64_t depth) {
  if (block < 0 || size < 0) return E_FAIL;
  const std::int64_t vectors = m_vectors - Size(block) + size;
  if (vectors > depth) return E_FAIL;
  m_blocks[block] = MakeBlock(size, mode);
  m_vectors = vectors;
  ++m_revision;
  return S_OK;
}

Status CPatternMemory::Write(const std::uint16_t* words, int block, int firstUnit, int unitCount) {
  const auto found = m_blocks.find(block);
  if (!words || found == m_blocks.end() || firstUnit < 0 || unitCount < 0) return E_FAIL;
  PACKED_BLOCK& target = found->second;
  const std::int64_t room = target.fullUnits + target.shortUnits - firstUnit;
  const std::int64_t units = std::clamp<std::int64_t>(room, 0, unitCount);
  std::copy_n(
      words, units * WORDS_PER_UNIT,
      target.words.begin() +
          std::min(target.fullUnits + target.shortUnits, std::int64_t{firstUnit}) * WORDS_PER_UNIT);
  ++m_revision;
  return units == unitCount ? S_OK : E_FAIL;
}

std::int64_t CPatternMemory::Size(int block) const {
  const auto found = m_blocks.find(block);
  return found == m_blocks.end() ? 0 : found->second.size;
}

void CPatternMemory::Unpack(int block, std::uint64_t* rows, std::size_t stride,
                            std::int64_t count) const {
  const auto found = m_blocks.find(block);
  if (found == m_blocks.end()) return;
  const PACKED_BLOCK& packed = found->second;
  const std::uint16_t* words = packed.words.data();
  std::int64_t left = std::min(count, packed.size);
  UNIT_ROWS unit;
  const auto take = [&](int vectors) {
    for (int v = 0; v < vectors && left > 0; ++v, --left, rows += stride) {
      *rows = unit[static_cast<std::size_t>(v)];
    }
  };
  for (std::int64_t i = 0; i < packed.fullUnits; ++i, words += WORDS_PER_UNIT) {
    packed.half ? UnpackHalfUnit(words, unit) : UnpackFullUnit(words, unit);
    take(packed.half ? FULL_UNIT_VECTORS_HALF : FULL_UNIT_VECTORS_FULL);
  }
  const int group = packed.half ? 1 : 2;
  for (std::int64_t i = 0; i + group <= packed.shortUnits; i += group) {
    packed.half ? UnpackHalfUnit(words, unit) : UnpackShortPair(words, unit);
    take(SHORT_UNIT_VECTORS);
    words += std::ptrdiff_t{group} * WORDS_PER_UNIT;
  }
}

}  // namespace quillpg
