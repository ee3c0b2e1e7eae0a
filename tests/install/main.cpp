// What a front end does first, with nothing but the installed headers and library.
#include "instrument/instrument.h"
#include "instrument/instrument_manager.h"
#include "quillpg/app_server.h"

#include <cstdio>
#include <string>

int main() {
  quillpg::CAppServer* server = nullptr;
  if (quillpg::CAppServer::GetServer(&server) != quillpg::S_OK) return 1;
  if (server->DefaultSystem() != quillpg::S_OK) return 1;
  quillpg::CInstrumentManager* instruments = nullptr;
  server->GetInstrumentManager(&instruments);
  quillpg::CInstrument* first = nullptr;
  if (instruments->GetInstrumentAt(0, &first) != quillpg::S_OK || !first) return 1;
  std::string name;
  first->GetInstrumentName(name);
  std::puts(name.c_str());
  return name == "PG 1" ? 0 : 1;
}
