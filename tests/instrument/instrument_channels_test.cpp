#include "support/instrument_fixture.h"

#include <gmock/gmock.h>

namespace quillpg {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(InstrumentChannels, DefaultNamesTellModulePodSectionAndBit) {
  const struct {
    int modules;
    ChannelMode mode;
    int channel;
    const char* name;  // null for none
  } rows[] = {
      {1, ChannelMode::Full, 0, "A0(0)"},   {1, ChannelMode::Full, 9, "A1(1)"},
      {1, ChannelMode::Full, 63, "D1(7)"},  {1, ChannelMode::Full, 64, nullptr},
      {1, ChannelMode::Full, -1, nullptr},  {1, ChannelMode::Half, 9, "B0(1)"},
      {1, ChannelMode::Half, 31, "D0(7)"},  {1, ChannelMode::Half, 32, nullptr},
      {2, ChannelMode::Full, 9, "1A1(1)"},  {2, ChannelMode::Full, 73, "2A1(1)"},
      {2, ChannelMode::Half, 41, "2B0(1)"}, {0, ChannelMode::Full, 0, nullptr},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(std::to_string(row.modules) + " modules, channel " + std::to_string(row.channel));
    CInstrumentFixture fixture(row.modules);
    CInstrument& instrument = fixture.Instrument();
    ASSERT_EQ(instrument.SetChannelMode(row.mode), S_OK);
    std::string name = "untouched";
    EXPECT_EQ(instrument.GetChannelDefaultName(row.channel, name), row.name ? S_OK : E_FAIL);
    EXPECT_EQ(name, row.name ? row.name : "untouched");
    EXPECT_EQ(instrument.GetChannelName(row.channel, name), row.name ? S_OK : E_FAIL);
    if (!row.name) continue;
    EXPECT_EQ(name, "") << "an unnamed channel";
    EXPECT_EQ(Ask(instrument, &CInstrument::GetChannelId, row.name), row.channel);
  }
}

TEST(InstrumentChannels, NamesAreUniqueAmongUserAndDefaultNames) {
  const struct {
    const char* story;
    int channel;
    const char* name;
    Status status;
    const char* notified;  // null for nothing
  } rows[] = {
      {"new", 9, "Clock", S_OK, "OnChannelRenamed(Clock,9)"},
      {"its own in another case", 9, "CLOCK", S_OK, nullptr},
      {"its own default name", 9, "a1(1)", S_OK, nullptr},
      {"another's name", 10, "clock", E_FAIL, nullptr},
      {"another's default name", 10, "A0(0)", E_FAIL, nullptr},
      {"a used name goes before a bad channel", 64, "clock", E_FAIL, nullptr},
      {"a bad channel", 64, "Free", E_FAIL, nullptr},
      {"none clears", 9, "", S_OK, "OnChannelRenamed(,9)"},
      {"free again", 10, "clock", S_OK, "OnChannelRenamed(clock,10)"},
  };
  CInstrumentFixture fixture;
  for (const auto& row : rows) {
    SCOPED_TRACE(row.story);
    EXPECT_EQ(fixture.Instrument().SetChannelName(row.channel, row.name), row.status);
    if (row.notified) {
      EXPECT_THAT(fixture.Handler().Take(), ElementsAre(row.notified));
    } else {
      EXPECT_THAT(fixture.Handler().Take(), IsEmpty());
    }
  }
  int channel = 0;
  EXPECT_EQ(fixture.Instrument().GetChannelId("", channel), E_FAIL);
  EXPECT_EQ(channel, -1);
}

TEST(InstrumentChannels, SectionsMoveEightChannelsAtATime) {
  CInstrumentFixture fixture;
  CInstrument& instrument = fixture.Instrument();
  ASSERT_EQ(fixture.Groups().AddGroup("Bus"), S_OK);
  GROUP* bus = Find(fixture.Groups(), &CGroupManager::GetGroup, "Bus");
  ASSERT_EQ(instrument.SetChannelName(12, "Mid"), S_OK);
  ASSERT_EQ(instrument.AddChannelToGroup("Bus", 40, 99), S_OK);  // no filling up to the position
  EXPECT_EQ(instrument.AddChannelToGroup("Bus", 40, -1), E_FAIL);
  ASSERT_EQ(instrument.AddChannelToGroup("Bus", 12, -1), S_OK);
  EXPECT_EQ(instrument.AddSectionToGroup("Bus", 1, 1), S_OK);  // but for 12, already there
  EXPECT_THAT(bus->Channels(), ElementsAre(40, 15, 14, 13, 11, 10, 9, 8, 12));
  EXPECT_EQ(bus->GetChannelNames(), "C1(0),A1(7),A1(6),A1(5),A1(3),A1(2),A1(1),A1(0),Mid");
  EXPECT_EQ(instrument.AddSectionToGroup("Bus", 8, -1), E_FAIL);
  EXPECT_EQ(instrument.AddSectionToGroup("Bus", -1, -1), E_FAIL);
  EXPECT_EQ(instrument.DeleteSectionFromGroup("Bus", 1), S_OK);
  EXPECT_THAT(bus->Channels(), ElementsAre(40));
  EXPECT_EQ(instrument.DeleteSectionFromGroup("Bus", 1), E_FAIL);
  EXPECT_EQ(instrument.DeleteSectionFromGroup("Bus", 2147483647), E_FAIL);
}

}  // namespace
}  // namespace quillpg
