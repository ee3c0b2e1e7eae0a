#include "support/instrument_fixture.h"
#include "support/program_builder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <numeric>

namespace quillpg {
namespace {

using Words = std::vector<std::uint64_t>;

// Blocks, sequence lines, subsequences, events.
using COUNTS = std::array<int, 4>;

COUNTS CountsOf(CInstrumentFixture& engine) {
  return {Ask(engine.Blocks(), &CBlockManager::GetNoOfBlocks),
          Ask(engine.Sequence(), &CSequenceManager::GetNoOfSequenceLines),
          Ask(engine.SubSequences(), &CSubSequenceManager::GetNoOfSubSequences),
          Ask(engine.Events(), &CEventManager::GetNoOfEvents)};
}

// Compiles, downloads and plays; what `module` drove.
Words Play(CInstrumentFixture& engine, int module, std::int64_t limit, PlayEnd expected) {
  CMemorySink sink;
  engine.Play(sink, limit, expected);
  return sink.Levels(module);
}

// Equal neighbours as one.
Words Steps(Words words) {
  words.erase(std::unique(words.begin(), words.end()), words.end());
  return words;
}

Words Numbers(int count) {
  Words numbers(static_cast<std::size_t>(count));
  std::iota(numbers.begin(), numbers.end(), 0U);
  return numbers;
}

TEST(TestData, WalkingOnesReachEveryChannel) {
  struct ROW {
    int modules;
    ChannelMode mode;
    bool compiles;
  };
  // In HALF mode one and two modules have fewer channels than the smallest block has vectors.
  const ROW rows[] = {{1, ChannelMode::Full, true},
                      {5, ChannelMode::Full, true},
                      {1, ChannelMode::Half, false},
                      {2, ChannelMode::Half, false},
                      {3, ChannelMode::Half, true}};
  for (const ROW& row : rows) {
    SCOPED_TRACE(testing::Message() << row.modules << " modules");
    CInstrumentFixture engine(row.modules);
    (void)engine.Instrument().SetChannelMode(row.mode);
    engine.Handler().events.clear();
    if (row.compiles) engine.Handler().onAny = [&] { (void)engine.Server().Download(); };
    ASSERT_EQ(engine.Instrument().CreateTestData(TestDataType::WalkingOnes), S_OK);
    engine.Handler().onAny = nullptr;
    const int perModule = row.mode == ChannelMode::Full ? 64 : 32;
    const int channels = perModule * row.modules;
    EXPECT_EQ(engine.BlockAt(0).GetBlockSize(), channels);
    EXPECT_EQ(engine.Handler().Take(), std::vector<std::string>{"OnBlockResized(Block,0)"});
    EXPECT_EQ(engine.Host().cursorDepth, 0);
    if (!row.compiles) {
      EXPECT_EQ(engine.Server().Compile(), E_FAIL);
      continue;
    }
    const Words played = Play(engine, row.modules - 1, 2 * channels, PlayEnd::Limit);
    ASSERT_EQ(played.size(), static_cast<std::size_t>(2 * channels));
    for (int i = 0; i < 2 * channels; ++i) {
      const int walker = i % channels - perModule * (row.modules - 1);
      EXPECT_EQ(played[static_cast<std::size_t>(i)], walker < 0 ? 0 : std::uint64_t{1} << walker);
    }
  }
}

TEST(TestData, ProgramsCompileAndPlay) {
  struct ROW {
    TestDataType type;
    COUNTS counts;
    Words steps;
    std::size_t vectorsFull;  // played in FULL mode, twice as many in HALF mode
  };
  Words subSequences;
  for (int i = 0; i < 50; ++i) {
    const Words one = Numbers(80);
    subSequences.insert(subSequences.end(), one.begin(), one.end());
  }
  const ROW rows[] = {
      {TestDataType::MaxSubSequences, {80, 50, 50, 1}, subSequences, 50 * 80 * 40},
      {TestDataType::MaxEvents, {8, 8, 1, 8}, Numbers(8), 8 * 40},
      {TestDataType::MaxSequenceLines, {4000, 4000, 1, 1}, Numbers(4000), 4000 * 40},
  };
  for (const ROW& row : rows) {
    for (const ChannelMode mode : {ChannelMode::Full, ChannelMode::Half}) {
      SCOPED_TRACE(testing::Message() << GetDisplayText(row.type) << ", " << GetDisplayText(mode));
      CInstrumentFixture engine(2);
      (void)engine.Instrument().SetChannelMode(mode);
      CProgramBuilder(engine.Instrument())
          .Sub("Kept", {{"Block0", 1}})
          .Event("Kept", {"000000000"})
          .Line({.output = "Kept"});
      ASSERT_EQ(engine.Instrument().CreateTestData(row.type), S_OK);
      EXPECT_EQ(CountsOf(engine), row.counts);
      const Words played = Play(engine, 0, 1000000, PlayEnd::Idle);
      EXPECT_TRUE(Steps(played) == row.steps);
      EXPECT_EQ(played.size(), row.vectorsFull * (mode == ChannelMode::Half ? 2 : 1));
    }
  }
}

TEST(TestData, TheLargestBlockCountsItsVectors) {
  CInstrumentFixture engine(2);
  ASSERT_EQ(engine.Instrument().CreateTestData(TestDataType::MaxBlockSize), S_OK);
  const Words played = Play(engine, 0, 262150, PlayEnd::Limit);
  Words expected = Numbers(262140);
  for (std::uint64_t i = 0; i < 10; ++i) expected.push_back(i);
  EXPECT_TRUE(played == expected);
}

// Neither compiles: the sequence is the user's, or the blocks exceed the memory.
TEST(TestData, CellsAndTheMostBlocksHoldTheirNumbers) {
  const struct {
    TestDataType type;
    ChannelMode mode;
    COUNTS counts;
    int size, growth;  // of the first block, from block to block
  } rows[] = {{TestDataType::Cell, ChannelMode::Full, {4, 1, 0, 0}, 40, 1},
              {TestDataType::Cell, ChannelMode::Half, {8, 1, 0, 0}, 80, 1},
              {TestDataType::MaxBlocks, ChannelMode::Full, {4000, 4000, 0, 0}, 250, 0},
              {TestDataType::MaxBlocks, ChannelMode::Half, {4000, 4000, 0, 0}, 496, 0}};
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::Message() << GetDisplayText(row.type) << ", " << row.size);
    CInstrumentFixture engine;
    (void)engine.Instrument().SetChannelMode(row.mode);
    ASSERT_EQ(engine.Instrument().CreateTestData(row.type), S_OK);
    EXPECT_EQ(CountsOf(engine), row.counts);
    for (int b = 0; b < row.counts[0]; ++b) {
      BLOCK& block = engine.BlockAt(b);
      const std::string name = "Block" + std::to_string(b);
      ASSERT_EQ(block.GetBlockName(), name);
      ASSERT_EQ(block.GetBlockSize(), row.size + b * row.growth);
      for (int v = 0; v < block.GetBlockSize(); ++v) {
        std::uint64_t number = 0;
        std::memcpy(&number, block.Data() + static_cast<std::size_t>(v) * block.RowBytes(),
                    block.RowBytes());
        ASSERT_EQ(number, static_cast<std::uint64_t>(row.growth != 0 ? v : b));
      }
      if (row.growth != 0) continue;
      const SEQUENCE_LINE& line = *Find(engine.Sequence(), &CSequenceManager::GetSequenceLine, b);
      ASSERT_EQ(line.GetLabel() + line.GetOutput(), "Line" + std::to_string(b) + name);
      ASSERT_EQ(line.GetRepeatCount(), 1);
    }
    EXPECT_EQ(engine.Server().Compile(), E_FAIL);
  }
}

TEST(TestData, RefusesWithoutTouchingTheProgram) {
  CInstrumentFixture engine;
  for (const int type : {-1, 7, 8}) {
    EXPECT_EQ(engine.Instrument().CreateTestData(static_cast<TestDataType>(type)), S_OK);
  }
  EXPECT_EQ(CountsOf(engine), (COUNTS{1, 1, 0, 0}));
  EXPECT_EQ(engine.Host().cursorsShown, 0);
  (void)engine.Instrument().RemoveModuleAt(0);
  EXPECT_EQ(engine.Instrument().CreateTestData(TestDataType::MaxEvents), E_FAIL);
  EXPECT_EQ(engine.Instrument().CreateTestData(TestDataType::DownloadOptimization), S_OK);
  EXPECT_EQ(CountsOf(engine), (COUNTS{1, 1, 0, 0}));
}

}  // namespace
}  // namespace quillpg
