#include "instrument/channel_fill.h"

#include "hardware/shift_register_generator.h"
#include "program/block.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace quillpg {

namespace {

constexpr int kSide = 64;

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
  // One word more than needed lets At read pairs.
  explicit CStreams(std::size_t streams, std::int64_t count)
      : m_count(count), m_words(Words(static_cast<std::int64_t>(streams)) + 1) {}

  void Take(std::size_t streams, CShiftRegisterGenerator& generator) {
    const auto bits = static_cast<std::int64_t>(streams) * m_count;
    generator.getNextWords({m_words.data(), Words(static_cast<std::int64_t>(streams))}, bits);
  }

  // 64 bits of the stream from `position` on; those behind its end mean nothing.
  std::uint64_t At(int stream, std::int64_t position) const {
    const std::int64_t bit = stream * m_count + position;
    const auto word = static_cast<std::size_t>(bit / 64);
    const int shift = static_cast<int>(bit % 64);
    // Two shifts, because one by 64 is none.
    return m_words[word] >> shift | m_words[word + 1] << 1 << (63 - shift);
  }

 private:
  std::size_t Words(std::int64_t streams) const {
    return static_cast<std::size_t>((streams * m_count + 63) / 64);
  }

  std::int64_t m_count;
  std::vector<std::uint64_t> m_words;
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
  for (int vector = 0; vector < count; vector += kSide) {
    SQUARE square;
    for (std::size_t c = 0; c < kSide; ++c) {
      const int stream = column.streams[c];
      square[c] = stream < 0 ? 0 : streams.At(stream, vector);
    }
    Transpose(square);
    store(square, std::min(kSide, count - vector), filled,
          target + static_cast<std::size_t>(vector) * rowBytes, rowBytes, bytes);
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
    streams.Take(batch.size(), generator);
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
