#include "support/instrument_fixture.h"

#include <gmock/gmock.h>

namespace quillpg {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

ModuleState StateOf(const CInstrument& instrument) {
  return Ask(instrument, &CInstrument::GetInstrumentState);
}

TEST(InstrumentRun, SlavesFollowBeforeTheMasterStarts) {
  CInstrumentFixture fixture(3);
  fixture.Simulation().LogCalls(true);
  EXPECT_EQ(fixture.Instrument().Run(), S_OK);
  EXPECT_THAT(
      fixture.Simulation().TakeCalls(),
      ElementsAre("0 SetWeldMode(0)", "0 EnableOutput(1)", "0 Initiate()", "1 SetWeldMode(0)",
                  "1 EnableOutput(1)", "1 Initiate()", "2 SetWeldMode(0)", "2 EnableOutput(1)",
                  "2 Initiate()", "1 SetWeldMode(1)", "2 SetWeldMode(2)", "0 Start()"));
  EXPECT_EQ(StateOf(fixture.Instrument()), ModuleState::Running);
  // Idle was announced before the start; the start itself is not.
  EXPECT_THAT(fixture.Handler().Take(), ElementsAre("OnInstrumentIdle(1)"));
}

TEST(InstrumentRun, IsRefusedQuietlyWhileDisabledOrBusy) {
  CInstrumentFixture fixture;
  CInstrument& instrument = fixture.Instrument();
  fixture.Simulation().LogCalls(true);
  (void)instrument.EnableInstrument(0);
  EXPECT_EQ(instrument.Run(), S_OK);
  EXPECT_THAT(fixture.Handler().Take(), IsEmpty());
  EXPECT_THAT(fixture.Simulation().TakeCalls(), IsEmpty());

  (void)instrument.EnableInstrument(1);
  fixture.Simulation().SetSequencerText(0, "WAIT");
  EXPECT_EQ(instrument.Run(), S_OK);
  (void)fixture.Simulation().TakeCalls();
  EXPECT_EQ(instrument.Run(), S_OK);
  EXPECT_EQ(StateOf(instrument), ModuleState::Waiting);
  EXPECT_THAT(fixture.Simulation().TakeCalls(), IsEmpty());
}

TEST(InstrumentRun, StateFollowsTheSequencer) {
  struct Row {
    const char* text;
    ModuleState state;
    const char* notified;
    std::vector<std::string> calls;
  };
  const std::vector<std::string> ended = {"0 SetWeldMode(0)",  "0 Abort()",
                                          "1 SetWeldMode(0)",  "1 Abort()",
                                          "0 EnableOutput(0)", "1 EnableOutput(0)"};
  const Row rows[] = {
      {"INIT", ModuleState::Initialising, "OnInstrumentIdle(0)", {}},
      {"Runn", ModuleState::Running, "OnInstrumentIdle(0)", {}},
      {"IDL", ModuleState::Idle, "OnInstrumentIdle(1)", ended},
      {"IDLE", ModuleState::Idle, "OnInstrumentIdle(1)", ended},  // unknown counts as idle
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    CInstrumentFixture fixture(2);
    ASSERT_EQ(fixture.Instrument().Run(), S_OK);
    fixture.Simulation().SetSequencerText(0, row.text);
    (void)fixture.Handler().Take();
    fixture.Simulation().LogCalls(true);
    fixture.Handler().onAny = [&] {  // told first, with everything as it was
      EXPECT_EQ(StateOf(fixture.Instrument()), ModuleState::Running);
      EXPECT_THAT(fixture.Simulation().TakeCalls(), IsEmpty());
    };
    EXPECT_EQ(fixture.Instrument().UpdateInstrumentState(), S_OK);
    EXPECT_EQ(StateOf(fixture.Instrument()), row.state);
    EXPECT_THAT(fixture.Handler().Take(), ElementsAre(row.notified));
    EXPECT_EQ(fixture.Simulation().TakeCalls(), row.calls);
  }
}

TEST(InstrumentRun, WhatTheHandlerDoesWhenToldOfTheEndStands) {
  const struct {
    const char* story;
    std::function<Status(CInstrument&)> act;
    ModuleState state;
    const char* lastCall;
  } rows[] = {
      {"polls again", &CInstrument::UpdateInstrumentState, ModuleState::Idle, "0 EnableOutput(0)"},
      {"stops", &CInstrument::Stop, ModuleState::Idle, "0 EnableOutput(0)"},
      {"runs again", &CInstrument::Run, ModuleState::Running, "0 Start()"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.story);
    CInstrumentFixture fixture;
    ASSERT_EQ(fixture.Instrument().Run(), S_OK);
    fixture.Simulation().SetSequencerText(0, "IDL");
    fixture.Simulation().LogCalls(true);
    bool told = false;
    fixture.Handler().onAny = [&] {
      if (std::exchange(told, true)) return;
      EXPECT_EQ(row.act(fixture.Instrument()), S_OK);
    };
    EXPECT_EQ(fixture.Instrument().UpdateInstrumentState(), S_OK);
    EXPECT_EQ(StateOf(fixture.Instrument()), row.state);
    EXPECT_EQ(fixture.Simulation().TakeCalls().back(), row.lastCall);
  }
}

TEST(InstrumentRun, TheHandlerMayDestroyTheInstrument) {
  using F = CInstrumentFixture;
  const struct {
    const char* story;
    std::function<Status(F&)> act;
    Status status;
  } rows[] = {
      {"run", [](F& f) { return f.Instrument().Run(); }, S_OK},
      {"default", [](F& f) { return f.Instrument().Default(); }, E_FAIL},
      {"default module", [](F& f) { return f.Server().DefaultModule(); }, E_FAIL},
      {"reset", [](F& f) { return f.Instrument().ResetInstrument(); }, E_FAIL},
      {"rename", [](F& f) { return f.Instrument().SetInstrumentName("x"); }, E_FAIL},
      {"rename group", [](F& f) { return f.Groups().SetGroupName(0, "x"); }, E_FAIL},
      {"delete groups", [](F& f) { return f.Groups().DeleteAllGroups(); }, E_FAIL},
      {"import groups", [](F& f) { return f.Groups().CreateGroups({"x"}, {"3"}); }, E_FAIL},
      {"delete block", [](F& f) { return f.Blocks().DeleteBlock(0, 1); }, E_FAIL},
      {"block info", [](F& f) { return f.Blocks().SetBlockInfo(0, "x", 50); }, S_OK},
      {"delete event", [](F& f) { return f.Events().DeleteEvent(0, 1); }, E_FAIL},
      {"walk", [](F& f) { return f.Instrument().CreateTestData(TestDataType::WalkingOnes); },
       E_FAIL},
      {"fill", [](F& f) { return f.Instrument().CreateTestData(TestDataType::MaxEvents); }, E_FAIL},
      {"reset all",
       [](F& f) {
         auto next = std::make_unique<CInstrument>();
         CRecordingEventHandler told;
         (void)next->SetEventHandler(&told);
         (void)f.Instruments().AddInstrument(next.release());
         const Status status = f.Instruments().ReInitialize();
         EXPECT_THAT(told.events, ElementsAre("OnInstrumentReset()"));
         return status;
       },
       S_OK},
  };
  for (const auto& row : rows) {
    for (const bool running : {false, true}) {
      SCOPED_TRACE(row.story);
      F fixture;
      (void)fixture.Events().AddEvent("a");
      if (running) (void)fixture.Instrument().Run();
      (void)fixture.Instruments().SetCurrentInst(0);
      fixture.Simulation().SetSequencerText(0, "IDL");
      fixture.Simulation().LogCalls(true);
      fixture.Handler().onAny = [&] { (void)fixture.Instruments().DeleteInstrumentAt(0); };
      if (running) fixture.Host().onBox = fixture.Handler().onAny;
      EXPECT_EQ(row.act(fixture), row.status);
      EXPECT_THAT(fixture.Simulation().TakeCalls(), IsEmpty());
    }
  }
}

TEST(InstrumentRun, HighImpedanceOnStopDecidesTheOutputs) {
  CInstrumentFixture fixture;
  CInstrument& instrument = fixture.Instrument();
  fixture.Simulation().LogCalls(true);
  EXPECT_EQ(instrument.Stop(), S_OK);  // also when nothing runs, and without a word
  EXPECT_THAT(fixture.Simulation().TakeCalls(), ElementsAre("0 Abort()", "0 EnableOutput(0)"));
  EXPECT_EQ(instrument.SetHiZOnStop(0), S_OK);
  EXPECT_THAT(fixture.Simulation().TakeCalls(), ElementsAre("0 EnableOutput(1)"));
  EXPECT_EQ(instrument.Stop(), S_OK);
  EXPECT_THAT(fixture.Simulation().TakeCalls(), ElementsAre("0 Abort()"));
  EXPECT_THAT(fixture.Handler().Take(), IsEmpty());

  ASSERT_EQ(instrument.Run(), S_OK);
  (void)fixture.Simulation().TakeCalls();
  EXPECT_EQ(instrument.SetHiZOnStop(1), S_OK);  // only stored while running
  EXPECT_THAT(fixture.Simulation().TakeCalls(), IsEmpty());
}

}  // namespace
}  // namespace quillpg
