#pragma once

#include "hardware/simulation/simulated_hardware.h"
#include "support/recording_event_handler.h"
#include "support/recording_router.h"
#include "support/scripted_host.h"

#include <memory>
#include <string>

namespace quillpg {

class CAppServer;
class CBlockManager;
class CEventManager;
class CGroupManager;
class CInstrument;
class CInstrumentManager;
class CModule;
class CSequenceManager;
class CSubSequenceManager;
struct BLOCK;

/// A fresh engine: scripted host, simulated mainframe, server, router. Takes its server down at its
/// end, so that tests hold in one process and in any order.
class CEngineFixture {
 public:
  /// `modules` simulated modules; no instruments yet.
  explicit CEngineFixture(int modules = 1, bool option = false);
  ~CEngineFixture();
  CEngineFixture(const CEngineFixture&) = delete;
  CEngineFixture& operator=(const CEngineFixture&) = delete;

  CAppServer& Server() { return *m_server; }
  CScriptedHost& Host() { return m_host; }
  CRecordingRouter& Router() { return m_router; }
  CSimulationControl& Simulation() { return m_hardware.Control(); }
  CInstrumentManager& Instruments();
  CModule& Module(int index);

 private:
  CScriptedHost m_host;
  CRecordingRouter m_router;
  CSimulatedHardware m_hardware;
  CAppServer* m_server = nullptr;
};

/// An engine with one instrument "PG 1" over all its modules, with defaults and a recording handler
/// that has heard nothing yet.
class CInstrumentFixture : public CEngineFixture {
 public:
  explicit CInstrumentFixture(int modules = 1, bool option = false);
  ~CInstrumentFixture();

  CInstrument& Instrument() { return *m_instrument; }
  CRecordingEventHandler& Handler() { return m_handler; }
  CGroupManager& Groups();
  CBlockManager& Blocks();
  BLOCK& BlockAt(int index);  ///< must be there
  CSequenceManager& Sequence();
  CSubSequenceManager& SubSequences();
  CEventManager& Events();

 private:
  CRecordingEventHandler m_handler;
  CInstrument* m_instrument = nullptr;
};

}  // namespace quillpg
