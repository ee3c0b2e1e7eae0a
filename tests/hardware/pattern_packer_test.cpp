#include "hardware/pattern_packer.h"

#include "hardware/unit_kernel.h"
#include "plain/packer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <tuple>
#include <vector>

namespace quillpg {
namespace {

constexpr ChannelMode kHalf = ChannelMode::Half;
constexpr ChannelMode kFull = ChannelMode::Full;
constexpr UnitKind kLong = UnitKind::Full;
constexpr UnitKind kShort = UnitKind::Short;

// Rows of pattern data in memory of exactly their size, so that a sanitizer sees a stray access.
struct PATTERN {
  PATTERN(int channels, int size) : rowBytes(static_cast<std::size_t>(channels) / 8), rows(size) {
    bytes.resize(rowBytes * static_cast<std::size_t>(size));
  }

  PATTERN& Randomise(unsigned seed) {
    std::mt19937 random(seed);
    for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random());
    return *this;
  }

  PATTERN_ROWS Rows() const { return {bytes.data(), rowBytes, rows}; }

  std::size_t rowBytes;
  int rows;
  std::vector<std::uint8_t> bytes;
};

std::vector<std::uint16_t> Pack(const PATTERN& pattern, ChannelMode mode, UnitKind kind, int base,
                                std::int64_t vector, int groups) {
  const CPatternPacker packer(mode, kind);
  std::vector<std::uint16_t> words(static_cast<std::size_t>(groups * packer.WordsPerGroup()),
                                   0xDEAD);
  packer.Pack(pattern.Rows(), base, vector, groups, words);
  return words;
}

// The words were worked out by hand. A table and a player that share a mistake cannot hide it here.
TEST(PatternPacker, PutsSingleBitsWhereTheHardwareReadsThem) {
  // What, mode, kind, channel, vector, the word that is not 0.
  const std::tuple<const char*, ChannelMode, UnitKind, int, int, std::size_t, int> rows[] = {
      {"half: even channel in the high byte", kHalf, kLong, 0, 0, 0, 0x8000},
      {"half: last channel", kHalf, kLong, 31, 3, 15, 0x0010},
      {"half short: vector 6 above the empty bit", kHalf, kShort, 0, 6, 0, 0x0200},
      {"full: upper channel one bit below", kFull, kLong, 8, 0, 0, 0x4000},
      {"full: last vector, upper", kFull, kLong, 9, 3, 0, 0x0001},
      {"full: last channel", kFull, kLong, 63, 1, 15, 0x0010},
      {"full short: vector 3, lower, ends unit 1", kFull, kShort, 0, 3, 0, 0x0200},
      {"full short: vector 3, upper, opens unit 2", kFull, kShort, 8, 3, 16, 0x8000},
      {"full short: vector 6, upper", kFull, kShort, 9, 6, 16, 0x0002},
      {"full short: last channel", kFull, kShort, 63, 4, 31, 0x0020},
  };
  for (const auto& [what, mode, kind, channel, vector, index, word] : rows) {
    PATTERN pattern(GetChannelsPerModule(mode), 8);
    const int bit = vector * GetChannelsPerModule(mode) + channel;
    pattern.bytes[static_cast<std::size_t>(bit / 8)] = static_cast<std::uint8_t>(1 << bit % 8);
    std::vector<std::uint16_t> expected(
        static_cast<std::size_t>(GetBitArrange(mode, kind).wordsPerGroup));
    expected[index] = static_cast<std::uint16_t>(word);
    EXPECT_EQ(Pack(pattern, mode, kind, 0, 0, 1), expected) << what;
  }
}

TEST(PatternPacker, AgreesWithTheEntryTables) {
  const std::array<int, 5> rows[] = {
      // Channels, size, base channel, first vector, groups.
      {64, 100, 0, 0, 14},   {64, 99, 0, 60, 9},  // to the last row and past it
      {64, 8, 0, 8, 2},                           // entirely past the end
      {128, 64, 64, 5, 8},                        // second of two merged modules
      {320, 70, 256, 0, 12},                      // last of five
      {40, 50, 0, 0, 8},                          // a row ends inside the module
      {32, 50, 64, 0, 2},                         // and before it
  };
  const bool abort = false;
  for (const auto& [channels, size, base, vector, groups] : rows) {
    const PATTERN pattern = PATTERN(channels, size).Randomise(7);
    for (const int kinds : {0, 1, 2, 3}) {
      SCOPED_TRACE(testing::Message() << channels << ',' << size << ',' << base << ',' << kinds);
      const ChannelMode mode = kinds < 2 ? kHalf : kFull;
      const UnitKind kind = kinds % 2 == 0 ? kLong : kShort;
      const auto packed = Pack(pattern, mode, kind, base, vector, groups);
      std::vector<std::uint16_t> plain(packed.size());
      PackPlain(pattern.Rows(), mode, kind, base, vector, groups, abort, plain.data());
      EXPECT_EQ(plain, packed);
    }
  }
}

TEST(PatternPacker, WritesNoFurtherThanTheWordsReach) {
  const CPatternPacker packer(kFull, UnitKind::Full);
  std::vector<std::uint16_t> words(40, 0xDEAD);     // two groups and a half
  packer.Pack({nullptr, 8, 100}, 0, 0, 20, words);  // a block without data
  std::vector<std::uint16_t> expected(40, 0);
  std::fill(expected.begin() + 32, expected.end(), std::uint16_t{0xDEAD});
  EXPECT_EQ(expected, words);
}

// The machine at hand uses one kernel; the other one must give the same words elsewhere.
TEST(PatternPacker, BothKernelsAgree) {
  const PATTERN pattern = PATTERN(96, 8).Randomise(11);
  for (std::size_t offset = 0; offset < 4; ++offset) {
    std::vector<std::uint16_t> portable(32);
    std::vector<std::uint16_t> used(32);
    CPortableUnitKernel::PackFull(&pattern.bytes[offset], 12, portable.data());
    CPortableUnitKernel::PackHalf(&pattern.bytes[offset], 12, portable.data() + 16);
    CUnitKernel::PackFull(&pattern.bytes[offset], 12, used.data());
    CUnitKernel::PackHalf(&pattern.bytes[offset], 12, used.data() + 16);
    EXPECT_EQ(portable, used);
  }
}

TEST(PatternPacker, SplitsBlocksIntoRuns) {
  using Runs = std::vector<PACK_RUN>;
  EXPECT_EQ(SplitIntoRuns(kHalf, 15), (Runs{{kLong, 0, 1, 0}, {kShort, 1, 1, 8}}));
  EXPECT_EQ(SplitIntoRuns(kHalf, 20), (Runs{{kShort, 0, 4, 0}}));
  EXPECT_EQ(SplitIntoRuns(kFull, 8), (Runs{{kLong, 0, 2, 0}}));
  EXPECT_EQ(SplitIntoRuns(kFull, 4096 * 4 + 7),  // transfers are bounded
            (Runs{{kLong, 0, 2048, 0}, {kLong, 2048, 2048, 8192}, {kShort, 4096, 2, 16384}}));
}

}  // namespace
}  // namespace quillpg
