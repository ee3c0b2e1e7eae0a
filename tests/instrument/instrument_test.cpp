#include "instrument/instrument.h"

#include "support/instrument_fixture.h"
#include "support/program_builder.h"

#include <gmock/gmock.h>

namespace quillpg {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> StateNames(const BLOCK& block) {
  std::vector<std::string> names;
  block.GetListingState().groupStates.ForEach(
      [&](const GROUP_STATE& state) { names.push_back(state.GetGroupName()); });
  return names;
}

TEST(Instrument, HoldsFiveModules) {
  CEngineFixture fixture(5);
  CInstrument instrument;
  ASSERT_EQ(instrument.Initialize(), S_OK);
  EXPECT_EQ(instrument.AddModule(nullptr), E_FAIL);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(instrument.AddModule(&fixture.Module(i)), S_OK);
  EXPECT_THAT(fixture.Host().BoxTexts(), IsEmpty());
  EXPECT_EQ(instrument.AddModule(&fixture.Module(0)), E_FAIL);
  EXPECT_EQ(fixture.Host().boxes.size(), 1u);
}

TEST(Instrument, GivesFreeNames) {
  CInstrumentFixture fixture;
  CProgramBuilder(fixture.Instrument())
      .Block("block1")
      .Block("SubSeq1")
      .Sub("Block2", {})
      .Sub("SUBSEQ2", {})
      .Event("EVENT1", {})
      .Event("Event3", {})
      .Line({.output = "", .label = "Line1"})
      .Line({.output = "", .label = "line 2"});
  (void)fixture.Groups().DeleteGroup(1);
  const std::pair<ContentType, const char*> rows[] = {
      {ContentType::Group, "UserGrp2"},      {ContentType::Block, "Block3"},
      {ContentType::Event, "Event2"},        {ContentType::SequenceLine, "Line2"},
      {ContentType::SubSequence, "SubSeq3"}, {ContentType::EventDef, nullptr},
      {ContentType::None, nullptr}};
  for (const auto& [type, expected] : rows) {
    std::string name = "kept";
    EXPECT_EQ(fixture.Instrument().GetUniqueName(type, name), expected ? S_OK : E_FAIL);
    EXPECT_EQ(name, expected ? expected : "kept");
  }
}

TEST(Instrument, DefaultBringsEverythingButTheNameBack) {
  CInstrumentFixture fixture;
  CInstrument& instrument = fixture.Instrument();
  (void)instrument.EnableInstrument(0);
  (void)instrument.SetModified(0);
  (void)instrument.SetChannelMode(ChannelMode::Half);
  (void)instrument.SetClockPeriod(0.5);
  (void)instrument.SetRunMode(RunMode::Step);
  (void)instrument.SetInhibitByPodD(0, 0, 1);
  (void)fixture.Blocks().AddBlock("Data", 200);
  (void)fixture.SubSequences().AddSubSequence("Sub");
  (void)fixture.Events().AddEvent("Go");
  (void)fixture.Handler().Take();
  fixture.Simulation().LogCalls(true);

  EXPECT_EQ(instrument.Default(), S_OK);
  EXPECT_THAT(fixture.Handler().Take(), ElementsAre("OnInstrumentReset()"));
  const auto calls = fixture.Simulation().TakeCalls();
  EXPECT_THAT(std::vector<std::string>(calls.end() - 16, calls.end()),
              ElementsAre("0 SetClockDeskew(0)", "0 SetChannelMode(1)", "0 EnableOutput(0)",
                          "0 SetClockSource(0)", "0 SetClockState(0)", "0 SetClockPeriod(1e-08)",
                          "0 SetClockState(1)", "0 SetClockInputThreshold(0)",
                          "0 SetClockPolarity(0)", "0 SetEventFilter(0)", "0 SetEventForInhibit(0)",
                          "0 SetEventModeForJump(1)", "0 SetEventModeForAdvance(1)",
                          "0 SetRunMode(0)", "0 SetSignalInputSource(0)", "0 SetSignalOutDest(0)"));
  EXPECT_EQ(Ask(instrument, &CInstrument::GetInstrumentName), "PG 1");
  EXPECT_EQ(Ask(instrument, &CInstrument::IsInstrumentEnabled), 1);
  EXPECT_EQ(Ask(instrument, &CInstrument::IsModified), 1);
  EXPECT_EQ(Ask(instrument, &CInstrument::GetNoOfInhibitControls), 0);
  EXPECT_EQ(Ask(fixture.Blocks(), &CBlockManager::GetNoOfBlocks), 1);
  EXPECT_EQ(Ask(fixture.SubSequences(), &CSubSequenceManager::GetNoOfSubSequences), 0);
  EXPECT_EQ(Ask(fixture.Events(), &CEventManager::GetNoOfEvents), 0);
  const BLOCK& block = fixture.BlockAt(0);
  EXPECT_EQ(block.GetBlockWidth(), 64);
  EXPECT_THAT(StateNames(block), ElementsAre("UserGrp1", "UserGrp2", "UserGrp3", "UserGrp4"));
}

}  // namespace
}  // namespace quillpg
