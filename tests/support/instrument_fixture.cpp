#include "support/instrument_fixture.h"

namespace quillpg {

CEngineFixture::CEngineFixture(int modules, bool option) {
  CHostServices::Set(&m_host);
  CHardwareManager::Install(&m_hardware);
  GblClientConnected = 0;
  (void)m_hardware.Control().SetModules(modules, option);
  (void)CAppServer::GetServer(&m_server);
  (void)m_server->SetMessageRouter(&m_router);
}

CEngineFixture::~CEngineFixture() {
  delete m_server;  // the engine keeps its server for good; a test must not
  CHardwareManager::Install(nullptr);
  CHostServices::Set(nullptr);
  GblClientConnected = 0;
}

CInstrumentManager& CEngineFixture::Instruments() {
  return *Find(*m_server, &CAppServer::GetInstrumentManager);
}
CInstrument* CEngineFixture::Instrument(int position) {
  return Find(Instruments(), &CInstrumentManager::GetInstrumentAt, position);
}
CModuleManager& CEngineFixture::Modules() {
  return *Find(*m_server, &CAppServer::GetModuleManager);
}
CModule& CEngineFixture::Module(int index) {
  return *Find(Modules(), &CModuleManager::GetModuleAt, index);
}

void CEngineFixture::Play(CMemorySink& sink, std::int64_t limit, PlayEnd expected) {
  Simulation().AddVectorSink(&sink);
  EXPECT_EQ(m_server->Compile(), S_OK);
  EXPECT_EQ(m_server->Download(), S_OK);
  EXPECT_EQ(m_server->Run(), S_OK);
  auto end = PlayEnd::Stepping;
  EXPECT_EQ(Simulation().PlayUntilIdle(limit, end), S_OK);
  EXPECT_EQ(end, expected);
  Simulation().RemoveVectorSink(&sink);
}

int Bit(const CInstrument& instrument, int channel, int block, int vector) {
  int bit = -1;
  return instrument.GetChannelData(channel, block, vector, bit) == S_OK ? bit : -1;
}

CInstrumentFixture::CInstrumentFixture(int modules, bool option) : CEngineFixture(modules, option) {
  auto instrument = std::make_unique<CInstrument>();
  (void)instrument->Initialize();
  (void)instrument->SetInstrumentName("PG 1");
  for (int i = 0; i < modules; ++i) (void)instrument->AddModule(&Module(i));
  (void)instrument->SetEventHandler(&m_handler);
  (void)instrument->Default();
  m_instrument = instrument.get();
  (void)Instruments().AddInstrument(instrument.release());
  m_handler.events.clear();
}

CInstrumentFixture::~CInstrumentFixture() { (void)Instruments().DeleteAll(); }

CGroupManager& CInstrumentFixture::Groups() { return *CProgramView(*m_instrument).Groups(); }
CBlockManager& CInstrumentFixture::Blocks() { return *CProgramView(*m_instrument).Blocks(); }
BLOCK& CInstrumentFixture::BlockAt(int index) {
  return *CProgramView(*m_instrument).BlockAt(index);
}
CSequenceManager& CInstrumentFixture::Sequence() { return *CProgramView(*m_instrument).Sequence(); }
CSubSequenceManager& CInstrumentFixture::SubSequences() {
  return *CProgramView(*m_instrument).SubSequences();
}
CEventManager& CInstrumentFixture::Events() { return *CProgramView(*m_instrument).Events(); }

}  // namespace quillpg
