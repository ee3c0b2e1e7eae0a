#include "hardware/simulation/memory_sink.h"
#include "instrument/instrument.h"
#include "program/block.h"
#include "program/block_manager.h"
#include "program/sequence_manager.h"
#include "quillpg/app_server.h"
#include "support/instrument_fixture.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace quillpg {
namespace {

// The bits of a row from channel `first` on, `channels` of them.
std::uint64_t RowWord(const BLOCK& block, int row, int first, int channels) {
  const std::uint8_t* bytes = block.Data() + static_cast<std::size_t>(row) * block.RowBytes();
  std::uint64_t word = 0;
  for (int bit = 0; bit < channels; ++bit) {
    const int channel = first + bit;
    word |= std::uint64_t{(bytes[channel / 8] >> channel % 8) & 1U} << bit;
  }
  return word;
}

TEST(EnginePlay, ThePinsCarryWhatTheBlocksHold) {
  struct ROW {
    int modules;
    ChannelMode mode;
    int size;
  };
  const ROW rows[] = {{1, ChannelMode::Full, 40},   {1, ChannelMode::Half, 85},
                      {1, ChannelMode::Full, 8201}, {2, ChannelMode::Half, 80},
                      {2, ChannelMode::Full, 1001}, {5, ChannelMode::Full, 43}};
  for (const ROW& row : rows) {
    SCOPED_TRACE(std::to_string(row.modules) + " modules, " + std::to_string(row.size));
    CInstrumentFixture fixture(row.modules);
    CMemorySink sink;
    fixture.Simulation().AddVectorSink(&sink);
    ASSERT_EQ(S_OK, fixture.Instrument().SetChannelMode(row.mode));
    (void)fixture.Blocks().SetBlockSize(0, row.size);  // refuses the size that it has
    BLOCK* block = nullptr;
    ASSERT_EQ(S_OK, fixture.Blocks().GetBlock(0, &block));
    ASSERT_EQ(row.size, block->GetBlockSize());
    std::mt19937 random(1);
    for (std::size_t i = 0; i < block->RowBytes() * static_cast<std::size_t>(row.size); ++i) {
      block->Data()[i] = static_cast<std::uint8_t>(random());
    }
    SEQUENCE_LINE* line = nullptr;
    ASSERT_EQ(S_OK, fixture.Sequence().GetSequenceLine(0, &line));
    line->SetRepeatCount(2);
    ASSERT_EQ(S_OK, fixture.Server().Compile());
    ASSERT_EQ(S_OK, fixture.Server().Download());
    ASSERT_EQ(S_OK, fixture.Server().Run());
    PlayEnd end = PlayEnd::Limit;
    ASSERT_EQ(S_OK, fixture.Simulation().PlayUntilIdle(1000000, end));
    EXPECT_EQ(PlayEnd::Idle, end);

    const int channels = row.mode == ChannelMode::Half ? 32 : 64;
    for (int m = 0; m < row.modules; ++m) {
      std::vector<std::uint64_t> expected;
      for (int i = 0; i < 2 * row.size; ++i) {
        expected.push_back(RowWord(*block, i % row.size, m * channels, channels));
      }
      EXPECT_EQ(expected, sink.Levels(m)) << "module " << m;
    }
    SystemState state = SystemState::Active;
    EXPECT_EQ(S_OK, fixture.Server().GetSystemState(state));
    EXPECT_EQ(SystemState::Idle, state);
    fixture.Simulation().RemoveVectorSink(&sink);
  }
}

}  // namespace
}  // namespace quillpg
