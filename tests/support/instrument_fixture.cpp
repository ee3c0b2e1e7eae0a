#include "support/instrument_fixture.h"

#include "hardware/module.h"
#include "hardware/module_manager.h"
#include "instrument/instrument.h"
#include "instrument/instrument_manager.h"
#include "quillpg/app_server.h"

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
  CInstrumentManager* manager = nullptr;
  (void)m_server->GetInstrumentManager(&manager);
  return *manager;
}

CModule& CEngineFixture::Module(int index) {
  CModuleManager* manager = nullptr;
  (void)m_server->GetModuleManager(&manager);
  CModule* module = nullptr;
  (void)manager->GetModuleAt(index, &module);
  return *module;
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

template <typename Manager>
Manager& Fetch(CInstrument& instrument, Status (CInstrument::*get)(Manager**) const) {
  Manager* manager = nullptr;
  (void)(instrument.*get)(&manager);
  return *manager;
}

CGroupManager& CInstrumentFixture::Groups() {
  return Fetch(*m_instrument, &CInstrument::GetGroupManager);
}
CBlockManager& CInstrumentFixture::Blocks() {
  return Fetch(*m_instrument, &CInstrument::GetBlockManager);
}
CSequenceManager& CInstrumentFixture::Sequence() {
  return Fetch(*m_instrument, &CInstrument::GetSequenceManager);
}
CSubSequenceManager& CInstrumentFixture::SubSequences() {
  return Fetch(*m_instrument, &CInstrument::GetSubSequenceManager);
}
CEventManager& CInstrumentFixture::Events() {
  return Fetch(*m_instrument, &CInstrument::GetEventManager);
}

}  // namespace quillpg
