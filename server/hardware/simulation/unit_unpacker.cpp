#include "hardware/simulation/unit_unpacker.h"

namespace quillpg {
namespace {

constexpr int kLanes = 4;  // a unit is four lanes of four words
constexpr int kWordsPerLane = 4;

/// Byte i of the result holds bit i of every byte of `x`, byte j's at bit j.
constexpr std::uint64_t Transpose8x8(std::uint64_t x) {
  std::uint64_t t = (x ^ (x >> 7)) & 0x00AA00AA00AA00AAULL;
  x ^= t ^ (t << 7);
  t = (x ^ (x >> 14)) & 0x0000CCCC0000CCCCULL;
  x ^= t ^ (t << 14);
  t = (x ^ (x >> 28)) & 0x00000000F0F0F0F0ULL;
  return x ^ t ^ (t << 28);
}

constexpr std::uint64_t SwapByteNeighbours(std::uint64_t x) {
  return ((x & 0x00FF00FF00FF00FFULL) << 8) | ((x >> 8) & 0x00FF00FF00FF00FFULL);
}

/// The eight bytes of a lane, transposed. Bytes lie in words low byte first, neighbouring channels
/// swapped; afterwards byte i holds bit i of the lane's bytes in channel order.
std::uint64_t Lane(const std::uint16_t* words, int lane) {
  std::uint64_t x = 0;
  for (int i = kWordsPerLane - 1; i >= 0; --i) x = (x << 16) | words[lane * kWordsPerLane + i];
  return Transpose8x8(SwapByteNeighbours(x));
}

constexpr std::uint64_t Byte(std::uint64_t x, int index) { return (x >> (8 * index)) & 0xFF; }

/// 16 channels: those of byte `low` and, above them, those of byte `high`.
constexpr std::uint64_t Pair(std::uint64_t x, int low, int high) {
  return Byte(x, low) | (Byte(x, high) << 8);
}

}  // namespace

void UnpackHalfUnit(const std::uint16_t* words, UNIT_ROWS& rows) {
  rows.fill(0);
  for (int lane = 0; lane < kLanes; ++lane) {
    const std::uint64_t bits = Lane(words, lane);
    for (int v = 0; v < FULL_UNIT_VECTORS_HALF; ++v) {
      rows[static_cast<std::size_t>(v)] |= Byte(bits, 7 - v) << (8 * lane);
    }
  }
}

void UnpackFullUnit(const std::uint16_t* words, UNIT_ROWS& rows) {
  rows.fill(0);
  for (int lane = 0; lane < kLanes; ++lane) {
    const std::uint64_t swapped = SwapByteNeighbours(Lane(words, lane));
    for (int v = 0; v < FULL_UNIT_VECTORS_FULL; ++v) {
      rows[static_cast<std::size_t>(v)] |= ((swapped >> (48 - 16 * v)) & 0xFFFF) << (16 * lane);
    }
  }
}

void UnpackShortPair(const std::uint16_t* words, UNIT_ROWS& rows) {
  rows.fill(0);
  for (int lane = 0; lane < kLanes; ++lane) {
    const int shift = 16 * lane;
    const std::uint64_t first = Lane(words, lane);
    const std::uint64_t second = Lane(words + WORDS_PER_UNIT, lane);
    rows[0] |= Pair(first, 7, 6) << shift;
    rows[1] |= Pair(first, 5, 4) << shift;
    rows[2] |= Pair(first, 3, 2) << shift;
    // Vector 3 lies in both units; from there on the two bytes change roles.
    rows[3] |= (Byte(first, 1) | (Byte(second, 7) << 8)) << shift;
    rows[4] |= Pair(second, 6, 5) << shift;
    rows[5] |= Pair(second, 4, 3) << shift;
    rows[6] |= Pair(second, 2, 1) << shift;
  }
}

}  // namespace quillpg
