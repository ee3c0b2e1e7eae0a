#include "hardware/shift_register_generator.h"
#include "support/instrument_fixture.h"

#include <gtest/gtest.h>

#include <cstring>
#include <numeric>

namespace quillpg {
namespace {

std::vector<int> Channels(int first, int count) {
  std::vector<int> channels(static_cast<std::size_t>(count));
  std::iota(channels.begin(), channels.end(), first);
  return channels;
}

std::vector<std::uint8_t> DataOf(CInstrumentFixture& engine) {
  const BLOCK& block = engine.BlockAt(0);
  const std::size_t bytes = block.RowBytes() * static_cast<std::size_t>(block.GetBlockSize());
  return {block.Data(), block.Data() + bytes};
}

TEST(FillChannelData, IsOneStepAVectorChannelAfterChannel) {
  const struct {
    const char* what;
    int modules;
    ChannelMode mode;
    std::vector<int> channels;
    int first, last;
  } rows[] = {
      {"one channel", 1, ChannelMode::Full, {17}, 0, 299},
      {"one module", 1, ChannelMode::Full, Channels(0, 64), 0, 299},
      {"whole squares", 1, ChannelMode::Full, Channels(0, 64), 0, 255},
      {"rows of four bytes", 1, ChannelMode::Half, Channels(0, 32), 3, 130},
      {"a last column of four bytes", 3, ChannelMode::Half, Channels(60, 36), 1, 298},
      {"all of five modules", 5, ChannelMode::Full, Channels(0, 320), 64, 127},
      {"backwards, over two columns", 2, ChannelMode::Full, {127, 64, 63, 0}, 5, 5},
      {"a channel again, also in a later batch", 2, ChannelMode::Full, {}, 7, 200},
      {"cut at both ends", 1, ChannelMode::Full, {1, 2, 1}, -5, 1000000},
      {"behind the block", 1, ChannelMode::Full, {1}, 300, 400},
      {"nothing", 1, ChannelMode::Full, {1}, 9, 8},
  };
  for (auto row : rows) {
    SCOPED_TRACE(row.what);
    if (row.channels.empty()) {
      row.channels = Channels(0, 90);
      row.channels[80] = 3;
      row.channels[10] = 3;
    }
    CInstrumentFixture engine(row.modules);
    (void)engine.Instrument().SetChannelMode(row.mode);
    ASSERT_EQ(engine.Blocks().SetBlockSize(0, 300), S_OK);
    CShiftRegisterGenerator fast;
    fast.setInitialValue(0x155);
    CShiftRegisterGenerator plain = fast;
    ASSERT_EQ(engine.Instrument().FillChannelData(row.channels, 0, row.first, row.last, fast),
              S_OK);
    const std::vector<std::uint8_t> filled = DataOf(engine);

    std::memset(engine.BlockAt(0).Data(), 0xFF, filled.size());  // as a new block
    for (const int channel : row.channels) {
      for (int i = std::max(row.first, 0); i <= std::min(row.last, 299); ++i) {
        (void)engine.Instrument().SetChannelData(channel, 0, i, plain.getNextData());
      }
    }
    EXPECT_TRUE(filled == DataOf(engine));
    for (int stage = 0; stage < 9; ++stage) EXPECT_EQ(fast.getValue(stage), plain.getValue(stage));
  }
}

TEST(FillChannelData, RefusesMissingBlocksAndChannelsAsAWhole) {
  const std::pair<std::vector<int>, int> rows[] = {
      {{0, 64}, 0}, {{-1}, 0}, {{2147483647}, 0}, {{0}, 1}, {{}, -1}};
  CInstrumentFixture engine;
  const std::vector<std::uint8_t> before = DataOf(engine);
  (void)engine.Blocks().SetModified(0);
  CShiftRegisterGenerator generator;
  for (const auto& [channels, block] : rows) {
    EXPECT_EQ(engine.Instrument().FillChannelData(channels, block, 0, 9, generator), E_FAIL);
  }
  EXPECT_EQ(engine.Instrument().FillChannelData(64, 0, 0, 9, generator), E_FAIL);
  EXPECT_TRUE(DataOf(engine) == before);
  EXPECT_EQ(engine.Blocks().IsModified(), 0);
  CShiftRegisterGenerator fresh;
  for (int i = 0; i < 64; ++i) EXPECT_EQ(generator.getNextData(), fresh.getNextData());
}

}  // namespace
}  // namespace quillpg
