// Files written by another program: loaded into the engine and saved again.

#include "hardware/module_manager.h"
#include "persistence/setup_file_walker.h"
#include "support/saved_system.h"

#include <gtest/gtest.h>

namespace quillpg {
namespace {

// The keyword by which the hardware names a pod type.
std::string Keyword(PodType type) {
  if (type == PodType::V3Cmos) return "V3_CMOS";  // printed otherwise
  return std::string(GetDisplayText(type));
}

// One simulated module for each of the file's, with its pods and its memory.
std::vector<SIMULATED_MODULE> ModulesOf(const SETUP_FILE_CONTENTS& contents) {
  std::vector<SIMULATED_MODULE> modules;
  for (const SETUP_FILE_INSTRUMENT& instrument : contents.instruments) {
    for (const auto& pods : instrument.pods) {
      SIMULATED_MODULE module;
      module.slot += 2 * static_cast<int>(modules.size());
      module.option = contents.fixedSection.memoryDepths[modules.size()] > DEFAULT_MEMORY_DEPTH;
      module.pods.clear();
      for (const PodType type : pods) {
        module.pods += (module.pods.empty() ? "" : ",") + Keyword(type);
      }
      modules.push_back(module);
    }
  }
  return modules;
}

TEST(Rewrite, GivesTheSameBytesApartFromTheDate) {
  const struct {
    const char* name;
    bool same;  ///< else the second rewrite equals the first: display records are put in order
  } rows[] = {
      {"minimal", true},      {"simple", true},     {"two_modules_half", true},
      {"random_a", true},     {"random_b", true},   {"other_pods", true},
      {"old_version", false}, {"odd_views", false}, {"without_program", false},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    CSavedSystem system(0);
    const std::string original = system.File("original");
    std::filesystem::copy_file(std::string(QUILLPG_TEST_DATA "/setup/") + row.name + ".pgs",
                               original);
    const std::string bytes = system.Folder().Text("original");
    SETUP_FILE_CONTENTS contents;
    ASSERT_EQ(S_OK,
              WalkSetupFile({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()}, {},
                            contents));
    ASSERT_EQ(S_OK, system.Simulation().SetModules(ModulesOf(contents)));
    CModuleManager* modules = nullptr;
    (void)system.Server().GetModuleManager(&modules);
    ASSERT_EQ(S_OK, modules->Initialize());

    EXPECT_EQ(S_OK, system.Files().CanLoadSystemFile(original));
    ASSERT_EQ(S_OK, system.Server().LoadSystem(original));
    std::string comment;
    (void)system.Instruments().GetComment(comment);
    const int programs = system.Files().IsProgramDataSaved();
    ASSERT_EQ(S_OK, system.Files().SaveSystem(system.File("first"), comment, programs));
    EXPECT_EQ(row.same, system.Bytes("original") == system.Bytes("first"));
    ASSERT_EQ(S_OK, system.Server().LoadSystem(system.File("first")));
    ASSERT_EQ(S_OK, system.Files().SaveSystem(system.File("second"), comment, programs));
    EXPECT_TRUE(system.Bytes("first") == system.Bytes("second"));
  }
}

TEST(Rewrite, CutFilesEndInAStatus) {
  CSavedSystem system(1);
  const std::string whole = CTemporaryFolder().Text(QUILLPG_TEST_DATA "/setup/minimal.pgs");
  ASSERT_FALSE(whole.empty());
  for (std::size_t length = 0; length < whole.size(); ++length) {
    SCOPED_TRACE(length);
    const std::string file = system.Folder().Write("cut", whole.substr(0, length));
    const Status status = system.Server().LoadSystem(file);
    // What follows the blocks may fail unseen.
    EXPECT_TRUE(status != S_OK || length > whole.size() / 2);
    EXPECT_EQ(status == S_OK ? file : "", system.SystemFile());
  }
}

}  // namespace
}  // namespace quillpg
