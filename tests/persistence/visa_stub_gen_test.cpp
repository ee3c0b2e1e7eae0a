#include "persistence/visa_stub_gen.h"

#include "support/golden.h"
#include "support/saved_system.h"

#include <gmock/gmock.h>

namespace quillpg {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* kStubName = "simulation.ini";

// A saved system, looked at as a front end does before it has the modules of the file simulated.
class CStubbedSystem : public CSavedSystem {
 public:
  explicit CStubbedSystem(int modules, bool option = false) : CSavedSystem(modules, option) {
    (void)Files().SaveSystem(File(), "", 1);
    (void)Server().InitializeVisaStubFile(File(kStubName));
    PREVIEW_INFO info;
    (void)Files().Preview(File(), info);
  }
  std::string Written() { return Folder().Text(kStubName); }
  int Count() { return Ask(Modules(), &CModuleManager::GetNoOfModules); }
};

TEST(VisaStub, GoldenFilesOfOneModuleWithTheOptionAndOfThree) {
  for (const int modules : {1, 3}) {
    CStubbedSystem system(modules, modules == 1);
    ASSERT_EQ(S_OK, system.Files().GenerateVisaStub());
    ExpectGolden(modules == 1 ? "simulation_one_module.ini" : "simulation_three_modules.ini",
                 system.Written());
  }
}

// Whoever forgets to name the file anew gets the old sections and the new ones, by design.
TEST(VisaStub, SectionsAccumulateUntilTheFileIsNamedAnew) {
  CStubbedSystem system(2);
  (void)system.Files().GenerateVisaStub();
  (void)system.Files().GenerateVisaStub();
  EXPECT_EQ(2, system.Count());
  for (const char* line : {"3 1 V", "5 2 V", "3 3 V", "5 4 V"}) {
    EXPECT_THAT(system.Written(), HasSubstr(std::string("\n2748 1064 ") + line + "\n"));
  }
  (void)system.Server().InitializeVisaStubFile(system.File(kStubName));
  (void)system.Files().GenerateVisaStub();
  EXPECT_THAT(system.Written(), testing::Not(HasSubstr("\n2748 1064 3 3 V")));
}

TEST(VisaStub, ExpansionIsDeclaredAndAnswersNothing) {
  CTemporaryFolder folder;
  CVisaStubGen generator;
  ASSERT_EQ(S_OK, generator.Initialize(folder.File(kStubName)));
  ASSERT_EQ(S_OK, generator.AddModule({.slot = 1, .kind = 1, .pods = ""}));
  ASSERT_EQ(S_OK, generator.AddModule({.slot = 4, .pods = "ECL"}));
  ASSERT_EQ(S_OK, generator.WriteFile());
  const std::string text = folder.Text(kStubName);
  const std::string rule = "#" + std::string(70, '-') + "\n";
  EXPECT_THAT(text,
              HasSubstr(rule + "# QXI-1 Expansion Interface Module\n" + rule +
                        "2748 1001 1 255 V\n\n" + rule + "# QPG-64 Pattern Generator Module\n"));
  EXPECT_THAT(text, HasSubstr("\n2748 1064 4 2 V\n\n[TERMINATION LF]\n"));
  EXPECT_THAT(text, HasSubstr("\n>SYSTEM:CONFIG:POD?<>\"ECL\">\n\n"));
}

// --- what becomes of the live system ---

TEST(VisaStub, FileLoadsOnTheModulesMadeForIt) {
  for (const bool option : {false, true}) {
    SCOPED_TRACE(option);
    CStubbedSystem system(2, option);
    ASSERT_EQ(S_OK, system.Simulation().SetModules(0));
    ASSERT_EQ(S_OK, system.Files().GenerateVisaStub());
    EXPECT_EQ(2, system.Count());
    EXPECT_EQ(0, Ask(*system.Instrument(0), &CInstrument::GetNoOfModules));
    EXPECT_EQ(S_OK, system.Files().CanLoadSystemFile(system.File()));
    ASSERT_EQ(S_OK, system.Server().LoadSystem(system.File()));
    for (int i = 0; i < 2; ++i) EXPECT_EQ(CSavedSystem::DataOf(i), system.Data(i)) << i;
    EXPECT_EQ(option ? OPTION_MEMORY_DEPTH : DEFAULT_MEMORY_DEPTH,
              Ask(*system.Instrument(1), &CInstrument::GetMemoryDepth));
  }
}

// The modules come up before the file stands, and it may be edited until it is first asked.
TEST(VisaStub, ModulesAnswerFromTheFile) {
  {
    CStubbedSystem system(2, true);
    system.Host().executableDirectory = system.Folder().Path().string();
    (void)system.Server().InitializeVisaStubFile(system.File("visastub.ini"));
    ASSERT_EQ(S_OK, system.Files().GenerateVisaStub());
    std::string text = system.Folder().Text("visastub.ini");
    const std::string serial = ">SYSTEM:SNUM?<>AA123456>";
    ASSERT_NE(std::string::npos, text.rfind(serial));
    text.replace(text.rfind(serial), serial.size(), ">SYSTEM:SNUM?<>edited>");
    system.Folder().Write("visastub.ini", text);

    const auto ask = [&](int slot, const std::string& command) {
      std::string reply;
      return system.Simulation().Query(slot, command, reply) == S_OK ? reply : "no reply";
    };
    EXPECT_EQ("5.0", ask(3, "OUTPUT:LEVEL? A"));
    EXPECT_EQ("3.0", ask(5, "output:level:high? B,2\n"));
    EXPECT_EQ("OPT1S", ask(5, "SYSTEM:CONFIG:OPT?"));
    EXPECT_EQ("AA123456", ask(3, "SYSTEM:SNUM?"));
    std::string known;
    EXPECT_EQ(S_OK, system.Simulation().HardwareModule(1)->GetSerialNo(known));
    EXPECT_EQ("edited", known);
  }
}

TEST(VisaStub, NothingHappensWithHardwareNorWhileTheEngineWorks) {
  CStubbedSystem system(2);
  {
    const CBusyMark busy(system.Instruments());
    EXPECT_EQ(S_OK, system.Files().GenerateVisaStub());
  }
  system.Simulation().Mainframe().hardwarePresent = true;
  EXPECT_EQ(1, CFileManager::IsHardwarePresent());
  EXPECT_EQ(S_OK, system.Files().GenerateVisaStub());
  EXPECT_THAT(system.Written(), IsEmpty());
  EXPECT_EQ(1, Ask(*system.Instrument(1), &CInstrument::GetNoOfModules));
}

TEST(VisaStub, ModulesComeUpWithoutAFile) {
  CStubbedSystem system(3);
  for (const std::string& path : {std::string(), system.File("no folder/file.ini")}) {
    SCOPED_TRACE(path);
    (void)system.Server().InitializeVisaStubFile(path);
    ASSERT_EQ(S_OK, system.Simulation().SetModules(1));
    EXPECT_EQ(S_OK, system.Files().GenerateVisaStub());
    EXPECT_EQ(3, system.Count());
    EXPECT_EQ(E_FAIL, Find(system.Server(), &CAppServer::GetVisaStubGenerator)->WriteFile());
  }
}

}  // namespace
}  // namespace quillpg
