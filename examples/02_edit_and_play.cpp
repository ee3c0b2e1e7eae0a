// Edits a program as a front end's grids do, checks it, downloads it, runs it, and looks at what
// the simulated pins did.

#include "hardware/simulation/memory_sink.h"
#include "hardware/simulation/simulated_hardware.h"
#include "instrument/instrument.h"
#include "instrument/instrument_manager.h"
#include "program/sequence_manager.h"
#include "quillpg/app_server.h"
#include "quillpg/message_router.h"

#include <cstddef>
#include <cstdint>
#include <iostream>
#include <string>

using namespace quillpg;

namespace {

constexpr int kVectors = 40;  // the default block's size

/// Shows the lines of the output window.
class COutputWindow : public CMessageRouter {
 public:
  void SetMessage(const std::string& text, int) override {
    if (!text.empty()) std::cout << "  " << text << '\n';
  }
};

/// A counter on the first group, and a sequence that plays it three times.
bool Edit(CInstrument& instrument) {
  for (int vector = 0; vector < kVectors; ++vector) {
    const std::string value = std::to_string(vector);
    if (instrument.SetGroupData("UserGrp1", 0, vector, Radix::Decimal, value) != S_OK) return false;
  }
  CSequenceManager* sequence = nullptr;
  SEQUENCE_LINE* line = nullptr;
  (void)instrument.GetSequenceManager(&sequence);
  (void)sequence->GetSequenceLine(0, &line);
  return line != nullptr && line->SetRepeatCount(3) == S_OK;
}

}  // namespace

int main() {
  CSimulatedHardware mainframe;  // a front end with hardware installs its adapter here
  CMemorySink pins;
  (void)mainframe.Control().SetModules(1);
  mainframe.Control().AddVectorSink(&pins);
  CHardwareManager::Install(&mainframe);

  COutputWindow window;
  CAppServer* server = nullptr;
  if (CAppServer::GetServer(&server) != S_OK) return 1;
  (void)server->SetMessageRouter(&window);
  if (server->DefaultSystem() != S_OK) return 1;

  CInstrumentManager* instruments = nullptr;
  CInstrument* instrument = nullptr;
  (void)server->GetInstrumentManager(&instruments);
  (void)instruments->GetInstrumentAt(0, &instrument);
  if (instrument == nullptr || !Edit(*instrument)) return 1;

  if (server->Compile() != S_OK || server->Download() != S_OK) return 1;
  (void)server->Run();
  PlayEnd end = PlayEnd::Limit;
  (void)mainframe.Control().PlayUntilIdle(1000, end);

  // UserGrp1 is pod A, channels 0 to 15.
  bool right = end == PlayEnd::Idle && pins.Levels(0).size() == std::size_t{3} * kVectors;
  for (std::size_t i = 0; const std::uint64_t levels : pins.Levels(0)) {
    right = right && (levels & 0xFFFF) == i++ % kVectors;
  }
  std::cout << pins.CountedVectors() << " vectors played, " << (right ? "all" : "NOT all")
            << " as edited\n";
  return right ? 0 : 1;
}
