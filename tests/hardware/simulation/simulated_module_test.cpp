#include "hardware/simulation/simulated_module.h"

#include "hardware/simulation/call_trace.h"
#include "hardware/simulation/simulated_hardware.h"
#include "support/ask.h"

#include <gmock/gmock.h>

#include <limits>
#include <sstream>
#include <string>
#include <vector>

namespace quillpg {
namespace {

int LastError(CSorrelModule& module) {
  std::string text;
  int error = -1;
  module.GetLastError(text, error);
  return error;
}

TEST(SimulatedModule, ReportsWhatItDoesNotHave) {
  CSimulatedHardware hardware;
  CSorrelModule& module = *hardware.Control().HardwareModule(0);
  const struct {
    char pod;
    int index;
    bool mask;       // inhibit mask, format, range, delay
    bool threshold;  // two indexes
    bool levels;     // four indexes
  } rows[] = {
      {'A', 0, false, true, true},   {'A', 1, true, true, true},    {'D', 2, true, false, true},
      {'D', 3, false, false, true},  {'A', 4, false, false, false}, {'A', -1, false, false, false},
      {'E', 1, false, false, false}, {' ', 1, false, false, false}, {'a', 1, false, false, false}};
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(1, row.pod) + std::to_string(row.index));
    int number = 42;
    EXPECT_EQ(row.mask, module.SetDelayRange(row.pod, row.index, 3) == S_OK);
    EXPECT_EQ(row.mask ? 0 : 1, LastError(module));
    EXPECT_EQ(row.mask, module.GetDelayRange(row.pod, row.index, number) == S_OK);
    EXPECT_EQ(row.mask ? 0 : 1, LastError(module));
    EXPECT_EQ(row.mask ? 3 : 42, number);
    EXPECT_EQ(row.threshold, module.SetInputThreshold(row.pod, row.index, 1) == S_OK);
    EXPECT_EQ(row.levels, module.SetLowLevel(row.pod, row.index, 1) == S_OK);
  }
}

TEST(SimulatedModule, RefusesWhatItsMemoryOrProgramCannotHold) {
  CSimulatedHardware hardware;
  CSorrelModule& module = *hardware.Control().HardwareModule(0);
  const std::vector<std::uint16_t> words(std::size_t{16} * 8);
  EXPECT_EQ(E_FAIL, module.DataVectorsSM(words.data(), 0, 0, 1, 0));  // no such block
  EXPECT_EQ(1, LastError(module));
  EXPECT_EQ(S_OK, module.CreateDataBlock(0, 8));  // FULL: 2 units
  EXPECT_EQ(S_OK, module.DataVectorsSM(words.data(), 0, 0, 2, 0));
  EXPECT_EQ(E_FAIL, module.DataVectorsSM(words.data(), 0, 1, 2, 0));
  EXPECT_EQ(E_FAIL, module.DataVectorsSM(words.data(), 0, 2147483647, 1, 0));
  EXPECT_EQ(E_FAIL, module.DataVectorsSM(words.data(), 0, -1, 1, 0));
  EXPECT_EQ(E_FAIL, module.DataVectorsSM(nullptr, 0, 0, 1, 0));
  EXPECT_EQ(S_OK, module.CreateDataBlock(1, 1));  // 6 short units and no full one
  EXPECT_EQ(S_OK, module.DataVectorsSM(words.data(), 1, 0, 6, 0));
  EXPECT_EQ(E_FAIL, module.DataVectorsSM(words.data(), 1, 0, 7, 0));

  EXPECT_EQ(E_FAIL, module.CreateDataBlock(2, 262140 - 8));
  EXPECT_EQ(S_OK, module.CreateDataBlock(2, 262140 - 9));
  EXPECT_EQ(S_OK, module.CreateDataBlock(0, 8));  // replaces, needs no more
  EXPECT_EQ(E_FAIL, module.CreateDataBlock(3, 2147483647));
  EXPECT_EQ(E_FAIL, module.CreateDataBlock(-1, 8));

  for (const char* text : {"0,1,0,0,0", "0,1,0,0,0,", "0,1,0,0,0,1,", "0,1,,0,0,1", "0,1,x,0,0,1",
                           "99999999999999999999,1,0,0,0,1", "0,1,0,0,0,1,0,1,0,0,0,1", ""}) {
    EXPECT_EQ(E_FAIL, module.DefineSequence(1, text)) << text;
  }
  EXPECT_EQ(S_OK, module.DefineSequence(0, ""));
  EXPECT_EQ(E_FAIL, module.DefineSequence(-1, ""));
  EXPECT_EQ(S_OK, module.DefineEvent(1, "01XXXXXX1|000000000"));
  for (const char* text : {"00000000", "000000000|", "000000000|0"}) {
    EXPECT_EQ(E_FAIL, module.DefineEvent(1, text)) << text;
  }
  EXPECT_EQ(E_FAIL, module.DefineEvent(1, nullptr));
  EXPECT_EQ(E_FAIL, module.DefineEvent(0, "000000000"));
  EXPECT_EQ(E_FAIL, module.DefineSubSequence(0, 1, "0,1"));
}

TEST(SimulatedModule, WritesEachCallAsOneLineOfTheTrace) {
  CSimulatedHardware hardware;
  std::ostringstream out;
  CCallTrace trace(out);
  CSorrelModule& module = *hardware.Control().HardwareModule(3);
  hardware.Control().AddCallSink(&trace);
  hardware.Control().LogCalls(true);
  const std::uint16_t words[16] = {0xABCD, 1, 0xF};
  float level = 0;
  std::string text;
  int error = 0;
  module.SetOutputLevel('B', 3.3F);
  module.GetOutputLevel('B', level);
  module.GetLastError(text, error);
  module.VisaStub();
  module.SetClockPeriod(6.25e-08);
  module.SetClockPeriod(std::numeric_limits<double>::infinity());
  module.SetDelay('A', 2, 1e-4);
  // Characters of two to four bytes; no characters: a lone byte, cut ones, too long a form of '/',
  // a surrogate, one past the last.
  module.SetLogDirectory("a\"b\\c\n\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
  module.SetLogDirectory("\xE9 \xC0\xAF \xED\xA0\x80 \xF4\x90\x80\x80 \xE2\x82");
  module.SetMessageRouter(nullptr);
  module.DefineEvent(1, "1XXXXXXXX");
  module.DataVectorsSM(words, 7, 0, 1, 0);
  EXPECT_EQ(R"({"module":3,"op":"SetOutputLevel","args":["B",3.3]}
{"module":3,"op":"SetClockPeriod","args":[6.25e-08]}
{"module":3,"op":"SetClockPeriod","args":[null]}
{"module":3,"op":"SetDelay","args":["A",2,1e-04]}
{"module":3,"op":"SetLogDirectory","args":["a\"b\\c\u000aé€😀"]}
{"module":3,"op":"SetLogDirectory","args":["\u00e9 \u00c0\u00af \u00ed\u00a0\u0080 \u00f4\u0090\u0080\u0080 \u00e2\u0082"]}
{"module":3,"op":"SetMessageRouter","args":[]}
{"module":3,"op":"DefineEvent","args":[1,"1XXXXXXXX"]}
{"module":3,"op":"DataVectorsSM","args":[7,0,1,0],"words":"ABCD0001000F)" +
                std::string(13 * 4, '0') + "\"}\n",
            out.str());
  EXPECT_EQ("3 SetOutputLevel(B,3.3)", hardware.Control().TakeCalls().front());
  hardware.Control().RemoveCallSink(&trace);
}

TEST(SimulatedSystem, ReplacedModulesLiveUntilTheNextReplacement) {
  CSimulatedHardware hardware;
  CSystem* system = Find(static_cast<CHardwareManager&>(hardware), &CHardwareManager::GetSystem);
  CSorrelModule* module = nullptr;
  int pos = 4;
  ASSERT_EQ(S_OK, system->GetNextSorrelModule(pos, &module));  // handed out: it stays
  system->PrepareLoadFromStub();
  system->AddModuleFromStub(0);
  system->AddModuleFromStub(1);
  system->LoadFromStubComplete();
  EXPECT_EQ(S_OK, hardware.Control().SetModules(2, true));  // nobody has seen those before
  int slot = 0;
  EXPECT_EQ(S_OK, module->GetSlotNo(slot));
  EXPECT_EQ(11, slot);
  long depth = 0;
  hardware.Control().HardwareModule(1)->GetMemoryDepth(depth);
  EXPECT_EQ(1048572, depth);
  CVXIModule* found = nullptr;
  EXPECT_EQ(E_FAIL, system->GetModuleAt(7, &found));
  EXPECT_EQ(S_OK, system->GetModuleAt(5, &found));
  EXPECT_EQ(hardware.Control().HardwareModule(1), found);
  EXPECT_EQ(S_OK, hardware.Control().SetModules(0));
  system->GetFirstSorrelModulePos(pos);
  EXPECT_EQ(-1, pos);
  EXPECT_EQ(E_FAIL, hardware.Control().SetModules(257));
}

}  // namespace
}  // namespace quillpg
