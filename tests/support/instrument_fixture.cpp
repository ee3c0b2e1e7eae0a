#include "support/instrument_fixture.h"

#include "hardware/module.h"
#include "hardware/module_manager.h"
#include "instrument/instrument.h"
#include "instrument/instrument_manager.h"
#include "program/block_manager.h"
#include "program/program_view.h"
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

CGroupManager& CInstrumentFixture::Groups() {
  CGroupManager* groups = nullptr;
  (void)m_instrument->GetGroupManager(&groups);
  return *groups;
}
CBlockManager& CInstrumentFixture::Blocks() { return *CProgramView(*m_instrument).Blocks(); }
BLOCK& CInstrumentFixture::BlockAt(int index) {
  BLOCK* block = nullptr;
  (void)Blocks().GetBlock(index, &block);
  return *block;
}
CSequenceManager& CInstrumentFixture::Sequence() { return *CProgramView(*m_instrument).Sequence(); }
CSubSequenceManager& CInstrumentFixture::SubSequences() {
  return *CProgramView(*m_instrument).SubSequences();
}
CEventManager& CInstrumentFixture::Events() { return *CProgramView(*m_instrument).Events(); }

}  // namespace quillpg
