// The engine's main job in one program: a logic-analyzer capture becomes a program, is checked,
// downloaded and played, and what the simulated pins did is written as a capture again.
//
// Usage: 03_capture_to_pins CAPTURE.vcd PINS.vcd

#include "exchange/capture_import.h"
#include "exchange/vcd_writer.h"
#include "hardware/simulation/simulated_hardware.h"
#include "quillpg/app_server.h"

#include <iostream>
#include <string>

using namespace quillpg;

namespace {

int Refuse(const std::string& why) {
  std::cerr << why << '\n';
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return Refuse("usage: 03_capture_to_pins CAPTURE.vcd PINS.vcd");

  CSimulatedHardware mainframe;
  CHardwareManager::Install(&mainframe);

  // Read the capture, find its sample period, fold it into blocks, choose the modules it needs.
  CCaptureImport import;
  if (Failed(import.Read(argv[1])) || Failed(import.Plan(RATIO{})) ||
      Failed(import.ConfigureSimulation(mainframe.Control()))) {
    return Refuse(import.GetErrorText());
  }
  CAppServer* server = nullptr;
  CInstrument* instrument = nullptr;
  if (CAppServer::GetServer(&server) != S_OK) return Refuse("the engine does not start");
  if (Failed(import.Load(&instrument))) return Refuse(import.GetErrorText());
  if (server->Compile() != S_OK || server->Download() != S_OK) return Refuse("cannot be played");

  CVcdWriter pins;
  VCD_INSTRUMENT description;
  if (Failed(import.DescribeForVcd(description)) ||
      Failed(pins.Open(argv[2], {description}, VCD_OPTIONS{}))) {
    return Refuse(pins.GetErrorText());
  }
  mainframe.Control().AddVectorSink(&pins);
  (void)server->Run();
  PlayEnd end = PlayEnd::Limit;
  (void)mainframe.Control().PlayUntilIdle(import.GetLength(), end);
  mainframe.Control().RemoveVectorSink(&pins);
  (void)server->Stop();

  if (Failed(pins.Commit())) return Refuse(pins.GetErrorText());
  std::cout << import.GetLength() << " vectors of " << FormatPeriod(description.period)
            << " played into " << argv[2] << '\n';
  return 0;
}
