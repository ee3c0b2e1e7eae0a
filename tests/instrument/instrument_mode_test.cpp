#include "program/waveform_data.h"
#include "program/waveform_manager.h"
#include "support/instrument_fixture.h"

#include <gmock/gmock.h>

namespace quillpg {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// A level for every place that is the same function of module, pod, bit and vector in both modes.
bool Level(int module, int pod, int bit, int vector) {
  return (module * 7 + pod * 5 + bit * 3 + vector * 11 + vector / 13) % 4 == 0;
}

void Paint(CInstrumentFixture& fixture, int block, int podChannels) {
  const int channels = fixture.BlockAt(block).GetBlockWidth();
  for (int vector = 0; vector < fixture.BlockAt(block).GetBlockSize(); ++vector) {
    for (int c = 0; c < channels; ++c) {
      ASSERT_EQ(fixture.Instrument().SetChannelData(
                    c, block, vector,
                    Level(c / podChannels / 4, c / podChannels % 4, c % podChannels, vector)),
                S_OK);
    }
  }
}

// Bits 0 to 7 of every pod are as painted for vectors below `painted`, all else is `fill`.
void ExpectRelaid(CInstrumentFixture& fixture, int block, int podChannels, int painted, int fill) {
  const int channels = fixture.BlockAt(block).GetBlockWidth();
  for (int vector = 0; vector < fixture.BlockAt(block).GetBlockSize(); ++vector) {
    for (int c = 0; c < channels; ++c) {
      const int bit = c % podChannels;
      const int wanted = bit < 8 && vector < painted
                             ? Level(c / podChannels / 4, c / podChannels % 4, bit, vector)
                             : fill;
      ASSERT_EQ(Bit(fixture.Instrument(), c, block, vector), wanted)
          << "channel " << c << ", vector " << vector;
    }
  }
}

TEST(InstrumentMode, AChangeRelaysEveryBlock) {
  CInstrumentFixture fixture(2);
  CInstrument& instrument = fixture.Instrument();
  ASSERT_EQ(fixture.Server().SetDefaultChannelValue('\0'), S_OK);
  ASSERT_EQ(fixture.Blocks().AddBlock("Long", 100), S_OK);
  Paint(fixture, 0, 16);
  Paint(fixture, 1, 16);
  (void)fixture.BlockAt(1).SetChanged(0);
  (void)fixture.Blocks().SetModified(0);
  (void)fixture.Handler().Take();

  ASSERT_EQ(instrument.SetChannelMode(ChannelMode::Half), S_OK);
  EXPECT_EQ(fixture.BlockAt(0).GetBlockSize(), 80) << "grown to the smallest size";
  EXPECT_EQ(fixture.BlockAt(0).GetListingState().secondReference, 80);
  EXPECT_EQ(fixture.BlockAt(1).GetBlockSize(), 100);
  EXPECT_EQ(fixture.BlockAt(1).GetBlockWidth(), 64);
  EXPECT_TRUE(fixture.BlockAt(1).IsChanged());
  EXPECT_EQ(fixture.Blocks().IsModified(), 1);
  ExpectRelaid(fixture, 0, 8, 40, 0);
  ExpectRelaid(fixture, 1, 8, 100, 0);

  ASSERT_EQ(fixture.Server().SetDefaultChannelValue('1'), S_OK);
  ASSERT_EQ(instrument.SetChannelMode(ChannelMode::Full), S_OK);
  EXPECT_EQ(fixture.BlockAt(1).GetBlockWidth(), 128);
  ExpectRelaid(fixture, 1, 16, 100, 1);
  EXPECT_THAT(fixture.Handler().Take(), IsEmpty());
}

TEST(InstrumentMode, GroupsAndRowsFollowTheirChannels) {
  CInstrumentFixture fixture(2);
  CInstrument& instrument = fixture.Instrument();
  (void)fixture.Groups().DeleteAll();
  ASSERT_EQ(fixture.Groups().AddGroup("Bus"), S_OK);
  GROUP* group = Find(fixture.Groups(), &CGroupManager::GetGroup, 0);
  // Two that stay, one of bits 8 to 15, one beyond the instrument, a negative one.
  for (const int channel : {64 + 2 * 16 + 7, 18, 9, 128, -1}) (void)group->AddChannel(channel, -1);
  ASSERT_EQ(instrument.SetInhibitByPodD(1, 0, 1), S_OK);

  ASSERT_EQ(instrument.SetChannelMode(ChannelMode::Half), S_OK);
  EXPECT_THAT(group->Channels(), ElementsAre(32 + 2 * 8 + 7, 10));
  EXPECT_EQ(group->GetChannelNames(), "2C0(7),1B0(2)");
  CWaveformManager& rows = *fixture.BlockAt(0).GetWaveformManager();
  EXPECT_EQ(Ask(rows, &CWaveformManager::GetNoOfRows), 4)
      << "the group, its two channels, the inhibit control";
  const int channel = Ask(instrument, &CInstrument::GetInhibitControlAt, 0);
  EXPECT_EQ(channel, 32 + 3 * 8 + 4);
  EXPECT_EQ(rows.Row(3)->channel, channel);

  ASSERT_EQ(instrument.SetChannelMode(ChannelMode::Full), S_OK);
  EXPECT_THAT(group->Channels(), ElementsAre(64 + 2 * 16 + 7, 18));
}

TEST(InstrumentMode, TheStoredModeIsSentAndChangesNothing) {
  CInstrumentFixture fixture;
  CInstrument& instrument = fixture.Instrument();
  (void)fixture.Blocks().SetModified(0);
  const std::uint8_t* data = fixture.BlockAt(0).Data();
  fixture.Simulation().LogCalls(true);
  EXPECT_EQ(instrument.SetChannelMode(ChannelMode::Full), S_OK);
  EXPECT_THAT(fixture.Simulation().TakeCalls(), ElementsAre("0 SetChannelMode(1)"));
  fixture.Simulation().FailCall("SetChannelMode");
  EXPECT_EQ(instrument.SetChannelMode(ChannelMode::Half), E_FAIL);
  EXPECT_EQ(fixture.BlockAt(0).Data(), data);
  EXPECT_EQ(fixture.BlockAt(0).GetBlockWidth(), 64);
  EXPECT_EQ(fixture.Blocks().IsModified(), 0);
}

}  // namespace
}  // namespace quillpg
