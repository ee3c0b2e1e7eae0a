#include "hardware/module.h"

#include "hardware/simulation/simulated_hardware.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <vector>

namespace quillpg {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr int kFixed = 0;     // pod A: TTL/CMOS
constexpr int kEmpty = 1;     // pod B: no probe
constexpr int kVariable = 2;  // pod C
constexpr auto kChannel1 = VariableChannel::Channel1;

// A module on simulated hardware, initialised, with the pods given.
class CModuleFixture {
 public:
  explicit CModuleFixture(const std::string& pods = std::string(SIMULATED_PODS)) {
    CHardwareManager::Install(&m_hardware);
    Control().SetModules(1);
    Control().Module(0)->pods = pods;
    m_hardware.Initialize();
    module.SetSorrelModule(Control().HardwareModule(0));
    module.Initialize();
  }
  ~CModuleFixture() { CHardwareManager::Install(nullptr); }

  CSimulationControl& Control() { return m_hardware.Control(); }

 private:
  CSimulatedHardware m_hardware;

 public:
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

// One setting seen as a number: its two operations with the place already filled in.
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
ACCESS OfPod(Status (CModule::*set)(int, V), Status (CModule::*get)(int, V&) const, int pod) {
  return Setting<V>(set, get, pod);
}

template <typename V>
ACCESS OfChannel(Status (CModule::*set)(int, VariableChannel, V),
                 Status (CModule::*get)(int, VariableChannel, V&) const,
                 VariableChannel channel = kChannel1) {
  return Setting<V>(set, get, kVariable, channel);
}

ACCESS Threshold(int index) {
  return Setting<float>(&CModule::SetInputThreshold, &CModule::GetInputThreshold, kVariable, index);
}

using M = CModule;

TEST(Module, EverySettingFollowsItsRule) {
  struct Row {
    const char* operation;  // of the library, without Set or Get
    ACCESS access;
    double sent;
    double readBack;  // what real hardware makes of it, in the unit of the library
    Status status;    // then
    double stored;    // then; kNaN: what was held before
  };
  const Row rows[] = {
      {"OutputLevel", OfPod(&M::SetOutputLevel, &M::GetOutputLevel, kFixed), 3.3, 3.25, E_FAIL,
       3.25},
      {"StrobeInhibit", OfPod(&M::SetStrobeInhibit, &M::GetStrobeInhibit, kFixed), 1, 0, E_FAIL,
       kNaN},
      {"InhibitByData", OfPod(&M::SetInhibitByPodD, &M::GetInhibitByPodD, kFixed), 1, 0, E_FAIL,
       kNaN},
      {"InhibitByEvent", OfPod(&M::SetInhibitByEvent, &M::GetInhibitByEvent, kFixed), 1, 0, E_FAIL,
       kNaN},
      {"StrobeFormat", OfPod(&M::SetStrobeTiming, &M::GetStrobeTiming, kFixed), 3, 1, E_FAIL, kNaN},
      {"StrobeEnable", OfPod(&M::SetStrobeEnable, &M::GetStrobeEnable, kFixed), 1, 0, E_FAIL, kNaN},
      {"InputThreshold", Threshold(1), 1.5, 1.25, E_FAIL, 1.25},
      {"OutputPolarity", OfPod(&M::SetOutputPolarity, &M::GetOutputPolarity, kVariable), 0, 1,
       E_FAIL, kNaN},
      {"CH6OutputMode", OfPod(&M::SetCH6OutputMode, &M::GetCH6OutputMode, kVariable), 4, 2, E_FAIL,
       kNaN},
      {"HighLevel", OfChannel(&M::SetHighLevel, &M::GetHighLevel), 4.5, 4.25, E_FAIL, 4.25},
      {"LowLevel", OfChannel(&M::SetLowLevel, &M::GetLowLevel), -0.5, -0.75, E_FAIL, -0.75},
      {"SlewRate", OfChannel(&M::SetSlewRate, &M::GetSlewRate), 2.0, 1.75, S_OK, 1.75},
      {"InhibitMask", OfChannel(&M::SetInhibitMask, &M::GetInhibitMask), 0, 1, E_FAIL, kNaN},
      {"DataFormat", OfChannel(&M::SetDataFormat, &M::GetDataFormat), 2, 0, E_FAIL, kNaN},
      {"DelayRange", OfChannel(&M::SetDelayRange, &M::GetDelayRange), 3, 1, E_FAIL, kNaN},
      {"Delay", OfChannel(&M::SetDelay, &M::GetDelay), 12.34567, 1.23456e-8, S_OK, 12.346},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.operation);
    const std::string set = std::string("Set") + row.operation;
    const std::string get = std::string("Get") + row.operation;
    CModuleFixture fixture;
    CModule& module = fixture.module;
    const double held = row.access.get(module);

    for (const std::string& failing : {set, get}) {
      fixture.Control().FailCall(failing);
      EXPECT_EQ(E_FAIL, row.access.set(module, row.sent)) << failing;
      EXPECT_EQ(held, row.access.get(module)) << failing;
    }

    fixture.Control().Mainframe().hardwarePresent = true;
    fixture.Control().Quantise(get, [&](double) { return row.readBack; });
    EXPECT_EQ(row.status, row.access.set(module, row.sent));
    EXPECT_EQ(std::isnan(row.stored) ? held : row.stored, row.access.get(module));

    fixture.Control().Mainframe().hardwarePresent = false;  // nothing is compared
    EXPECT_EQ(S_OK, row.access.set(module, row.sent));
    EXPECT_NEAR(row.sent, row.access.get(module), 0.0);
  }
}

TEST(Module, AnOutputLevelThatFloatCannotHoldStaysAsGiven) {
  CModuleFixture fixture;
  fixture.Control().Mainframe().hardwarePresent = true;
  EXPECT_EQ(S_OK, fixture.module.SetOutputLevel(kFixed, 3.3));
  double volts = 0;
  fixture.module.GetOutputLevel(kFixed, volts);
  EXPECT_EQ(3.3, volts);
}

TEST(Module, RefusesPlacesAndValuesBeforeSending) {
  struct Row {
    const char* what;
    ACCESS access;
    double value;
  };
  const Row rows[] = {
      {"no probe", OfPod(&M::SetStrobeInhibit, &M::GetStrobeInhibit, kEmpty), 1},
      {"pod below", OfPod(&M::SetStrobeTiming, &M::GetStrobeTiming, -1), 1},
      {"pod above", OfPod(&M::SetStrobeTiming, &M::GetStrobeTiming, 4), 1},
      {"not variable", OfPod(&M::SetCH6OutputMode, &M::GetCH6OutputMode, kFixed), 1},
      {"level no number", OfPod(&M::SetOutputLevel, &M::GetOutputLevel, kFixed), kNaN},
      {"level beyond float", OfPod(&M::SetOutputLevel, &M::GetOutputLevel, kFixed), 1e300},
      {"threshold index", Threshold(2), 1},
      {"channel above", OfChannel(&M::SetSlewRate, &M::GetSlewRate, VariableChannel{4}), 1},
      {"slew infinite", OfChannel(&M::SetSlewRate, &M::GetSlewRate), HUGE_VAL},
      {"delay on channel 0", OfChannel(&M::SetDelay, &M::GetDelay, VariableChannel::Channel0), 1},
      {"mask on channel 3",
       OfChannel(&M::SetInhibitMask, &M::GetInhibitMask, VariableChannel::Channel3), 1},
      {"delay infinite", OfChannel(&M::SetDelay, &M::GetDelay), HUGE_VAL},
      {"deskew no number", Setting<float>(&M::SetClockDeskew, &M::GetClockDeskew), kNaN},
      {"deskew beyond 32 bits", Setting<float>(&M::SetClockDeskew, &M::GetClockDeskew), 1e9},
  };
  CModuleFixture fixture;
  fixture.Control().LogCalls(true);
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    const double held = row.access.get(fixture.module);
    EXPECT_EQ(E_FAIL, row.access.set(fixture.module, row.value));
    EXPECT_EQ(held, row.access.get(fixture.module));
    EXPECT_THAT(fixture.Control().TakeCalls(), ElementsAre());
  }
}

TEST(Module, CutsTheDeskewToStepsAndStoresItAsGiven) {
  struct Row {
    float nanoseconds;
    const char* call;
  };
  const Row rows[] = {
      {0.03F, "0 SetClockDeskew(1)"},
      {0.325F, "0 SetClockDeskew(12)"},  // 13 in double precision
      {0.175F, "0 SetClockDeskew(7)"},   // 6 in double precision
      {-0.06F, "0 SetClockDeskew(-2)"},
  };
  CModuleFixture fixture;
  fixture.Control().Mainframe().hardwarePresent = true;
  fixture.Control().LogCalls(true);
  for (const Row& row : rows) {
    SCOPED_TRACE(row.call);
    EXPECT_EQ(S_OK, fixture.module.SetClockDeskew(row.nanoseconds));
    EXPECT_THAT(fixture.Control().TakeCalls(), ElementsAre(row.call));
    float stored = 0;
    fixture.module.GetClockDeskew(stored);
    EXPECT_EQ(row.nanoseconds, stored);
  }
  fixture.Control().Quantise("GetClockDeskew", [](double steps) { return steps + 1; });
  EXPECT_EQ(E_FAIL, fixture.module.SetClockDeskew(1.0F));
}

TEST(Module, AHighLevelMayMoveTheLowOne) {
  CModuleFixture fixture;
  const ACCESS high = OfChannel(&M::SetHighLevel, &M::GetHighLevel);
  const ACCESS low = OfChannel(&M::SetLowLevel, &M::GetLowLevel);
  fixture.Control().Mainframe().hardwarePresent = true;
  fixture.Control().Quantise("GetLowLevel", [](double) { return 0.5; });
  EXPECT_EQ(S_OK, high.set(fixture.module, 4));
  EXPECT_EQ(0.5, low.get(fixture.module));

  fixture.Control().FailCall("GetLowLevel");  // after the high level was stored
  EXPECT_EQ(E_FAIL, high.set(fixture.module, 5));
  EXPECT_EQ(5, high.get(fixture.module));
}

TEST(Module, ReadsPodTypesAndSettings) {
  struct Row {
    const char* pods;
    std::vector<int> types;
  };
  const Row rows[] = {
      {"TTL/CMOS,None,Variable,ECL", {1, 0, 4, 3}},
      {"\"LVDS\",\"v3_cmos\",PECL,LVPECL", {6, 2, 7, 8}},  // quotes go, case is ignored
      {"3VCMOS, ECL,,LVCMOS", {-1, -1, -1, 5}},            // the printed word; a blank; nothing
      {"ECL,ECL,ECL,ECL,TTL/CMOS", {3, 3, 3, 3}},
      {"ECL", {3, 0, 0, 0}},
      {"", {0, 0, 0, 0}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.pods);
    EXPECT_THAT(PodTypes(CModuleFixture(row.pods).module), ElementsAreArray(row.types));
  }

  CModuleFixture fixture("LVCMOS,ECL,Variable,None");
  CModule& module = fixture.module;
  EXPECT_EQ(3.3, OfPod(&M::SetOutputLevel, &M::GetOutputLevel, 0).get(module));  // simulated
  EXPECT_EQ(5.0, OfPod(&M::SetOutputLevel, &M::GetOutputLevel, 1).get(module));
  EXPECT_EQ(0, OfPod(&M::SetStrobeEnable, &M::GetStrobeEnable, 0).get(module));  // not read
  EXPECT_EQ(-2.0, Threshold(1).get(module));
  EXPECT_EQ(2.5, OfChannel(&M::SetHighLevel, &M::GetHighLevel).get(module));
  EXPECT_EQ(1e5, OfChannel(&M::SetDelay, &M::GetDelay).get(module));
  EXPECT_EQ(1, OfChannel(&M::SetDataFormat, &M::GetDataFormat).get(module));
  for (const VariableChannel marked : {VariableChannel::Channel0, VariableChannel::Channel3}) {
    EXPECT_EQ(-1, OfChannel(&M::SetDelay, &M::GetDelay, marked).get(module));
    EXPECT_EQ(-1, OfChannel(&M::SetInhibitMask, &M::GetInhibitMask, marked).get(module));
  }

  fixture.Control().Module(0)->pods = "ECL,ECL";
  EXPECT_EQ(S_OK, module.UpdateProbes());
  EXPECT_THAT(PodTypes(module), ElementsAre(3, 3, 4, 0));
  int count = 0;
  EXPECT_EQ(S_OK, module.GetVariableProbeCount(count));
  EXPECT_EQ(1, count);
}

TEST(Module, InitializeForgetsSettingsAndNamesButNoPodType) {
  CModuleFixture fixture;
  CModule& module = fixture.module;
  EXPECT_EQ(S_OK, module.SetChannelName(3, 15, "CLK"));
  EXPECT_EQ(S_OK, module.SetClockDeskew(1.0F));
  EXPECT_EQ(S_OK, module.SetStrobeEnable(kFixed, 1));
  fixture.Control().FailCall("GetPodTypes");
  EXPECT_EQ(S_OK, module.Initialize());
  std::string name = "?";
  float deskew = 1;
  EXPECT_EQ(S_OK, module.GetChannelName(3, 15, name));
  EXPECT_EQ(S_OK, module.GetClockDeskew(deskew));
  EXPECT_EQ("", name);
  EXPECT_EQ(0.0F, deskew);
  EXPECT_EQ(0, OfPod(&M::SetStrobeEnable, &M::GetStrobeEnable, kFixed).get(module));
  EXPECT_THAT(PodTypes(module), ElementsAre(1, 0, 4, 3));
}

// The argument decides what is sent; the setters inside look at the stored type.
TEST(Module, SendsWhatAProbeOfTheTypeHas) {
  struct Row {
    PodType type;
    int pod;
    std::vector<std::string> calls;
  };
  const std::vector<std::string> strobe = {"0 SetStrobeFormat(A,0)", "0 SetStrobeEnable(A,0)"};
  const std::vector<std::string> lvds = {"0 SetStrobeInhibit(A,0)", "0 SetInhibitByData(A,0)",
                                         "0 SetInhibitByEvent(A,0)", strobe[0], strobe[1]};
  std::vector<std::string> ttl = lvds;
  ttl.insert(ttl.begin(), "0 SetOutputLevel(A,5)");
  const Row rows[] = {
      {PodType::None, kFixed, {}},
      {PodType::TtlCmos, kFixed, ttl},
      {PodType::LvCmos, kFixed, ttl},
      {PodType::Lvds, kFixed, lvds},
      {PodType::Ecl, kFixed, strobe},
      {PodType::Unknown, kFixed, strobe},
      {PodType::Ecl, kEmpty, {}},  // nothing is plugged in: every setter refuses
      {PodType::Variable, kFixed, {lvds[1], lvds[2]}},
  };
  CModuleFixture fixture;
  fixture.Control().LogCalls(true);
  for (const Row& row : rows) {
    SCOPED_TRACE(static_cast<int>(row.type));
    EXPECT_EQ(S_OK, fixture.module.UpdateProbeValues(row.pod, row.type));
    EXPECT_THAT(fixture.Control().TakeCalls(), ElementsAreArray(row.calls));
  }
  EXPECT_EQ(E_FAIL, fixture.module.UpdateProbeValues(4, PodType::Ecl));

  EXPECT_EQ(S_OK, fixture.module.UpdateProbeValues(kVariable, PodType::Variable));
  const std::vector<std::string> calls = fixture.Control().TakeCalls();
  ASSERT_EQ(5U + 4 * 3 + 2 * 4, calls.size());  // mask, format, range, delay: channels 1 and 2
  EXPECT_EQ("0 SetOutputPolarity(C,1)", calls[4]);
  EXPECT_EQ("0 SetHighLevel(C,0,2)", calls[5]);
  EXPECT_EQ("0 SetDelay(C,1,0.0001)", calls[14]);
}

TEST(Module, SendsTheLowLevelThatTheModelHeldBeforeTheHighOneWent) {
  CModuleFixture fixture;
  const ACCESS low = OfChannel(&M::SetLowLevel, &M::GetLowLevel);
  EXPECT_EQ(S_OK, low.set(fixture.module, -1.5));
  fixture.Control().HardwareModule(0)->ResetModule();
  fixture.Control().Mainframe().hardwarePresent = true;
  EXPECT_EQ(S_OK, fixture.module.UpdateProbeValues(kVariable, PodType::Variable));
  EXPECT_EQ(-1.5, low.get(fixture.module));
}

TEST(Module, WithoutHardwareSettersFailAndGettersGiveDefaults) {
  CModule module;
  EXPECT_EQ(E_FAIL, module.ResetModule());
  EXPECT_EQ(E_FAIL, module.UpdateProbes());
  EXPECT_EQ(E_FAIL, module.SetOutputLevel(0, 2.0));
  EXPECT_EQ(E_FAIL, module.SetClockDeskew(0.0F));
  EXPECT_EQ(S_OK, module.Initialize());
  EXPECT_EQ(S_OK, module.UpdateModuleParams());
  double level = 0;
  long depth = 0;
  EXPECT_EQ(S_OK, module.GetOutputLevel(3, level));
  EXPECT_EQ(S_OK, module.GetMemoryDepth(depth));
  EXPECT_EQ(5.5, level);
  EXPECT_EQ(262140, depth);
  EXPECT_EQ(E_FAIL, module.GetMinOutputLevel(0, level));  // no type, no limits
  EXPECT_EQ(S_OK, module.SetChannelName(0, 0, "D0"));     // no hardware needed
  EXPECT_EQ(E_FAIL, module.SetChannelName(0, 16, "D16"));
}

TEST(Module, CopiesTakeTheHardwareAlone) {
  CModuleFixture fixture;
  CModule target;
  target.SetChannelName(0, 0, "kept");
  fixture.module.SetChannelName(0, 0, "not copied");
  target = fixture.module;
  CSorrelModule* hardware = nullptr;
  std::string name;
  target.GetSorrelModule(&hardware);
  target.GetChannelName(0, 0, name);
  EXPECT_EQ(fixture.Control().HardwareModule(0), hardware);
  EXPECT_EQ("kept", name);
  EXPECT_THAT(PodTypes(CModule(fixture.module)), ElementsAre(0, 0, 0, 0));
}

TEST(Module, CountsTheBytesOfItsRecord) {
  CModuleFixture fixture("ECL,ECL,ECL,ECL");
  EXPECT_EQ(452U, fixture.module.GetSize());
  fixture.module.SetChannelName(1, 1, "four");
  EXPECT_EQ(456U, fixture.module.GetSize());
  EXPECT_EQ(452U + 144, CModuleFixture("ECL,ECL,Variable,ECL").module.GetSize());
}

TEST(ProbeSetup, ClampsTheLevelByTheTypeThatHasLimits) {
  struct Row {
    PodType held;
    PodType inFile;
    double level;
    double clamped;
  };
  const double lowest = 1.2F;  // single precision widened
  const double highest = 3.3F;
  const Row rows[] = {
      {PodType::LvCmos, PodType::LvCmos, 5.0, highest},
      {PodType::LvCmos, PodType::TtlCmos, 0.5, lowest},
      {PodType::TtlCmos, PodType::LvCmos, 1.5, 2.0},
      {PodType::None, PodType::LvCmos, 5.0, highest},
      {PodType::Ecl, PodType::TtlCmos, 9.0, 5.5},
      {PodType::Ecl, PodType::Lvds, 9.0, 9.0},
      {PodType::LvCmos, PodType::None, kNaN, lowest},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.clamped);
    PROBE_SETUP probe;
    probe.podType = row.held;
    probe.outputLevel = row.level;
    EXPECT_EQ(S_OK, probe.CompareAndUpdateOutputLevel(row.inFile));
    EXPECT_EQ(row.clamped, probe.outputLevel);
  }
}

}  // namespace
}  // namespace quillpg
