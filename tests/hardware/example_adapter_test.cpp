// The adapter that the examples show to hosts with hardware of their own, behind the whole engine.

#include "../../examples/example_adapter.h"

#include "hardware/module.h"
#include "hardware/module_manager.h"
#include "quillpg/app_server.h"
#include "support/scripted_host.h"

#include <gtest/gtest.h>

#include <memory>

namespace quillpg {
namespace {

TEST(ExampleAdapter, StandsBehindTheEngine) {
  CScriptedHost host;
  CExampleSystem system;
  CExampleLibrary library(&system);
  CHostServices::Set(&host);
  CHardwareManager::Install(&library);
  CAppServer* server = nullptr;
  EXPECT_EQ(S_OK, CAppServer::GetServer(&server));
  const std::unique_ptr<CAppServer> owner(server);
  EXPECT_EQ(S_OK, server->InitializeModules());
  CModuleManager* modules = nullptr;
  CModule* module = nullptr;
  server->GetModuleManager(&modules);
  modules->GetModuleAt(0, &module);
  ASSERT_NE(nullptr, module);

  double level = 0;
  EXPECT_EQ(S_OK, module->SetOutputLevel(0, 2.5));
  EXPECT_EQ(E_FAIL, module->SetOutputLevel(1, 2.6));  // the hardware made 2.5 of it
  module->GetOutputLevel(1, level);
  EXPECT_EQ(2.5, level);
  EXPECT_EQ(E_FAIL, module->SetStrobeEnable(0, 1));   // the hardware has no such setting
  EXPECT_EQ(E_FAIL, module->SetOutputLevel(2, 2.5));  // no such pod
  CHardwareManager::Install(nullptr);
  CHostServices::Set(nullptr);
}

}  // namespace
}  // namespace quillpg
