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

}  // namespace
}  // namespace quillpg
