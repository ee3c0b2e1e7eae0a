// How simulated modules take their answers from a configuration file: which file, and when.

#include "hardware/simulation/simulated_hardware.h"
#include "hardware/simulation/stub_file.h"
#include "support/scripted_host.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <vector>

namespace quillpg {
namespace {

using testing::ElementsAre;

/// A simulated library whose program and system folders are the test's.
class StubModules : public testing::Test {
 protected:
  StubModules() {
    m_host.executableDirectory = m_program.Path().string();
    CHostServices::Set(&m_host);
    (void)m_hardware.GetSystem(&m_system);
  }
  ~StubModules() override { CHostServices::Set(nullptr); }

  CSimulationControl& Control() { return m_hardware.Control(); }

  // Each as "slot serial".
  std::vector<std::string> Modules() {
    std::vector<std::string> modules;
    int pos = -1;
    (void)m_system->GetFirstSorrelModulePos(pos);
    while (pos >= 0) {
      CSorrelModule* module = nullptr;
      int slot = 0;
      std::string serial;
      (void)m_system->GetNextSorrelModule(pos, &module);
      (void)module->GetSlotNo(slot);
      (void)module->GetSerialNo(serial);
      modules.push_back(std::to_string(slot) + " " + serial);
    }
    return modules;
  }
  void LoadFromStub(int count) {
    (void)m_system->PrepareLoadFromStub();
    for (int i = 0; i < count; ++i) (void)m_system->AddModuleFromStub(i % 2);
    (void)m_system->LoadFromStubComplete();
  }
  static std::string Section(int slot, const std::string& serial) {
    return "2748 1064 " + std::to_string(slot) + " 1 V\n>SYSTEM:SNUM?<>" + serial + ">\n";
  }
  std::string Ask(int slot, const std::string& command) {
    std::string reply;
    return Control().Query(slot, command, reply) == S_OK ? reply : "none";
  }

  CTemporaryFolder m_program;
  CTemporaryFolder m_other;
  CScriptedHost m_host;
  CSimulatedHardware m_hardware;
  CSystem* m_system = nullptr;
};

TEST_F(StubModules, StartTakesTheFileBesideTheProgramThenTheSystems) {
  m_host.systemDirectory = m_other.Path().string();
  ASSERT_EQ(S_OK, m_hardware.Initialize());
  EXPECT_EQ(5U, Modules().size());
  m_other.Write("VISASTUB.INI", Section(6, "S"));
  ASSERT_EQ(S_OK, m_hardware.Initialize());
  EXPECT_THAT(Modules(), ElementsAre("6 S"));
  m_program.Write("VisaStub.ini", Section(9, "P1") + "2748 1001 1 255 V\n" + Section(2, "P2"));
  ASSERT_EQ(S_OK, m_hardware.Initialize());
  EXPECT_THAT(Modules(), ElementsAre("9 P1", "2 P2"));
  Control().Mainframe().hardwarePresent = true;
  m_program.Write("VisaStub.ini", "");
  ASSERT_EQ(S_OK, m_hardware.Initialize());
  EXPECT_EQ(2U, Modules().size());
  Control().Mainframe().hardwarePresent = false;
  ASSERT_EQ(S_OK, m_hardware.Initialize());
  EXPECT_THAT(Modules(), ElementsAre());  // a file that declares none
  std::filesystem::remove(m_program.File("VisaStub.ini"));
  std::filesystem::remove(m_other.File("VISASTUB.INI"));
  ASSERT_EQ(S_OK, m_hardware.Initialize());
  EXPECT_EQ(5U, Modules().size());
}

TEST_F(StubModules, TheHostsLastWordCounts) {
  m_program.Write("visastub.ini", Section(9, "P"));
  (void)Control().SetModules(1);
  ASSERT_EQ(S_OK, m_hardware.Initialize());
  EXPECT_THAT(Modules(), ElementsAre("3 AA123456"));
  Control().SetStubFile(m_other.Write("any.name", Section(4, "X")));
  ASSERT_EQ(S_OK, m_hardware.Initialize());
  EXPECT_THAT(Modules(), ElementsAre("4 X"));
  std::string many;
  for (int i = 0; i < 300; ++i) many += Section(i, std::to_string(i));
  m_other.Write("any.name", many);
  ASSERT_EQ(S_OK, m_hardware.Initialize());
  EXPECT_EQ(256, Control().ModuleCount());
  EXPECT_EQ("44 44", Modules().front());
}

// A host that looks at modules which the engine has not discovered yet must not end older ones.
TEST_F(StubModules, ReplacedModulesLiveOnUntilNewerOnesWereDiscovered) {
  int pos = 1;
  CSorrelModule* known = nullptr;
  ASSERT_EQ(S_OK, m_system->GetNextSorrelModule(pos, &known));
  (void)Control().SetModules(2);
  CVXIModule* seen = nullptr;
  EXPECT_EQ(S_OK, m_system->GetModuleAt(3, &seen));
  LoadFromStub(3);
  CSorrelModule* looked = Control().HardwareModule(2);
  (void)Control().SetModules(1);
  int slot = 0;
  EXPECT_EQ(S_OK, known->GetSlotNo(slot));
  EXPECT_EQ(5, slot);
  EXPECT_EQ(S_OK, looked->GetSlotNo(slot));
  EXPECT_EQ(7, slot);
  std::string text;
  EXPECT_EQ(S_OK, seen->GetModuleProperties(text));
}

// The engine discovers the modules before the file is written.
TEST_F(StubModules, TheFileIsReadWhenAnAnswerIsFirstAskedFor) {
  m_program.Write("visastub.ini", Section(3, "old"));
  LoadFromStub(2);
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(1, Control().HardwareModule(i)->VisaStub());
    (void)Control().HardwareModule(i)->SetLogDirectory("logs");
    (void)Control().HardwareModule(i)->SetMessageRouter(nullptr);
  }
  // Written twice over: the last two sections are those of now.
  m_program.Write("visastub.ini", Section(3, "a") + Section(3, "b") +
                                      ">OUTPUT:LEVEL? A<>4.0>\n>SYSTEM:CONFIG:OPT?<>OPT1S>\n" +
                                      Section(5, "c") + ">SYSTEM:CONFIG:OPT?<>STD>\n");
  CSorrelModule& first = *Control().HardwareModule(0);
  EXPECT_EQ(S_OK, first.SetOutputLevel('B', 1.5F));
  float level = 0;
  (void)first.GetOutputLevel('A', level);
  EXPECT_EQ(4.0F, level);
  (void)first.GetOutputLevel('B', level);
  EXPECT_EQ(1.5F, level);
  long depth = 0;
  (void)first.GetMemoryDepth(depth);
  EXPECT_EQ(1048572, depth);
  EXPECT_THAT(Modules(), ElementsAre("3 b", "5 c"));
  Control().Module(1)->serial = "mine";
  m_program.Write("visastub.ini", Section(3, "late"));
  EXPECT_EQ("4.0", Ask(3, "output:level? a"));
  EXPECT_EQ("none", Ask(3, "OUTPUT:LEVEL? B"));
  EXPECT_THAT(Modules(), ElementsAre("3 b", "5 mine"));

  LoadFromStub(1);
  EXPECT_THAT(Modules(), ElementsAre("3 late"));
  (void)first.ResetModule();  // of the list before: still there, with its own answers
  (void)first.GetOutputLevel('B', level);
  EXPECT_EQ(5.0F, level);
}

}  // namespace
}  // namespace quillpg
