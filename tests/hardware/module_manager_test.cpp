#include "hardware/module_manager.h"

#include "../../examples/example_adapter.h"
#include "support/instrument_fixture.h"

#include <gmock/gmock.h>

namespace quillpg {
namespace {

int CountModules(const CModuleManager& manager) {
  return Ask(manager, &CModuleManager::GetNoOfModules);
}

TEST(ModuleManager, DiscoversModulesThatTheEngineCanWorkWith) {
  CEngineFixture engine(4);
  CSimulationControl& control = engine.Simulation();
  control.Module(0)->firmwareCompatible = false;  // simulated: its firmware does not matter
  control.Module(1)->simulated = false;
  control.Module(2)->simulated = false;
  control.Module(2)->firmwareCompatible = false;
  CModuleManager manager;
  EXPECT_EQ(S_OK, manager.Initialize());
  ASSERT_EQ(3, CountModules(manager));
  for (const int index : {0, 1, 2}) {
    EXPECT_EQ(control.HardwareModule(index < 2 ? index : 3),
              Find(manager, &CModuleManager::GetSorrelModuleAt, index));
  }
}

TEST(ModuleManager, MakesModulesWithoutHardware) {
  CModuleManager manager;
  EXPECT_EQ(S_OK, manager.Initialize(256));
  EXPECT_EQ(256, CountModules(manager));
  EXPECT_EQ(E_FAIL, manager.Initialize(257));
  EXPECT_EQ(0, CountModules(manager));

  ASSERT_EQ(S_OK, manager.Initialize(2));
  CModule* module = nullptr;
  CSorrelModule* hardware = nullptr;
  // Out of range: no module is no failure, no hardware of a module is.
  EXPECT_EQ(S_OK, manager.GetModuleAt(2, &module));
  EXPECT_EQ(nullptr, module);
  EXPECT_EQ(E_FAIL, manager.GetSorrelModuleAt(2, &hardware));
  EXPECT_EQ(S_OK, manager.GetSorrelModuleAt(1, &hardware));  // there, without hardware
}

TEST(ModuleManager, PassesRouterAndLogDirectoryToModulesFoundLater) {
  CEngineFixture engine(1);
  CModuleManager manager;
  ASSERT_EQ(S_OK, manager.SetLogDirectory("/logs"));
  ASSERT_EQ(S_OK, manager.SetMessageRouter(&engine.Router()));
  engine.Simulation().LogCalls(true);
  ASSERT_EQ(S_OK, manager.Initialize());
  EXPECT_THAT(engine.Simulation().TakeCalls(),
              testing::ElementsAre("0 SetLogDirectory(/logs)", "0 SetMessageRouter()"));
}

TEST(ModuleManager, InstrumentsLoseModulesThatAreDestroyed) {
  CInstrumentFixture fixture(2);
  EXPECT_EQ(S_OK, fixture.Modules().Initialize());
  EXPECT_EQ(0, Ask(fixture.Instrument(), &CInstrument::GetNoOfModules));
}

// A library that walks nowhere: the same module for ever, or no module at all.
class CStuckSystem : public CExampleSystem {
 public:
  Status GetNextSorrelModule(int& pos, CSorrelModule** found) override {
    *found = given;
    if (moves) ++pos;
    return S_OK;
  }

  CSorrelModule* given = nullptr;
  bool moves = false;
};

TEST(ModuleManager, AWalkThatDoesNotEndIsEnded) {
  CStuckSystem system;
  CExampleLibrary library(&system);
  CHardwareManager::Install(&library);
  CModuleManager manager;
  system.given = &system.module;
  EXPECT_EQ(S_OK, manager.Initialize());
  EXPECT_EQ(1, CountModules(manager));
  system.moves = true;
  EXPECT_EQ(S_OK, manager.Initialize());
  EXPECT_EQ(256, CountModules(manager));
  CExampleLibrary withoutSystem(nullptr);
  CHardwareManager::Install(&withoutSystem);
  EXPECT_EQ(S_OK, manager.Initialize());
  EXPECT_EQ(0, CountModules(manager));
  CHardwareManager::Install(nullptr);
}

// The adapter that the examples show to hosts with hardware of their own.
TEST(ModuleManager, WorksWithTheExampleAdapter) {
  CExampleSystem system;
  CExampleLibrary library(&system);
  CHardwareManager::Install(&library);
  CModuleManager manager;
  EXPECT_EQ(S_OK, manager.Initialize());
  EXPECT_EQ(S_OK, manager.InitializeModules());
  CModule* module = Find(manager, &CModuleManager::GetModuleAt, 0);
  ASSERT_NE(nullptr, module);
  EXPECT_EQ(S_OK, module->SetOutputLevel(0, 2.5));
  EXPECT_EQ(E_FAIL, module->SetOutputLevel(1, 2.6));  // the hardware made 2.5 of it
  EXPECT_EQ(2.5, Ask(*module, &CModule::GetOutputLevel, 1));
  EXPECT_EQ(E_FAIL, module->SetStrobeEnable(0, 1));  // the hardware has no such setting
  CHardwareManager::Install(nullptr);
}

}  // namespace
}  // namespace quillpg
