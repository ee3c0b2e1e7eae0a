#pragma once

#include "hardware/module.h"
#include "hardware/module_manager.h"
#include "hardware/simulation/memory_sink.h"
#include "hardware/simulation/simulated_hardware.h"
#include "instrument/instrument.h"
#include "instrument/instrument_manager.h"
#include "program/block_manager.h"
#include "program/event_manager.h"
#include "program/group_manager.h"
#include "program/program_view.h"
#include "program/sequence_manager.h"
#include "program/subsequence_manager.h"
#include "quillpg/app_server.h"
#include "quillpg/grid_window.h"
#include "support/ask.h"
#include "support/recording_event_handler.h"
#include "support/recording_router.h"
#include "support/scripted_host.h"

#include <functional>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace quillpg {

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
  CInstrument* Instrument(int position);  ///< null for a bad position
  CModuleManager& Modules();
  CModule& Module(int index);

  /// Compiles, downloads, runs; `sink` takes what the modules drive until the play ends as
  /// `expected`, or for `limit` vectors.
  void Play(CMemorySink& sink, std::int64_t limit, PlayEnd expected);

 private:
  CScriptedHost m_host;
  CRecordingRouter m_router;
  CSimulatedHardware m_hardware;
  CAppServer* m_server = nullptr;
};

/// A grid of the front end.
class CGrid : public CSorrelGridWnd {
 public:
  void GetInstrument(CInstrument** shown) override { *shown = instrument; }
  CInstrument* instrument = nullptr;
};

/// A level of pattern data; -1 where there is none.
int Bit(const CInstrument& instrument, int channel, int block, int vector);

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
