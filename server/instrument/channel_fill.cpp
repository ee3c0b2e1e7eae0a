#include "instrument/channel_fill.h"

#include "hardware/shift_register_generator.h"
#include "program/block.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <vector>

namespace quillpg {

namespace {

constexpr int kSide = 64;

// Squares that are gathered at a time: streams lie a power of two apart more often than not, where
// few of their cache lines can stay at once, so all of a line's words are taken when it is there.
constexpr int kSquares = 8;

using SQUARE = std::array<std::uint64_t, kSide>;

// Exchanges the squares of `Half` x `Half` bits beside the diagonal of each square twice that wide.
template <std::size_t Half>
void SwapHalves(SQUARE& square, std::uint64_t lowHalves) {
  for (std::size_t base = 0; base < kSide; base += 2 * Half) {
    for (std::size_t i = base; i < base + Half; ++i) {
      const std::uint64_t swap = (square[i] >> Half ^ square[i + Half]) & lowHalves;
      square[i] ^= swap << Half;
      square[i + Half] ^= swap;
    }
  }
}

// Turns the square over its diagonal: bit c of word r changes places with bit r of word c.
void Transpose(SQUARE& square) {
  SwapHalves<32>(square, 0x00000000FFFFFFFFU);
  SwapHalves<16>(square, 0x0000FFFF0000FFFFU);
  SwapHalves<8>(square, 0x00FF00FF00FF00FFU);
  SwapHalves<4>(square, 0x0F0F0F0F0F0F0F0FU);
  SwapHalves<2>(square, 0x3333333333333333U);
  SwapHalves<1>(square, 0x5555555555555555U);
}

// Byte k of a row is in bits 8k to 8k + 7 of a word.
std::uint64_t FromRowOrder(std::uint64_t word) {
  if constexpr (std::endian::native == std::endian::big) {
    std::uint64_t turned = 0;
    for (int shift = 0; shift < 64; shift += 8) turned |= (word >> shift & 0xFF) << (56 - shift);
    return turned;
  }
  return word;
}

// The bits of several channels, one stream of `count` bits behind the other.
class CStreams {
 public:
  CStreams(std::size_t streams, std::int64_t count) : m_count(count) {
    // One word more than needed lets Copy read pairs.
    const std::size_t words = Words(static_cast<std::int64_t>(streams));
    m_words = std::make_unique_for_overwrite<std::uint64_t[]>(words + 1);
    m_words[words] = 0;
  }

  void Generate(std::size_t streams, CShiftRegisterGenerator& generator) {
    const auto number = static_cast<std::int64_t>(streams);
    generator.getNextWords({m_words.get(), Words(number)}, number * m_count);
  }

  // Copies 64 bits to word `place` of each square, from bit `position` of the stream on. Bits
  // behind its end mean nothing.
  void Copy(int stream, std::int64_t position, std::span<SQUARE> squares, std::size_t place) const {
    const std::int64_t bit = stream * m_count + position;
    const std::uint64_t* word = m_words.get() + bit / 64;
    const int shift = static_cast<int>(bit % 64);
    for (SQUARE& square : squares) {
      // Two shifts, because one by 64 is none.
      square[place] = word[0] >> shift | word[1] << 1 << (63 - shift);
      ++word;
    }
  }

 private:
  std::size_t Words(std::int64_t streams) const {
    return static_cast<std::size_t>((streams * m_count + 63) / 64);
  }

  std::int64_t m_count;
  std::unique_ptr<std::uint64_t[]> m_words;
};

// The channels 64k to 64k + 63 of a block: which stream fills each, -1 for none.
struct COLUMN {
  std::array<int, kSide> streams;
  std::uint64_t filled = 0;  // bit c: channel c has a stream
};

// `Bytes` is the width of the column, 0 for the one given in `bytes`: a size that is known makes a
// single access of each copy.
template <std::size_t Bytes>
void StoreRows(const SQUARE& rows, int count, std::uint64_t filled, std::uint8_t* target,
               std::size_t rowBytes, std::size_t bytes) {
  const std::size_t size = Bytes != 0 ? Bytes : bytes;
  for (int i = 0; i < count; ++i, target += rowBytes) {
    std::uint64_t row = 0;
    std::memcpy(&row, target, size);
    row = (row & ~filled) | FromRowOrder(rows[static_cast<std::size_t>(i)]);
    std::memcpy(target, &row, size);
  }
}

void FillColumn(const COLUMN& column, const CStreams& streams, int count, std::uint8_t* target,
                std::size_t rowBytes, std::size_t bytes) {
  const std::uint64_t filled = FromRowOrder(column.filled);
  const auto store = bytes == 8 ? StoreRows<8> : bytes == 4 ? StoreRows<4> : StoreRows<0>;
  std::array<SQUARE, kSquares> squares{};  // channels without a stream stay 0
  for (int first = 0; first < count; first += kSquares * kSide) {
    const auto used =
        static_cast<std::size_t>((std::min(kSquares * kSide, count - first) + kSide - 1) / kSide);
    for (std::size_t c = 0; c < kSide; ++c) {
      if (column.streams[c] >= 0) streams.Copy(column.streams[c], first, {squares.data(), used}, c);
    }
    for (std::size_t i = 0; i < used; ++i) {
      SQUARE rows = squares[i];
      Transpose(rows);
      const int vector = first + static_cast<int>(i) * kSide;
      store(rows, std::min(kSide, count - vector), filled,
            target + static_cast<std::size_t>(vector) * rowBytes, rowBytes, bytes);
    }
  }
}

}  // namespace

void FillChannels(BLOCK& block, std::span<const int> channels, int first, int count,
                  CShiftRegisterGenerator& generator) {
  const std::size_t rowBytes = block.RowBytes();
  std::vector<COLUMN> columns((rowBytes + 7) / 8);
  CStreams streams(std::min<std::size_t>(channels.size(), kSide), count);
  std::uint8_t* rows = block.Data() + static_cast<std::size_t>(first) * rowBytes;
  while (!channels.empty()) {
    const auto batch = channels.first(std::min<std::size_t>(channels.size(), kSide));
    channels = channels.subspan(batch.size());
    streams.Generate(batch.size(), generator);
    for (COLUMN& column : columns) {
      column.streams.fill(-1);
      column.filled = 0;
    }
    int stream = 0;
    for (const int channel : batch) {
      COLUMN& column = columns[static_cast<std::size_t>(channel) / kSide];
      column.streams[static_cast<std::size_t>(channel) % kSide] = stream++;
      column.filled |= std::uint64_t{1} << channel % kSide;
    }
    for (std::size_t i = 0; i < columns.size(); ++i) {
      if (columns[i].filled == 0) continue;
      FillColumn(columns[i], streams, count, rows + 8 * i, rowBytes,
                 std::min<std::size_t>(8, rowBytes - 8 * i));
    }
  }
}

}  // namespace quillpg
