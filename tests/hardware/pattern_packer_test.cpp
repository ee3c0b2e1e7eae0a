#include "hardware/pattern_packer.h"

#include "hardware/unit_kernel.h"
#include "plain/packer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace quillpg {
namespace {

using testing::ElementsAreArray;

constexpr ChannelMode kHalf = ChannelMode::Half;
constexpr ChannelMode kFull = ChannelMode::Full;

// Rows of pattern data in memory of exactly their size, so that a sanitizer sees a stray access.
struct PATTERN {
  PATTERN(int channels, int size) : rowBytes(static_cast<std::size_t>(channels) / 8), rows(size) {
    bytes.resize(rowBytes * static_cast<std::size_t>(size));
  }

  PATTERN& Set(int channel, int vector) {
    bytes[static_cast<std::size_t>(vector) * rowBytes + static_cast<std::size_t>(channel) / 8] |=
        static_cast<std::uint8_t>(1 << channel % 8);
    return *this;
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

struct WORD {
  int index;
  std::uint16_t value;
};

// The words were worked out by hand. A table and a player that share a mistake cannot hide it here.
TEST(PatternPacker, PutsSingleBitsWhereTheHardwareReadsThem) {
  struct Row {
    const char* what;
    ChannelMode mode;
    UnitKind kind;
    int channel;
    int vector;
    std::vector<WORD> words;  // all others 0
  };
  const Row rows[] = {
      {"half: even channel in the high byte", kHalf, UnitKind::Full, 0, 0, {{0, 0x8000}}},
      {"half: odd channel in the low byte", kHalf, UnitKind::Full, 1, 0, {{0, 0x0080}}},
      {"half: last vector in bit 0", kHalf, UnitKind::Full, 2, 7, {{1, 0x0100}}},
      {"half: last channel", kHalf, UnitKind::Full, 31, 3, {{15, 0x0010}}},
      {"half short: vector 0 stays on top", kHalf, UnitKind::Short, 0, 0, {{0, 0x8000}}},
      {"half short: vector 6 above the empty bit", kHalf, UnitKind::Short, 0, 6, {{0, 0x0200}}},
      {"half short: vector 7 is not sent", kHalf, UnitKind::Short, 0, 7, {}},
      {"full: lower channel of a pair", kFull, UnitKind::Full, 0, 0, {{0, 0x8000}}},
      {"full: upper channel one bit below", kFull, UnitKind::Full, 8, 0, {{0, 0x4000}}},
      {"full: last vector, lower", kFull, UnitKind::Full, 1, 3, {{0, 0x0002}}},
      {"full: last vector, upper", kFull, UnitKind::Full, 9, 3, {{0, 0x0001}}},
      {"full: next pod", kFull, UnitKind::Full, 16, 0, {{4, 0x8000}}},
      {"full: last channel", kFull, UnitKind::Full, 63, 1, {{15, 0x0010}}},
      {"full short: vector 0", kFull, UnitKind::Short, 0, 0, {{0, 0x8000}}},
      {"full short: vector 3, lower, ends unit 1", kFull, UnitKind::Short, 0, 3, {{0, 0x0200}}},
      {"full short: vector 3, upper, opens unit 2", kFull, UnitKind::Short, 8, 3, {{16, 0x8000}}},
      {"full short: vector 6, lower", kFull, UnitKind::Short, 1, 6, {{16, 0x0004}}},
      {"full short: vector 6, upper", kFull, UnitKind::Short, 9, 6, {{16, 0x0002}}},
      {"full short: last channel", kFull, UnitKind::Short, 63, 4, {{31, 0x0020}}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    PATTERN pattern(GetChannelsPerModule(row.mode), 8);
    pattern.Set(row.channel, row.vector);
    std::vector<std::uint16_t> expected(
        static_cast<std::size_t>(GetBitArrange(row.mode, row.kind).wordsPerGroup));
    for (const WORD& word : row.words) expected[static_cast<std::size_t>(word.index)] = word.value;
    EXPECT_THAT(Pack(pattern, row.mode, row.kind, 0, 0, 1), ElementsAreArray(expected));
  }
}

TEST(PatternPacker, AgreesWithTheEntryTables) {
  struct Row {
    const char* what;
    int channels;
    int size;
    int base;
    int firstVector;
    int groups;
  };
  const Row rows[] = {
      {"one module", 64, 100, 0, 0, 14},
      {"inside the block", 64, 100, 0, 40, 3},
      {"to the last row and past it", 64, 99, 0, 60, 9},
      {"short units of a block too small for full ones", 64, 20, 0, 0, 4},
      {"entirely past the end", 64, 8, 0, 8, 2},
      {"second of two merged modules", 128, 64, 64, 5, 8},
      {"last of five merged modules", 320, 70, 256, 0, 12},
      {"upper half of a wide row", 64, 50, 32, 3, 6},
      {"row ends inside the module", 40, 50, 0, 0, 8},
      {"row ends before the module", 32, 50, 64, 0, 2},
      {"one-row block", 64, 1, 0, 0, 2},
  };
  const volatile bool abort = false;
  for (const Row& row : rows) {
    const PATTERN pattern = PATTERN(row.channels, row.size).Randomise(7);
    for (const ChannelMode mode : {kHalf, kFull}) {
      for (const UnitKind kind : {UnitKind::Full, UnitKind::Short}) {
        SCOPED_TRACE(std::string(row.what) + (mode == kHalf ? ", half" : ", full") +
                     (kind == UnitKind::Short ? ", short" : ""));
        const std::vector<std::uint16_t> packed =
            Pack(pattern, mode, kind, row.base, row.firstVector, row.groups);
        std::vector<std::uint16_t> plain(packed.size());
        PackPlain(pattern.Rows(), mode, kind, row.base, row.firstVector, row.groups, abort,
                  plain.data());
        EXPECT_EQ(plain, packed);
      }
    }
  }
}

TEST(PatternPacker, WritesNoFurtherThanTheWordsReach) {
  const PATTERN pattern = PATTERN(64, 100).Randomise(3);
  const CPatternPacker packer(kFull, UnitKind::Full);
  std::vector<std::uint16_t> words(40, 0xDEAD);  // two groups and a half
  packer.Pack(pattern.Rows(), 0, 0, 20, words);
  EXPECT_NE(0xDEAD, words[31]);
  EXPECT_EQ(std::vector<std::uint16_t>(8, 0xDEAD),
            std::vector<std::uint16_t>(words.begin() + 32, words.end()));
  packer.Pack({nullptr, 8, 100}, 0, 0, 2, words);  // a block without data
  EXPECT_EQ(std::vector<std::uint16_t>(32, 0),
            std::vector<std::uint16_t>(words.begin(), words.begin() + 32));
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
  struct Row {
    const char* what;
    ChannelMode mode;
    int size;
    std::vector<PACK_RUN> runs;
  };
  constexpr UnitKind kLong = UnitKind::Full;
  constexpr UnitKind kShort = UnitKind::Short;
  const Row rows[] = {
      {"half, whole units", kHalf, 16, {{kLong, 0, 2, 0}}},
      {"half, one short unit", kHalf, 15, {{kLong, 0, 1, 0}, {kShort, 1, 1, 8}}},
      {"half, four short units", kHalf, 100, {{kLong, 0, 9, 0}, {kShort, 9, 4, 72}}},
      {"half, too small for full units", kHalf, 20, {{kShort, 0, 4, 0}}},
      {"full, whole units", kFull, 8, {{kLong, 0, 2, 0}}},
      {"full, three pairs", kFull, 1001, {{kLong, 0, 245, 0}, {kShort, 245, 6, 980}}},
      {"full, transfers are bounded",
       kFull,
       4096 * 4 + 7,
       {{kLong, 0, 2048, 0}, {kLong, 2048, 2048, 8192}, {kShort, 4096, 2, 16384}}},
      {"nothing to send", kFull, 0, {}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    EXPECT_EQ(row.runs, SplitIntoRuns(row.mode, row.size));
  }
}

}  // namespace
}  // namespace quillpg
