#pragma once

#include "hardware/unit_kernel_sse2.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

// Packs one full memory unit: the inner loop of the packer. A unit is four squares of 8 x 8 bits.
// Gathering puts the rows that share a square into one 64-bit word; turning the square over its
// diagonal then makes bytes of channels out of bytes of vectors.

namespace quillpg {

/// Turns the 8 x 8 bits of `square` (bit b of byte y is row y, column b) over its diagonal and
/// swaps neighbouring rows and columns on the way. The swap costs nothing: within each 2 x 2 bits
/// the other diagonal changes places.
constexpr std::uint64_t TurnSquare(std::uint64_t square) {
  std::uint64_t swap = (square ^ (square >> 9)) & 0x0055005500550055U;
  square ^= swap ^ (swap << 9);
  swap = (square ^ (square >> 14)) & 0x0000CCCC0000CCCCU;
  square ^= swap ^ (swap << 14);
  swap = (square ^ (square >> 28)) & 0x00000000F0F0F0F0U;
  return square ^ swap ^ (swap << 28);
}

/// The kernel for every machine.
struct CPortableUnitKernel {
  /// FULL: four rows of 8 bytes, `stride` bytes apart, into 16 words.
  static void PackFull(const std::uint8_t* rows, std::size_t stride, std::uint16_t* words) {
    Store(LoadRow<8>(rows + 3 * stride), LoadRow<8>(rows + 2 * stride), LoadRow<8>(rows + stride),
          LoadRow<8>(rows), words);
  }

  /// HALF: eight rows of 4 bytes, `stride` bytes apart, into 16 words.
  static void PackHalf(const std::uint8_t* rows, std::size_t stride, std::uint16_t* words) {
    Store(LoadPair(rows + 6 * stride, stride), LoadPair(rows + 4 * stride, stride),
          LoadPair(rows + 2 * stride, stride), LoadPair(rows, stride), words);
  }

 private:
  // Byte k of the row in bits 8k to 8k + 7 of the result.
  template <std::size_t Bytes>
  static std::uint64_t LoadRow(const std::uint8_t* row) {
    std::uint64_t value = 0;
    if constexpr (std::endian::native == std::endian::little) {
      std::memcpy(&value, row, Bytes);
    } else {
      for (std::size_t i = 0; i < Bytes; ++i) value |= std::uint64_t{row[i]} << (8 * i);
    }
    return value;
  }

  // Two rows of 4 bytes with their bytes interleaved.
  static std::uint64_t LoadPair(const std::uint8_t* rows, std::size_t stride) {
    std::uint64_t pair = LoadRow<4>(rows) | LoadRow<4>(rows + stride) << 32;
    std::uint64_t swap = (pair ^ (pair >> 16)) & 0x00000000FFFF0000U;
    pair ^= swap ^ (swap << 16);
    swap = (pair ^ (pair >> 8)) & 0x0000FF000000FF00U;
    return pair ^ swap ^ (swap << 8);
  }

  // Square i takes the 16 bits number i of each of the four words, `a` lowest.
  static void Store(std::uint64_t a, std::uint64_t b, std::uint64_t c, std::uint64_t d,
                    std::uint16_t* words) {
    constexpr std::uint64_t kEven = 0x0000FFFF0000FFFFU;
    constexpr std::uint64_t kLow = 0x00000000FFFFFFFFU;
    const std::uint64_t evenAb = (a & kEven) | (b & kEven) << 16;
    const std::uint64_t evenCd = (c & kEven) | (d & kEven) << 16;
    const std::uint64_t oddAb = (a >> 16 & kEven) | (b & ~kEven);
    const std::uint64_t oddCd = (c >> 16 & kEven) | (d & ~kEven);
    const std::uint64_t squares[] = {(evenAb & kLow) | evenCd << 32, (oddAb & kLow) | oddCd << 32,
                                     evenAb >> 32 | (evenCd & ~kLow),
                                     oddAb >> 32 | (oddCd & ~kLow)};
    for (const std::uint64_t square : squares) {
      const std::uint64_t turned = TurnSquare(square);
      for (int i = 0; i < 4; ++i) *words++ = static_cast<std::uint16_t>(turned >> (16 * i));
    }
  }
};

#if defined(__SSE2__)
using CUnitKernel = CSse2UnitKernel;
#else
using CUnitKernel = CPortableUnitKernel;
#endif

}  // namespace quillpg
