// Starts the engine, makes the default system and lists what is there: one instrument per module.

#include "instrument/instrument.h"
#include "instrument/instrument_manager.h"
#include "quillpg/app_server.h"

#include <iostream>
#include <string>

using namespace quillpg;

int main() {
  // The first call finds the modules; without hardware a simulated mainframe answers.
  CAppServer* server = nullptr;
  if (CAppServer::GetServer(&server) != S_OK) return 1;
  if (server->DefaultSystem() != S_OK) return 1;

  std::string version;
  (void)server->GetSoftwareVersion(version);
  std::cout << "engine " << version << '\n';

  CInstrumentManager* instruments = nullptr;
  int count = 0;
  (void)server->GetInstrumentManager(&instruments);
  (void)instruments->GetNoOfInstruments(count);
  for (int i = 0; i < count; ++i) {
    CInstrument* instrument = nullptr;  // stays the server's
    (void)instruments->GetInstrumentAt(i, &instrument);
    if (instrument == nullptr) continue;

    std::string name;
    std::string module;
    int channels = 0;
    long depth = 0;
    (void)instrument->GetInstrumentName(name);
    (void)instrument->GetModuleProperties(0, module);
    (void)instrument->GetMaxChannels(channels);
    (void)instrument->GetMemoryDepth(depth);
    std::cout << name << ": " << channels << " channels, " << depth << " vectors, " << module
              << '\n';
  }
  return count > 0 ? 0 : 1;
}
