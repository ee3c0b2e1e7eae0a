#include "quillpg/app_server.h"

#include "hardware/hardware_library.h"
#include "hardware/module.h"
#include "instrument/instrument.h"
#include "instrument/instrument_manager.h"
#include "program/block_manager.h"
#include "support/instrument_fixture.h"

#include <gtest/gtest.h>

namespace quillpg {
namespace {

class CWatchedHardware : public CSimulatedHardware {
 public:
  Status Initialize() override {
    ++initialised;
    return CSimulatedHardware::Initialize();
  }
  Status GetSystem(CSystem** system) override {
    return hasSystem ? CSimulatedHardware::GetSystem(system) : E_FAIL;
  }
  Status SetMessageRouter(CMessageRouter* given) override {
    router = given;
    return CSimulatedHardware::SetMessageRouter(given);
  }

  int initialised = 0;
  bool hasSystem = true;
  CMessageRouter* router = nullptr;
};

// A server over a watched library; the fixture's own would hide when things happen.
class AppServerStart : public testing::Test {
 protected:
  AppServerStart() {
    CHostServices::Set(&m_host);
    CHardwareManager::Install(&m_hardware);
  }
  ~AppServerStart() override {
    delete m_server;
    CHardwareManager::Install(nullptr);
    CHostServices::Set(nullptr);
  }

  CScriptedHost m_host;
  CWatchedHardware m_hardware;
  CAppServer* m_server = nullptr;
};

TEST_F(AppServerStart, MakesOneServerAndInitialisesItOnce) {
  EXPECT_EQ(CAppServer::GetServer(nullptr), E_FAIL);
  EXPECT_EQ(CAppServer::GetServer(&m_server), S_OK);
  CAppServer* again = nullptr;
  EXPECT_EQ(CAppServer::GetServer(&again), S_OK);
  EXPECT_EQ(again, m_server);
  EXPECT_EQ(m_hardware.initialised, 1);
  EXPECT_EQ(m_server->GetSystem(nullptr), E_FAIL);
  EXPECT_EQ(m_server->GetMergeManager(nullptr), E_FAIL);
  EXPECT_EQ(m_server->DefaultModule(), E_FAIL);  // instruments come with a system or a file
}

TEST_F(AppServerStart, StandsWithoutASystem) {
  m_hardware.hasSystem = false;
  ASSERT_EQ(CAppServer::GetServer(&m_server), S_OK);
  EXPECT_EQ(m_server->DefaultSystem(), S_OK);
  EXPECT_EQ(m_server->DefaultModule(), E_FAIL);  // nothing became current
}

TEST_F(AppServerStart, HandsTheRouterOnAndTakesItBack) {
  CRecordingRouter router;
  ASSERT_EQ(CAppServer::GetServer(&m_server), S_OK);
  m_server->SetStatusMessage("dropped");
  (void)m_server->SetMessageRouter(&router);
  EXPECT_EQ(m_hardware.router, &router);
  m_server->SetStatusMessage("Saving");
  (void)m_server->SetMessageRouter(nullptr);
  EXPECT_EQ(m_hardware.router, nullptr);
  m_server->SetStatusMessage("dropped");
  EXPECT_EQ(router.status, std::vector<std::string>{"Saving"});
}

class AppServer : public testing::Test {
 protected:
  AppServer() : m_engine(2) { (void)Server().DefaultSystem(); }

  CAppServer& Server() { return m_engine.Server(); }
  CInstrument& Instrument(int position) {
    CInstrument* instrument = nullptr;
    (void)m_engine.Instruments().GetInstrumentAt(position, &instrument);
    return *instrument;
  }

  CRecordingEventHandler handlers[2];
  CEngineFixture m_engine;
};

TEST_F(AppServer, RunControlAnswersOkForAnyPosition) {
  for (const int position : {-1, 0, 1, 2, 70000}) {
    EXPECT_EQ(Server().Advance(position), S_OK);
    EXPECT_EQ(Server().Jump(position), S_OK);
    EXPECT_EQ(Server().Step(position, 1), S_OK);
  }
  EXPECT_EQ(Server().WaitForEventTimeOut(nullptr), S_OK);
  const int shown = m_engine.Host().cursorsShown;
  EXPECT_EQ(Server().Run(), S_OK);
  EXPECT_EQ(Server().Stop(), S_OK);
  EXPECT_EQ(m_engine.Host().cursorsShown, shown + 2);
  EXPECT_EQ(m_engine.Host().cursorDepth, 0);
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
  CBlockManager* blocks = nullptr;
  (void)Instrument(1).GetBlockManager(&blocks);
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

TEST_F(AppServer, DefaultModuleNeedsAnInstrumentAndEmptiesItsFileName) {
  std::string name;
  (void)Instrument(1).SetFileName("old.pgm");
  EXPECT_EQ(Server().DefaultModule("pg 2"), S_OK);
  (void)Instrument(1).GetFileName(name);
  EXPECT_EQ(name, "");
  EXPECT_EQ(Server().DefaultModule("PG 3"), E_FAIL);
  EXPECT_EQ(Server().DefaultModule(), S_OK);
  (void)m_engine.Instruments().SetCurrentInst(-1);
  EXPECT_EQ(Server().DefaultModule(), E_FAIL);
}

TEST_F(AppServer, UpdateProbesTakesNewPodsIn) {
  CInstrument& instrument = Instrument(0);
  ASSERT_EQ(instrument.SetInhibitByPodD(0, 0, 1), S_OK);
  int controls = 0;
  (void)instrument.GetNoOfInhibitControls(controls);
  EXPECT_EQ(controls, 1);
  m_engine.Simulation().Module(0)->pods = "None,ECL,ECL,ECL";
  EXPECT_EQ(Server().UpdateProbes(), S_OK);
  PodType type = PodType::Unknown;
  (void)instrument.GetPodType(0, 1, type);
  EXPECT_EQ(type, PodType::Ecl);
  (void)instrument.GetNoOfInhibitControls(controls);
  EXPECT_EQ(controls, 0);  // a pod without a probe needs no control
}

}  // namespace
}  // namespace quillpg
