#include "quillpg/app_server.h"

#include "hardware/hardware_library.h"
#include "support/instrument_fixture.h"

#include <gtest/gtest.h>

namespace quillpg {
namespace {

class AppServer : public testing::Test {
 protected:
  AppServer() : m_engine(2) { (void)Server().DefaultSystem(); }

  CAppServer& Server() { return m_engine.Server(); }
  CInstrument& Instrument(int position) { return *m_engine.Instrument(position); }

  CRecordingEventHandler handlers[2];
  CEngineFixture m_engine;
};

TEST(AppServerStart, IsMadeOnceAndFindsModulesButNoInstruments) {
  CEngineFixture engine(2);
  (void)engine.Simulation().SetModules(3);
  CAppServer* again = nullptr;
  EXPECT_EQ(CAppServer::GetServer(&again), S_OK);
  EXPECT_EQ(again, &engine.Server());
  EXPECT_EQ(CAppServer::GetServer(nullptr), E_FAIL);
  EXPECT_EQ(Ask(engine.Modules(), &CModuleManager::GetNoOfModules), 2);
  EXPECT_EQ(Ask(engine.Instruments(), &CInstrumentManager::GetNoOfInstruments), 0);
  EXPECT_EQ(engine.Server().DefaultSystem(), S_OK);
  EXPECT_EQ(Ask(engine.Instruments(), &CInstrumentManager::GetInstrumentNames),
            (std::vector<std::string>{"PG 1", "PG 2"}));
}

TEST_F(AppServer, RunControlReachesWhomItNamesAndIsAlwaysAccepted) {
  using S = CAppServer;
  struct Row {
    std::function<Status(S&)> command;
    std::vector<std::string> calls;
    int cursors = 0;
  };
  void* hardware = m_engine.Simulation().HardwareModule(1);
  const Row rows[] = {
      {[](S& s) { return s.Advance(1); }, {"1 Advance()"}},
      {[](S& s) { return s.Jump(0); }, {"0 Jump()"}},
      {[](S& s) { return s.Step(1, 7); }, {"1 Step(7)"}},
      {[](S& s) { return s.Advance(2) | s.Jump(-1) | s.Step(9, 1); }, {}},
      {[hardware](S& s) { return s.WaitForEventTimeOut(hardware); }, {"1 WaitForEventTimeOut()"}},
      {[](S& s) { return s.WaitForEventTimeOut(nullptr); }, {}},
      {&S::Stop, {"0 Abort()", "0 EnableOutput(0)", "1 Abort()", "1 EnableOutput(0)"}, 1},
      {[this](S& s) {  // what became of the first does not keep the second from running
         m_engine.Simulation().FailCall("Start");
         return s.Run();
       },
       {"0 SetWeldMode(0)", "0 EnableOutput(1)", "0 Initiate()", "0 Start()", "1 SetWeldMode(0)",
        "1 EnableOutput(1)", "1 Initiate()", "1 Start()"},
       1}};
  m_engine.Simulation().LogCalls(true);
  for (const Row& row : rows) {
    SCOPED_TRACE(&row - rows);
    const int cursors = m_engine.Host().cursorsShown;
    EXPECT_EQ(row.command(Server()), S_OK);
    EXPECT_EQ(m_engine.Simulation().TakeCalls(), row.calls);
    EXPECT_EQ(m_engine.Host().cursorsShown - cursors, row.cursors);
    EXPECT_EQ(m_engine.Host().cursorDepth, 0);
  }
}

TEST_F(AppServer, DefaultsTheCurrentInstrumentOrTheNamedOne) {
  const auto show = [this](int position) {
    return Ask(Instrument(position), &CInstrument::GetFileName) +
           (Ask(Instrument(position), &CInstrument::GetClockPeriod) == 1e-08 ? "defaults" : "");
  };
  for (const int i : {0, 1}) {
    (void)Instrument(i).SetFileName("file");
    (void)Instrument(i).SetClockPeriod(0.5);
  }
  EXPECT_EQ(Server().DefaultModule("PG 3"), E_FAIL);
  (void)m_engine.Instruments().SetCurrentInst(-1);
  EXPECT_EQ(Server().DefaultModule(), E_FAIL);
  (void)m_engine.Instruments().SetCurrentInst(1);
  EXPECT_EQ(Server().DefaultModule(), S_OK);
  EXPECT_EQ(show(0) + "|" + show(1), "file|defaults");
  EXPECT_EQ(Server().DefaultModule("pg 1"), S_OK);
  EXPECT_EQ(show(0), "defaults");
}

TEST_F(AppServer, ProbesAreReadAnewAndNothingElse) {
  using M = CModule;
  ASSERT_EQ(Instrument(0).SetInhibitByPodD(0, 0, 1), S_OK);
  ASSERT_EQ(Instrument(1).SetOutputLevel(0, 0, 2.5), S_OK);
  for (const int i : {0, 1}) m_engine.Simulation().Module(i)->pods = "None,ECL,ECL,ECL";
  m_engine.Simulation().FailCall("GetPodTypes");  // of the first module: the walk goes on
  EXPECT_EQ(Server().UpdateProbes(), S_OK);
  EXPECT_NE(Ask(m_engine.Module(0), &M::GetPodType, 0), PodType::None);
  EXPECT_EQ(Ask(m_engine.Module(1), &M::GetPodType, 0), PodType::None);
  EXPECT_EQ(Ask(m_engine.Module(1), &M::GetOutputLevel, 0), 2.5);
  EXPECT_EQ(Ask(Instrument(0), &CInstrument::GetNoOfInhibitControls), 1);
  EXPECT_EQ(Server().UpdateProbes(), S_OK);
  EXPECT_EQ(Ask(Instrument(0), &CInstrument::GetNoOfInhibitControls), 0);
  EXPECT_EQ(M().UpdateProbes(), E_FAIL) << "a module without hardware";
}

TEST_F(AppServer, SystemStateRefreshesEveryInstrument) {
  using Told = std::vector<std::string>;
  for (int i = 0; i < 2; ++i) (void)Instrument(i).SetEventHandler(&handlers[i]);
  ASSERT_EQ(Instrument(0).Run(), S_OK);  // an idle instrument does not ask its module
  (void)handlers[0].Take();

  SystemState state = SystemState::Idle;
  m_engine.Simulation().SetSequencerText(0, "WAIT");
  EXPECT_EQ(Server().GetSystemState(state), S_OK);
  EXPECT_EQ(state, SystemState::Active);
  EXPECT_EQ(handlers[0].Take(), Told{"OnInstrumentIdle(0)"});
  EXPECT_EQ(handlers[1].Take(), Told{"OnInstrumentIdle(1)"});

  m_engine.Simulation().SetSequencerText(0, "IDL");
  handlers[0].onAny = [this] { (void)m_engine.Instruments().DeleteAll(); };
  EXPECT_EQ(Server().GetSystemState(state), S_OK);
  EXPECT_EQ(state, SystemState::Idle);
  EXPECT_EQ(handlers[1].Take(), Told{});
}

TEST_F(AppServer, ModifiedFlagsOfInstrumentAndBlocksAreSeparate) {
  CBlockManager* blocks = Find(Instrument(1), &CInstrument::GetBlockManager);
  (void)Instrument(0).SetModified(0);
  for (const int own : {1, 0}) {
    (void)Instrument(1).SetModified(own);
    for (const int flag : {0, 1}) {
      EXPECT_EQ(Server().SetModified(flag), S_OK);
      EXPECT_EQ(blocks->IsModified(), flag);
      int modified = -1;
      EXPECT_EQ(Server().IsModified(modified), S_OK);
      EXPECT_EQ(modified, own);
    }
  }
}

}  // namespace
}  // namespace quillpg
