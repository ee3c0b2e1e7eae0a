#include "hardware/module_manager.h"

#include "../../examples/example_adapter.h"
#include "hardware/simulation/simulated_hardware.h"
#include "instrument/instrument.h"
#include "quillpg/app_server.h"
#include "support/instrument_fixture.h"
#include "support/recording_router.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace quillpg {
namespace {

int CountModules(const CModuleManager& manager) {
  int count = -1;
  EXPECT_EQ(S_OK, manager.GetNoOfModules(count));
  return count;
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
    CSorrelModule* hardware = nullptr;
    EXPECT_EQ(S_OK, manager.GetSorrelModuleAt(index, &hardware));
    EXPECT_EQ(control.HardwareModule(index < 2 ? index : 3), hardware);
  }
}

TEST(ModuleManager, MakesModulesWithoutHardware) {
  const struct Row {
    int count;
    Status status;
    int made;
  } rows[] = {{3, S_OK, 3}, {-1, S_OK, 0}, {256, S_OK, 256}, {257, E_FAIL, 0}};
  CModuleManager manager;
  for (const Row& row : rows) {
    EXPECT_EQ(row.status, manager.Initialize(row.count)) << row.count;
    EXPECT_EQ(row.made, CountModules(manager)) << row.count;
  }
}

TEST(ModuleManager, LooksModulesUp) {
  CModuleManager manager;
  ASSERT_EQ(S_OK, manager.Initialize(2));
  const CModule stranger;
  CModule* module = nullptr;
  CSorrelModule* hardware = nullptr;
  int position = 7;
  EXPECT_EQ(S_OK, manager.GetModuleAt(1, &module));
  EXPECT_EQ(S_OK, manager.GetModulePos(module, position));
  EXPECT_EQ(1, position);
  EXPECT_EQ(E_FAIL, manager.GetModulePos(&stranger, position));
  EXPECT_EQ(-1, position);
  EXPECT_EQ(S_OK, manager.GetSorrelModuleAt(1, &hardware));  // there, without hardware
  // Out of range: no module is no failure, no hardware of a module is.
  EXPECT_EQ(E_FAIL, manager.GetSorrelModuleAt(2, &hardware));
  EXPECT_EQ(S_OK, manager.GetModuleAt(2, &module));
  EXPECT_EQ(nullptr, module);
}

TEST(ModuleManager, PassesRouterAndLogDirectoryToModulesFoundLater) {
  CEngineFixture engine(1);
  CRecordingRouter router;
  CModuleManager manager;
  ASSERT_EQ(S_OK, manager.SetLogDirectory("/logs"));
  ASSERT_EQ(S_OK, manager.SetMessageRouter(&router));
  engine.Simulation().LogCalls(true);
  ASSERT_EQ(S_OK, manager.Initialize());
  EXPECT_THAT(engine.Simulation().TakeCalls(),
              testing::ElementsAre("0 SetLogDirectory(/logs)", "0 SetMessageRouter()"));
}

TEST(ModuleManager, CopiesHardwareReferencesAndSurvivesItself) {
  CEngineFixture engine(2);
  CModuleManager manager;
  ASSERT_EQ(S_OK, manager.Initialize());
  ASSERT_EQ(S_OK, manager.InitializeModules());
  const CModuleManager& self = manager;
  manager = self;
  const CModuleManager copy(manager);
  ASSERT_EQ(2, CountModules(copy));
  CModule* module = nullptr;
  CSorrelModule* hardware = nullptr;
  PodType type = PodType::Ecl;
  copy.GetModuleAt(1, &module);
  module->GetSorrelModule(&hardware);
  module->GetPodType(0, type);
  EXPECT_EQ(engine.Simulation().HardwareModule(1), hardware);
  EXPECT_EQ(PodType::None, type);
}

TEST(ModuleManager, InstrumentsLoseModulesThatAreDestroyed) {
  CInstrumentFixture fixture(2);
  CModuleManager* manager = nullptr;
  fixture.Server().GetModuleManager(&manager);
  EXPECT_EQ(S_OK, manager->Initialize());
  int count = -1;
  fixture.Instrument().GetNoOfModules(count);
  EXPECT_EQ(0, count);
  EXPECT_EQ(2, CountModules(*manager));
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
  struct Row {
    const char* what;
    bool module;
    bool moves;
    int found;
  };
  const Row rows[] = {
      {"no advance", true, false, 1},
      {"no end", true, true, 256},
      {"no modules", false, true, 0},
  };
  CStuckSystem system;
  CExampleLibrary library(&system);
  CHardwareManager::Install(&library);
  CModuleManager manager;
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    system.given = row.module ? &system.module : nullptr;
    system.moves = row.moves;
    EXPECT_EQ(S_OK, manager.Initialize());
    EXPECT_EQ(row.found, CountModules(manager));
  }
  ASSERT_EQ(S_OK, manager.Initialize(1));
  CExampleLibrary empty(nullptr);
  CHardwareManager::Install(&empty);
  EXPECT_EQ(E_FAIL, manager.Initialize());
  EXPECT_EQ(0, CountModules(manager));
  CHardwareManager::Install(nullptr);
}

}  // namespace
}  // namespace quillpg
