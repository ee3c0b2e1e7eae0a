// Puts hardware of one's own behind the engine: example_adapter.h implements the hardware library
// for one module. The engine compares what it sends with what the module made of it.

#include "example_adapter.h"
#include "hardware/module.h"
#include "hardware/module_manager.h"
#include "quillpg/app_server.h"

#include <iostream>

using namespace quillpg;

int main() {
  CExampleSystem mainframe;
  CExampleLibrary library(&mainframe);
  CHardwareManager::Install(&library);  // before the first GetServer

  CAppServer* server = nullptr;
  if (CAppServer::GetServer(&server) != S_OK) return 1;
  if (server->InitializeModules() != S_OK) return 1;  // reads every module's settings
  CModuleManager* modules = nullptr;
  CModule* module = nullptr;
  (void)server->GetModuleManager(&modules);
  (void)modules->GetModuleAt(0, &module);
  if (module == nullptr) return 1;

  for (const double volts : {2.5, 2.6}) {  // the module knows steps of 0.25 V
    const Status status = module->SetOutputLevel(0, volts);
    double held = 0.0;
    (void)module->GetOutputLevel(0, held);
    std::cout << "asked for " << volts << " V, the module has " << held
              << " V: " << (status == S_OK ? "accepted" : "refused") << '\n';
  }
  return 0;
}
