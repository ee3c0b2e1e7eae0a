#include "hardware/module.h"

#include "hardware/setting_rule.h"
#include "hardware/simulation/simulated_hardware.h"
#include "support/ask.h"

#include <gmock/gmock.h>

#include <cmath>
#include <functional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace quillpg {
namespace {

using testing::ElementsAre;
using M = CModule;

constexpr int kFixed = 0;     // pod A: TTL/CMOS
constexpr int kEmpty = 1;     // pod B: no probe
constexpr int kVariable = 2;  // pod C

// A module on simulated hardware, initialised, with the pods given.
struct CModuleFixture {
  explicit CModuleFixture(const std::string& pods = std::string(SIMULATED_PODS)) {
    CHardwareManager::Install(&library);
    control.SetModules(1);
    control.Module(0)->pods = pods;
    library.Initialize();
    module.SetSorrelModule(control.HardwareModule(0));
    module.Initialize();
  }

  ~CModuleFixture() { CHardwareManager::Install(nullptr); }

  CSimulatedHardware library;
  CSimulationControl& control = library.Control();
  CModule module;
};

std::vector<int> PodTypes(const CModule& module) {
  std::vector<int> types;
  for (int pod = 0; pod < NUM_PODS; ++pod) {
    types.push_back(static_cast<int>(Ask(module, &M::GetPodType, pod)));
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
  const struct {
    const char* operation;  // of the library, without Set or Get
    ACCESS access;
    double sent;
    double readBack;  // what real hardware makes of it
    SettingRule rule;
  } rows[] = {
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
  for (const auto& row : rows) {
    SCOPED_TRACE(row.operation);
    CModuleFixture fixture;
    CModule& module = fixture.module;
    const double held = row.access.get(module);
    for (const std::string prefix : {"Set", "Get"}) {
      fixture.control.FailCall(prefix + row.operation);
      EXPECT_EQ(E_FAIL, row.access.set(module, row.sent)) << prefix;
      EXPECT_EQ(held, row.access.get(module)) << prefix;
    }
    fixture.control.Mainframe().hardwarePresent = true;
    EXPECT_EQ(S_OK, row.access.set(module, row.sent));
    EXPECT_EQ(row.sent, row.access.get(module));  // 3.3 V stays 3.3, not the float sent
    row.access.set(module, held);
    const std::string get = std::string("Get") + row.operation;
    fixture.control.Quantise(get, [&](double) { return row.readBack; });
    EXPECT_EQ(row.rule == TakeReadBack ? S_OK : E_FAIL, row.access.set(module, row.sent));
    EXPECT_EQ(row.rule == Exact ? held : row.readBack, row.access.get(module));
    fixture.control.Mainframe().hardwarePresent = false;  // then nothing is compared
    EXPECT_EQ(S_OK, row.access.set(module, row.sent));
    EXPECT_EQ(row.sent, row.access.get(module));
  }
}

TEST(Module, SendsInTheUnitsOfTheHardware) {
  const std::tuple<ACCESS, double, const char*> rows[] = {
      {kDelay, 1e5, "0 SetDelay(C,1,1e-04)"},
      {kDeskew, 0.03F, "0 SetClockDeskew(1)"},  // cut to steps
      {kDeskew, -0.06F, "0 SetClockDeskew(-2)"},
      {kDeskew, 0.325F, "0 SetClockDeskew(12)"},  // 13 in double precision
      {kDeskew, 0.175F, "0 SetClockDeskew(7)"},   // 6 in double precision
  };
  CModuleFixture fixture;
  fixture.control.LogCalls(true);
  for (const auto& [access, nanoseconds, call] : rows) {
    EXPECT_EQ(S_OK, access.set(fixture.module, nanoseconds));
    EXPECT_THAT(fixture.control.TakeCalls(), ElementsAre(call));
    EXPECT_EQ(nanoseconds, access.get(fixture.module));  // as given
  }
  EXPECT_EQ(S_OK, kDelay.set(fixture.module, 12.34567));
  EXPECT_EQ(12.34567, kDelay.get(fixture.module));
  fixture.control.Mainframe().hardwarePresent = true;  // as it reads back, to three decimals
  EXPECT_EQ(S_OK, kDelay.set(fixture.module, 12.34567));
  EXPECT_EQ(12.346, kDelay.get(fixture.module));
}

TEST(Module, RefusesPlacesAndValuesBeforeSending) {
  const std::pair<ACCESS, double> rows[] = {
      {Pod(kEmpty, &M::SetStrobeInhibit, &M::GetStrobeInhibit), 1},  // no probe
      {Pod(4, &M::SetStrobeTiming, &M::GetStrobeTiming), 1},
      {Pod(kFixed, &M::SetCH6OutputMode, &M::GetCH6OutputMode), 1},  // not variable
      {Threshold(2), 1},
      {Channel(3, &M::SetInhibitMask, &M::GetInhibitMask), 1},  // channels 1 and 2 alone have one
      {kLevel, NAN},
      {kDeskew, NAN},
      {kDeskew, 1e9},  // beyond 32 bits of steps
  };
  CModuleFixture fixture;
  fixture.control.LogCalls(true);
  for (const auto& [access, value] : rows) {
    const double held = access.get(fixture.module);
    EXPECT_EQ(E_FAIL, access.set(fixture.module, value)) << value;
    EXPECT_EQ(held, access.get(fixture.module));
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
}

TEST(Module, ReadsPodTypes) {
  const std::pair<const char*, std::vector<int>> rows[] = {
      {"\"LVDS\",\"v3_cmos\",PECL,LVPECL", {6, 2, 7, 8}},  // quotes go, case is ignored
      {"3VCMOS, ECL,,LVCMOS", {-1, -1, -1, 5}},            // the printed word; a blank; nothing
      {"ECL,ECL,ECL,ECL,TTL/CMOS", {3, 3, 3, 3}},
      {"", {0, 0, 0, 0}},
  };
  for (const auto& [pods, types] : rows) {
    EXPECT_EQ(PodTypes(CModuleFixture(pods).module), types) << pods;
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
  EXPECT_EQ(1e5, kDelay.get(module));
  EXPECT_EQ(-1, Channel(0, &M::SetDelay, &M::GetDelay).get(module));  // the mark survives

  EXPECT_EQ(S_OK, module.SetClockDeskew(1.0F));
  EXPECT_EQ(S_OK, enable.set(module, 1));
  fixture.control.FailCall("GetPodTypes");
  EXPECT_EQ(S_OK, module.Initialize());
  EXPECT_EQ(0.0, kDeskew.get(module));
  EXPECT_EQ(0, enable.get(module));
  EXPECT_THAT(PodTypes(module), ElementsAre(5, 3, 4, 0));
}

TEST(Module, SendsWhatAProbeOfTheTypeHas) {
  CModuleFixture fixture;
  fixture.control.LogCalls(true);
  EXPECT_EQ(S_OK, fixture.module.UpdateProbeValues(kFixed, PodType::Lvds));
  EXPECT_THAT(
      fixture.control.TakeCalls(),
      ElementsAre("0 SetStrobeInhibit(A,0)", "0 SetInhibitByData(A,0)", "0 SetInhibitByEvent(A,0)",
                  "0 SetStrobeFormat(A,0)", "0 SetStrobeEnable(A,0)"));
  EXPECT_EQ(S_OK, fixture.module.UpdateProbeValues(kEmpty, PodType::Ecl));  // setters refuse
  EXPECT_THAT(fixture.control.TakeCalls(), ElementsAre());
  EXPECT_EQ(E_FAIL, fixture.module.UpdateProbeValues(4, PodType::Ecl));

  EXPECT_EQ(S_OK, kLow.set(fixture.module, -1.5));  // sent as held before the high level went
  fixture.control.HardwareModule(0)->ResetModule();
  fixture.control.Mainframe().hardwarePresent = true;
  (void)fixture.control.TakeCalls();
  EXPECT_EQ(S_OK, fixture.module.UpdateProbeValues(kVariable, PodType::Variable));
  EXPECT_EQ(-1.5, kLow.get(fixture.module));
}

TEST(Module, WithoutHardwareSettersFailAndGettersGiveDefaults) {
  CModule module;
  EXPECT_EQ(E_FAIL, kLevel.set(module, 2.0));
  EXPECT_EQ(E_FAIL, kDeskew.set(module, 0.0));
  EXPECT_EQ(5.5, kLevel.get(module));
  EXPECT_EQ(S_OK, module.SetChannelName(0, 0, "D0"));  // no hardware needed
}

TEST(Module, CopiesTakeTheHardwareAlone) {
  CModuleFixture fixture;
  const CModule copy(fixture.module);
  EXPECT_EQ(fixture.control.HardwareModule(0), Find(copy, &CModule::GetSorrelModule));
  EXPECT_THAT(PodTypes(copy), ElementsAre(0, 0, 0, 0));
}

TEST(ProbeSetup, ClampsTheLevelByTheTypeThatHasLimits) {
  const std::tuple<PodType, PodType, double, double> rows[] = {
      // Held, in the file, level, clamped: single precision widened.
      {PodType::LvCmos, PodType::TtlCmos, 0.5, 1.2F},
      {PodType::TtlCmos, PodType::LvCmos, 1.5, 2.0},
      {PodType::None, PodType::LvCmos, 5.0, 3.3F},
      {PodType::Ecl, PodType::Lvds, 9.0, 9.0},
  };
  for (const auto& [held, inFile, level, clamped] : rows) {
    PROBE_SETUP probe;
    probe.podType = held;
    probe.outputLevel = level;
    EXPECT_EQ(S_OK, probe.CompareAndUpdateOutputLevel(inFile));
    EXPECT_EQ(clamped, probe.outputLevel);
  }
}

}  // namespace
}  // namespace quillpg
