#include "instrument/instrument.h"

#include "hardware/module.h"
#include "program/block_manager.h"
#include "program/event_manager.h"
#include "program/group_manager.h"
#include "program/sequence_manager.h"
#include "program/subsequence_manager.h"
#include "program/waveform_manager.h"
#include "quillpg/app_server.h"
#include "support/ask.h"
#include "support/instrument_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

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

  CModule* module = nullptr;
  EXPECT_EQ(instrument.RemoveModuleAt(5), E_FAIL);
  EXPECT_EQ(instrument.RemoveModuleAt(-1), E_FAIL);
  EXPECT_EQ(instrument.RemoveModuleAt(1), S_OK);
  EXPECT_EQ(instrument.GetModuleAt(1, &module), S_OK);
  EXPECT_EQ(module, &fixture.Module(2));
  EXPECT_EQ(instrument.GetModuleAt(4, &module), E_FAIL);
  EXPECT_EQ(module, nullptr);
  double volts = 0;
  EXPECT_EQ(instrument.GetOutputLevel(4, 0, volts), E_FAIL);
}

TEST(Instrument, ModulesWithoutHardwareAnswerAsSuch) {
  CEngineFixture fixture(1);
  CModule offline;
  CInstrument instrument;
  (void)instrument.Initialize();
  EXPECT_EQ(Ask(instrument, &CInstrument::GetMemoryDepth), 262140) << "without modules";
  (void)instrument.AddModule(&offline);
  CSorrelModule* hardware = fixture.Simulation().HardwareModule(0);
  EXPECT_EQ(instrument.GetSorrelModuleAt(0, &hardware), S_OK);
  EXPECT_EQ(hardware, nullptr);
  EXPECT_EQ(instrument.GetSorrelModuleAt(1, &hardware), E_FAIL);
  std::string text;
  EXPECT_EQ(instrument.GetModuleProperties(0, text), E_FAIL);
  EXPECT_EQ(instrument.GetModuleProperties(1, text), PG_E_SLOT_EMPTY);
  int frame = 0;
  EXPECT_EQ(instrument.GetFrameNo(frame), E_FAIL);
  EXPECT_EQ(instrument.SetOutputLevel(0, 0, 3.0), E_FAIL);
}

TEST(Instrument, DefaultBringsEverythingButTheNameBack) {
  CInstrumentFixture fixture;
  CInstrument& instrument = fixture.Instrument();
  (void)instrument.SetComment("comment");
  (void)instrument.SetFileName("file");
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
  EXPECT_EQ(Ask(instrument, &CInstrument::GetComment), "");
  EXPECT_EQ(Ask(instrument, &CInstrument::GetFileName), "");
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

TEST(Instrument, ResetSendsTheStoredSettingsAndKeepsTheProgram) {
  CInstrumentFixture fixture;
  CInstrument& instrument = fixture.Instrument();
  (void)instrument.SetClockPeriod(0.5);
  (void)instrument.SetOutputLevel(0, 0, 3.0);
  (void)instrument.SetModified(0);
  (void)instrument.EnableInstrument(0);
  (void)fixture.Handler().Take();
  fixture.Simulation().LogCalls(true);
  EXPECT_EQ(instrument.ResetInstrument(), S_OK);
  EXPECT_THAT(fixture.Handler().Take(), ElementsAre("OnInstrumentReset()"));
  const auto calls = fixture.Simulation().TakeCalls();
  EXPECT_THAT(calls, testing::Contains("0 SetClockPeriod(0.5)"));
  EXPECT_THAT(calls, testing::Contains("0 SetOutputLevel(A,3)"));
  EXPECT_THAT(calls, testing::Not(testing::Contains("0 ResetModule()")));
  EXPECT_EQ(Ask(instrument, &CInstrument::IsModified), 0);
  EXPECT_EQ(Ask(instrument, &CInstrument::IsInstrumentEnabled), 0);
  EXPECT_EQ(Ask(fixture.Groups(), &CGroupManager::GetNoOfGroups), 4);
}

TEST(Instrument, RenamingMindsTheCase) {
  CInstrumentFixture fixture;
  EXPECT_EQ(fixture.Instrument().SetInstrumentName("PG 1"), S_OK);
  EXPECT_THAT(fixture.Handler().Take(), IsEmpty());
  EXPECT_EQ(fixture.Instrument().SetInstrumentName("pg 1"), S_OK);
  EXPECT_THAT(fixture.Handler().Take(), ElementsAre("OnInstrumentRenamed()"));
}

TEST(Instrument, ListingStatesFollowTheGroupsInTheirOwnOrder) {
  CInstrumentFixture fixture;
  CInstrument& instrument = fixture.Instrument();
  BLOCK& block = fixture.BlockAt(0);
  (void)fixture.Groups().DeleteAll();  // silent: the states stay
  ASSERT_EQ(fixture.Server().SetDefaultRadix(Radix::Octal), S_OK);
  for (const char* name : {"New", "usergrp3", "UserGrp1"}) {
    ASSERT_EQ(fixture.Groups().AddGroup(name), S_OK);
  }
  ASSERT_EQ(fixture.Groups().InsertGroup(0, ""), S_OK);
  ASSERT_EQ(fixture.Groups().InsertGroup(9, "Late"), S_OK);  // beyond empty slots
  EXPECT_THAT(StateNames(block), ElementsAre("New", "usergrp3", "UserGrp1", "", "Late"));
  GROUP_STATE* state = nullptr;
  ASSERT_TRUE(block.GetGroupState(0, &state));
  EXPECT_EQ(state->GetRadix(), Radix::Octal);

  // A block that missed it all: kept states keep their place and their settings.
  (void)block.GetListingState().DeleteAll();
  for (const char* name : {"Gone", "Late", "NEW"}) {
    auto kept = std::make_unique<GROUP_STATE>();
    (void)kept->Initialize(Radix::Binary, 7, name);
    (void)kept->SetDisplayValue2(0);
    ASSERT_EQ(block.AddGroupState(std::move(kept)), S_OK);
  }
  EXPECT_EQ(instrument.UpdateListingState(), S_OK);
  EXPECT_THAT(StateNames(block), ElementsAre("Late", "NEW", "", "usergrp3", "UserGrp1"));
  ASSERT_TRUE(block.GetGroupState(1, &state));
  EXPECT_EQ(state->GetRadix(), Radix::Binary);
  EXPECT_EQ(state->GetDisplayValue2(), 0);
  EXPECT_EQ(instrument.MakeAllGroupsVisible(), S_OK);
  EXPECT_EQ(state->GetDisplayValue2(), 1);
}

TEST(Instrument, InhibitControlsFollowModulesAndPods) {
  struct Row {
    int modules;
    ChannelMode mode;
    std::vector<std::string> names;
    std::vector<int> channels;
  };
  // Pod B has no probe; pods A and C of the last module are inhibited by pod D.
  const Row rows[] = {
      {1, ChannelMode::Full, {"INHBA", "INHBC"}, {52, 54}},
      {1, ChannelMode::Half, {"INHBA", "INHBC"}, {28, 30}},
      {3, ChannelMode::Full, {"3INHBA", "3INHBC"}, {180, 182}},
      {3, ChannelMode::Half, {"3INHBA", "3INHBC"}, {92, 94}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.names[0] + " " + std::to_string(row.channels[0]));
    CInstrumentFixture fixture(row.modules);
    CInstrument& instrument = fixture.Instrument();
    ASSERT_EQ(instrument.SetChannelMode(row.mode), S_OK);
    for (const int pod : {2, 1, 0}) {
      EXPECT_EQ(instrument.SetInhibitByPodD(row.modules - 1, pod, 1), pod == 1 ? E_FAIL : S_OK);
    }
    std::vector<std::string> names;
    std::vector<int> channels;
    std::string name;
    int channel = -1;
    for (int i = 0; instrument.GetInhibitControlAt(i, channel) == S_OK; ++i) {
      channels.push_back(channel);
      names.push_back(Ask(instrument, &CInstrument::GetInhibitControlName, i));
    }
    EXPECT_EQ(names, row.names);
    EXPECT_EQ(channels, row.channels);
    EXPECT_EQ(channel, -1) << "past the last one";
    EXPECT_EQ(instrument.GetInhibitControlName(-1, name), E_FAIL);
    EXPECT_EQ(name, "");
    ASSERT_EQ(instrument.RemoveModuleAt(row.modules - 1), S_OK);
    EXPECT_EQ(Ask(instrument, &CInstrument::GetNoOfInhibitControls), 0);
  }
}

TEST(Instrument, UniqueNamesTakeTheSmallestFreeNumber) {
  struct Row {
    ContentType type;
    Status status;
    const char* name;
  };
  const Row rows[] = {
      {ContentType::Group, S_OK, "UserGrp5"},
      {ContentType::Block, S_OK, "Block4"},
      {ContentType::Event, S_OK, "Event1"},
      {ContentType::SequenceLine, S_OK, "Line2"},
      {ContentType::SubSequence, S_OK, "SubSeq2"},
      {ContentType::Instrument, E_FAIL, "untouched"},
      {static_cast<ContentType>(-7), E_FAIL, "untouched"},
  };
  CInstrumentFixture fixture;
  (void)fixture.Blocks().AddBlock("BLOCK1", 100);
  (void)fixture.SubSequences().AddSubSequence("block2");
  (void)fixture.Blocks().AddBlock("Block3", 100);
  (void)fixture.Blocks().AddBlock("SubSeq1", 100);  // blocks and subsequences share their names
  (void)fixture.Sequence().AddSequenceLine("line1");
  (void)fixture.Events().AddEvent("Event2");
  for (const Row& row : rows) {
    SCOPED_TRACE(static_cast<int>(row.type));
    std::string name = "untouched";
    EXPECT_EQ(fixture.Instrument().GetUniqueName(row.type, name), row.status);
    EXPECT_EQ(name, row.name);
  }
}

TEST(Instrument, SizeCountsTheProgramWhenAsked) {
  CInstrumentFixture fixture(2);
  unsigned long settings = 0;
  unsigned long whole = 0;
  EXPECT_EQ(fixture.Instrument().GetSize(settings, 0), S_OK);
  EXPECT_EQ(fixture.Instrument().GetSize(whole, 1), S_OK);
  // "PG 1"; a module is 4 + 4 x 112, with 144 more for its variable probe; 4 groups of 16 channels,
  // "UserGrpn" and "1A1(7-0),1A0(7-0)".
  EXPECT_EQ(settings, 69u + 4 + 2 * (4 + 4 * 112 + 144) + 4 + 4 * (8 + 17 + 4 * 16 + 14));
  EXPECT_GT(whole, settings + 40 * 16);
}

}  // namespace
}  // namespace quillpg
