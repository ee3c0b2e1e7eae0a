#pragma once

#if defined(__SSE2__)

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <emmintrin.h>

// The inner loop of the packer for machines with SSE2; see unit_kernel.h for what it computes.

namespace quillpg {

struct CSse2UnitKernel {
  /// FULL: four rows of 8 bytes, `stride` bytes apart, into 16 words.
  static void PackFull(const std::uint8_t* rows, std::size_t stride, std::uint16_t* words) {
    Store(_mm_unpacklo_epi16(Load8(rows + 3 * stride), Load8(rows + 2 * stride)),
          _mm_unpacklo_epi16(Load8(rows + stride), Load8(rows)), words);
  }

  /// HALF: eight rows of 4 bytes, `stride` bytes apart, into 16 words.
  static void PackHalf(const std::uint8_t* rows, std::size_t stride, std::uint16_t* words) {
    Store(_mm_unpacklo_epi16(LoadPair(rows + 6 * stride, stride),
                             LoadPair(rows + 4 * stride, stride)),
          _mm_unpacklo_epi16(LoadPair(rows + 2 * stride, stride), LoadPair(rows, stride)), words);
  }

 private:
  static __m128i Load8(const std::uint8_t* row) {
    return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(row));
  }

  static __m128i Load4(const std::uint8_t* row) {
    int value = 0;
    std::memcpy(&value, row, sizeof value);
    return _mm_cvtsi32_si128(value);
  }

  static __m128i LoadPair(const std::uint8_t* rows, std::size_t stride) {
    return _mm_unpacklo_epi8(Load4(rows), Load4(rows + stride));
  }

  template <int Distance>
  static __m128i SwapBits(__m128i squares, std::int64_t mask) {
    const __m128i swap = _mm_and_si128(_mm_xor_si128(squares, _mm_srli_epi64(squares, Distance)),
                                       _mm_set1_epi64x(mask));
    return _mm_xor_si128(squares, _mm_xor_si128(swap, _mm_slli_epi64(swap, Distance)));
  }

  static __m128i TurnSquares(__m128i squares) {
    squares = SwapBits<9>(squares, 0x0055005500550055);
    squares = SwapBits<14>(squares, 0x0000CCCC0000CCCC);
    return SwapBits<28>(squares, 0x00000000F0F0F0F0);
  }

  // `later` and `earlier` vectors, 16 bits a square in turn.
  static void Store(__m128i later, __m128i earlier, std::uint16_t* words) {
    auto* out = reinterpret_cast<__m128i*>(words);
    _mm_storeu_si128(out, TurnSquares(_mm_unpacklo_epi32(later, earlier)));
    _mm_storeu_si128(out + 1, TurnSquares(_mm_unpackhi_epi32(later, earlier)));
  }
};

}  // namespace quillpg

#endif
