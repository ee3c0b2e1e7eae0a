#include "hardware/module.h"

#include "hardware/setting_rule.h"
#include "hardware/simulation/simulated_hardware.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

namespace quillpg {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using M = CModule;

constexpr int kFixed = 0;     // pod A: TTL/CMOS
constexpr int kEmpty = 1;     // pod B: no probe
constexpr int kVariable = 2;  // pod C

struct HARDWARE {
  HARDWARE() { CHardwareManager::Install(&library); }
  ~HARDWARE() { CHardwareManager::Install(nullptr); }
  CSimulatedHardware library;
};

// A module on simulated hardware, initialised, with the pods given.
struct CModuleFixture : HARDWARE {
  explicit CModuleFixture(const std::string& pods = std::string(SIMULATED_PODS)) {
    control.SetModules(1);
    control.Module(0)->pods = pods;
    library.Initialize();
    module.SetSorrelModule(control.HardwareModule(0));
    module.Initialize();
  }

  CSimulationControl& control = library.Control();
  CModule module;
};

std::vector<int> PodTypes(const CModule& module) {
  std::vector<int> types;
  for (int pod = 0; pod < NUM_PODS; ++pod) {
    PodType type = PodType::None;
    module.GetPodType(pod, type);
    types.push_back(static_cast<int>(type));
  }
  return types;
}

// One setting seen as a number: its two operations with the place filled in.
struct ACCESS {
  std::function<Status(CModule&, double)> set;
  std::function<double(const CModule&)> get;
};

template <typename V, typename Set, typename Get, typename... Place>
ACCESS Setting(Set set, Get get, Place... place) {
  return {
      [=](CModule& module, double value) { return (module.*set)(place..., static_cast<V>(value)); },
      [=](const CModule& module) {
        V value{};
        (module.*get)(place..., value);
        return static_cast<double>(value);
      }};
}

template <typename V>
ACCESS Pod(int pod, Status (M::*set)(int, V), Status (M::*get)(int, V&) const) {
  return Setting<V>(set, get, pod);
}

template <typename V>
ACCESS Channel(int channel, Status (M::*set)(int, VariableChannel, V),
               Status (M::*get)(int, VariableChannel, V&) const) {
  return Setting<V>(set, get, kVariable, VariableChannel{channel});
}

ACCESS Threshold(int index) {
  return Setting<float>(&M::SetInputThreshold, &M::GetInputThreshold, kVariable, index);
}

const ACCESS kLevel = Pod(kFixed, &M::SetOutputLevel, &M::GetOutputLevel);
const ACCESS kHigh = Channel(1, &M::SetHighLevel, &M::GetHighLevel);
const ACCESS kLow = Channel(1, &M::SetLowLevel, &M::GetLowLevel);
const ACCESS kDelay = Channel(1, &M::SetDelay, &M::GetDelay);
const ACCESS kDeskew = Setting<float>(&M::SetClockDeskew, &M::GetClockDeskew);

TEST(Module, EverySettingFollowsItsRule) {
  using enum SettingRule;
  struct Row {
    const char* operation;  // of the library, without Set or Get
    ACCESS access;
    double sent;
    double readBack;  // what real hardware makes of it
    SettingRule rule;
  };
  const Row rows[] = {
      {"OutputLevel", kLevel, 3.3, 3.25, KeepReadBack},
      {"StrobeInhibit", Pod(kFixed, &M::SetStrobeInhibit, &M::GetStrobeInhibit), 1, 0, Exact},
      {"InhibitByData", Pod(kFixed, &M::SetInhibitByPodD, &M::GetInhibitByPodD), 1, 0, Exact},
      {"InhibitByEvent", Pod(kFixed, &M::SetInhibitByEvent, &M::GetInhibitByEvent), 1, 0, Exact},
      {"StrobeFormat", Pod(kFixed, &M::SetStrobeTiming, &M::GetStrobeTiming), 3, 1, Exact},
      {"StrobeEnable", Pod(kFixed, &M::SetStrobeEnable, &M::GetStrobeEnable), 1, 0, Exact},
      {"InputThreshold", Threshold(1), 1.5, 1.25, KeepReadBack},
      {"OutputPolarity", Pod(kVariable, &M::SetOutputPolarity, &M::GetOutputPolarity), 0, 1, Exact},
      {"CH6OutputMode", Pod(kVariable, &M::SetCH6OutputMode, &M::GetCH6OutputMode), 4, 2, Exact},
      {"HighLevel", kHigh, 4.5, 4.25, KeepReadBack},
      {"LowLevel", kLow, -0.5, -0.75, KeepReadBack},
      {"SlewRate", Channel(1, &M::SetSlewRate, &M::GetSlewRate), 2.0, 1.75, TakeReadBack},
      {"InhibitMask", Channel(1, &M::SetInhibitMask, &M::GetInhibitMask), 0, 1, Exact},
      {"DataFormat", Channel(1, &M::SetDataFormat, &M::GetDataFormat), 2, 0, Exact},
      {"DelayRange", Channel(1, &M::SetDelayRange, &M::GetDelayRange), 3, 1, Exact},
      {"ClockDeskew", kDeskew, 1.0, 41, Exact},  // 40 steps
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.operation);
    CModuleFixture fixture;
    CModule& module = fixture.module;
    const double held = row.access.get(module);
    for (const std::string prefix : {"Set", "Get"}) {
      fixture.control.FailCall(prefix + row.operation);
      EXPECT_EQ(E_FAIL, row.access.set(module, row.sent)) << prefix;
      EXPECT_EQ(held, row.access.get(module)) << prefix;
    }
    fixture.control.Quantise(std::string("Get") + row.operation,
                             [&](double) { return row.readBack; });
    EXPECT_EQ(S_OK, row.access.set(module, row.sent));  // nothing is compared without hardware
    EXPECT_EQ(row.sent, row.access.get(module));

    CModuleFixture real;
    real.control.Mainframe().hardwarePresent = true;
    EXPECT_EQ(S_OK, row.access.set(real.module, row.sent));
    EXPECT_EQ(row.sent, row.access.get(real.module));  // 3.3 V stays 3.3, not the float sent
    row.access.set(real.module, held);
    real.control.Quantise(std::string("Get") + row.operation, [&](double) { return row.readBack; });
    EXPECT_EQ(row.rule == TakeReadBack ? S_OK : E_FAIL, row.access.set(real.module, row.sent));
    EXPECT_EQ(row.rule == Exact ? held : row.readBack, row.access.get(real.module));
  }
}

TEST(Module, SendsInTheUnitsOfTheHardware) {
  const struct Row {
    ACCESS access;
    double nanoseconds;
    const char* call;
  } rows[] = {
      {kDelay, 1e5, "0 SetDelay(C,1,1e-04)"},
      {kDeskew, 0.03F, "0 SetClockDeskew(1)"},  // cut to steps
      {kDeskew, -0.06F, "0 SetClockDeskew(-2)"},
      {kDeskew, 0.325F, "0 SetClockDeskew(12)"},  // 13 in double precision
      {kDeskew, 0.175F, "0 SetClockDeskew(7)"},   // 6 in double precision
  };
  CModuleFixture fixture;
  fixture.control.LogCalls(true);
  for (const Row& row : rows) {
    EXPECT_EQ(S_OK, row.access.set(fixture.module, row.nanoseconds));
    EXPECT_THAT(fixture.control.TakeCalls(), ElementsAre(row.call));
    EXPECT_EQ(row.nanoseconds, row.access.get(fixture.module));  // as given
  }
  EXPECT_EQ(S_OK, kDelay.set(fixture.module, 12.34567));
  EXPECT_EQ(12.34567, kDelay.get(fixture.module));
  fixture.control.Mainframe().hardwarePresent = true;  // as it reads back, to three decimals
  EXPECT_EQ(S_OK, kDelay.set(fixture.module, 12.34567));
  EXPECT_EQ(12.346, kDelay.get(fixture.module));
}

TEST(Module, RefusesPlacesAndValuesBeforeSending) {
  struct Row {
    const char* what;
    ACCESS access;
    double value;
  };
  const Row rows[] = {
      {"no probe", Pod(kEmpty, &M::SetStrobeInhibit, &M::GetStrobeInhibit), 1},
      {"pod below", Pod(-1, &M::SetStrobeTiming, &M::GetStrobeTiming), 1},
      {"pod above", Pod(4, &M::SetStrobeTiming, &M::GetStrobeTiming), 1},
      {"not variable", Pod(kFixed, &M::SetCH6OutputMode, &M::GetCH6OutputMode), 1},
      {"threshold index", Threshold(2), 1},
      {"channel above", Channel(4, &M::SetSlewRate, &M::GetSlewRate), 1},
      {"delay on channel 0", Channel(0, &M::SetDelay, &M::GetDelay), 1},
      {"mask on channel 3", Channel(3, &M::SetInhibitMask, &M::GetInhibitMask), 1},
      {"level no number", kLevel, NAN},
      {"level beyond float", kLevel, 1e300},
      {"delay infinite", kDelay, HUGE_VAL},
      {"deskew no number", kDeskew, NAN},
      {"deskew beyond 32 bits", kDeskew, 1e9},
  };
  CModuleFixture fixture;
  fixture.control.LogCalls(true);
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    const double held = row.access.get(fixture.module);
    EXPECT_EQ(E_FAIL, row.access.set(fixture.module, row.value));
    EXPECT_EQ(held, row.access.get(fixture.module));
    EXPECT_THAT(fixture.control.TakeCalls(), ElementsAre());
  }
}

TEST(Module, AHighLevelMayMoveTheLowOne) {
  CModuleFixture fixture;
  fixture.control.Mainframe().hardwarePresent = true;
  fixture.control.Quantise("GetLowLevel", [](double) { return 0.5; });
  EXPECT_EQ(S_OK, kHigh.set(fixture.module, 4));
  EXPECT_EQ(0.5, kLow.get(fixture.module));
  fixture.control.FailCall("GetLowLevel");  // after the high level was stored
  EXPECT_EQ(E_FAIL, kHigh.set(fixture.module, 5));
  EXPECT_EQ(5, kHigh.get(fixture.module));

  fixture.control.Quantise("GetHighLevel", [](double) { return 4.25; });
  fixture.control.Quantise("GetLowLevel", [](double) { return 0.75; });
  EXPECT_EQ(E_FAIL, kHigh.set(fixture.module, 6));  // differs: stored as read, and the low one too
  EXPECT_EQ(0.75, kLow.get(fixture.module));
  fixture.control.Quantise("GetHighLevel", [](double) { return NAN; });
  EXPECT_EQ(E_FAIL, kHigh.set(fixture.module, 6));
  EXPECT_EQ(4.25, kHigh.get(fixture.module));
}

TEST(Module, ReadsPodTypes) {
  struct Row {
    const char* pods;
    std::vector<int> types;
  };
  const Row rows[] = {
      {"TTL/CMOS,None,Variable,ECL", {1, 0, 4, 3}},
      {"\"LVDS\",\"v3_cmos\",PECL,LVPECL", {6, 2, 7, 8}},  // quotes go, case is ignored
      {"3VCMOS, ECL,,LVCMOS", {-1, -1, -1, 5}},            // the printed word; a blank; nothing
      {"ECL,ECL,ECL,ECL,TTL/CMOS", {3, 3, 3, 3}},
      {"", {0, 0, 0, 0}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.pods);
    EXPECT_THAT(PodTypes(CModuleFixture(row.pods).module), ElementsAreArray(row.types));
  }
  CModuleFixture fixture;
  fixture.control.Module(0)->pods = "ECL,ECL";
  EXPECT_EQ(S_OK, fixture.module.UpdateProbes());
  EXPECT_THAT(PodTypes(fixture.module), ElementsAre(3, 3, 4, 3));
}

TEST(Module, InitializeReadsTheHardware) {
  CModuleFixture fixture("LVCMOS,ECL,Variable,None");
  CModule& module = fixture.module;
  const ACCESS enable = Pod(0, &M::SetStrobeEnable, &M::GetStrobeEnable);
  EXPECT_EQ(3.3, kLevel.get(module));  // simulated LVCMOS
  EXPECT_EQ(5.0, Pod(1, &M::SetOutputLevel, &M::GetOutputLevel).get(module));
  EXPECT_EQ(0, enable.get(module));  // not read: the hardware has 1
  EXPECT_EQ(-2.0, Threshold(1).get(module));
  EXPECT_EQ(2.5, kHigh.get(module));
  EXPECT_EQ(1e5, kDelay.get(module));
  EXPECT_EQ(-1, Channel(0, &M::SetDelay, &M::GetDelay).get(module));  // the marks survive
  EXPECT_EQ(-1, Channel(3, &M::SetDataFormat, &M::GetDataFormat).get(module));

  EXPECT_EQ(S_OK, module.SetChannelName(3, 15, "CLK"));
  EXPECT_EQ(S_OK, module.SetClockDeskew(1.0F));
  EXPECT_EQ(S_OK, enable.set(module, 1));
  fixture.control.FailCall("GetPodTypes");
  EXPECT_EQ(S_OK, module.Initialize());
  std::string name = "?";
  EXPECT_EQ(S_OK, module.GetChannelName(3, 15, name));
  EXPECT_EQ("", name);
  EXPECT_EQ(0.0, kDeskew.get(module));
  EXPECT_EQ(0, enable.get(module));
  EXPECT_THAT(PodTypes(module), ElementsAre(5, 3, 4, 0));

  fixture.control.Module(0)->simulated = false;
  EXPECT_EQ(S_OK, module.Initialize());
  EXPECT_EQ(5.0, kLevel.get(module));
}

// The argument decides what is sent; the setters inside look at the stored type.
TEST(Module, SendsWhatAProbeOfTheTypeHas) {
  using Calls = std::vector<std::string>;
  const Calls all = {"0 SetOutputLevel(A,5)",   "0 SetStrobeInhibit(A,0)",
                     "0 SetInhibitByData(A,0)", "0 SetInhibitByEvent(A,0)",
                     "0 SetStrobeFormat(A,0)",  "0 SetStrobeEnable(A,0)"};
  const struct Row {
    PodType type;
    int pod;
    int first;  // of `all`, and how many
    int count;
  } rows[] = {
      {PodType::None, kFixed, 0, 0},
      {PodType::TtlCmos, kFixed, 0, 6},
      {PodType::LvCmos, kFixed, 0, 6},
      {PodType::Lvds, kFixed, 1, 5},
      {PodType::Unknown, kFixed, 4, 2},
      {PodType::Ecl, kEmpty, 0, 0},  // nothing is plugged in: every setter refuses
      {PodType::Variable, kFixed, 2, 2},
  };
  CModuleFixture fixture;
  fixture.control.LogCalls(true);
  for (const Row& row : rows) {
    SCOPED_TRACE(static_cast<int>(row.type));
    EXPECT_EQ(S_OK, fixture.module.UpdateProbeValues(row.pod, row.type));
    const auto first = all.begin() + row.first;
    EXPECT_EQ(Calls(first, first + row.count), fixture.control.TakeCalls());
  }
  EXPECT_EQ(E_FAIL, fixture.module.UpdateProbeValues(4, PodType::Ecl));

  EXPECT_EQ(S_OK, fixture.module.UpdateProbeValues(kVariable, PodType::Variable));
  const Calls calls = fixture.control.TakeCalls();
  ASSERT_EQ(5U + 4 * 3 + 2 * 4, calls.size());  // mask, format, range, delay: channels 1 and 2
  EXPECT_EQ("0 SetOutputPolarity(C,1)", calls[4]);
  EXPECT_EQ("0 SetDelay(C,1,1e-04)", calls[14]);
}

TEST(Module, SendsTheLowLevelThatTheModelHeldBeforeTheHighOneWent) {
  CModuleFixture fixture;
  EXPECT_EQ(S_OK, kLow.set(fixture.module, -1.5));
  fixture.control.HardwareModule(0)->ResetModule();
  fixture.control.Mainframe().hardwarePresent = true;
  EXPECT_EQ(S_OK, fixture.module.UpdateProbeValues(kVariable, PodType::Variable));
  EXPECT_EQ(-1.5, kLow.get(fixture.module));
}

TEST(Module, WithoutHardwareSettersFailAndGettersGiveDefaults) {
  CModule module;
  long depth = 0;
  EXPECT_EQ(E_FAIL, module.UpdateProbes());
  EXPECT_EQ(E_FAIL, kLevel.set(module, 2.0));
  EXPECT_EQ(E_FAIL, kDeskew.set(module, 0.0));
  EXPECT_EQ(S_OK, module.Initialize());
  EXPECT_EQ(5.5, kLevel.get(module));
  EXPECT_EQ(S_OK, module.GetMemoryDepth(depth));
  EXPECT_EQ(262140, depth);
  EXPECT_EQ(S_OK, module.SetChannelName(0, 0, "D0"));  // no hardware needed
  EXPECT_EQ(E_FAIL, module.SetChannelName(0, 16, "D16"));
}

TEST(Module, CopiesTakeTheHardwareAlone) {
  CModuleFixture fixture;
  CModule target;
  CSorrelModule* hardware = nullptr;
  std::string name;
  target.SetChannelName(0, 0, "kept");
  target = fixture.module;
  target.GetSorrelModule(&hardware);
  target.GetChannelName(0, 0, name);
  EXPECT_EQ(fixture.control.HardwareModule(0), hardware);
  EXPECT_EQ("kept", name);
  EXPECT_THAT(PodTypes(CModule(fixture.module)), ElementsAre(0, 0, 0, 0));
}

TEST(ProbeSetup, ClampsTheLevelByTheTypeThatHasLimits) {
  const struct Row {
    PodType held;
    PodType inFile;
    double level;
    double clamped;  // single precision widened
  } rows[] = {
      {PodType::LvCmos, PodType::LvCmos, 5.0, 3.3F}, {PodType::LvCmos, PodType::TtlCmos, 0.5, 1.2F},
      {PodType::TtlCmos, PodType::LvCmos, 1.5, 2.0}, {PodType::None, PodType::LvCmos, 5.0, 3.3F},
      {PodType::Ecl, PodType::Lvds, 9.0, 9.0},       {PodType::LvCmos, PodType::LvCmos, NAN, NAN},
  };
  for (const Row& row : rows) {
    PROBE_SETUP probe;
    probe.podType = row.held;
    probe.outputLevel = row.level;
    EXPECT_EQ(S_OK, probe.CompareAndUpdateOutputLevel(row.inFile));
    EXPECT_THAT(probe.outputLevel, testing::NanSensitiveDoubleEq(row.clamped)) << row.level;
  }
}

}  // namespace
}  // namespace quillpg
