#include "support/instrument_fixture.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

namespace quillpg {
namespace {

using testing::IsEmpty;

// A setting of the whole instrument: how it is set, read, and called by the hardware library.
struct SETTING {
  const char* operation;  // without Set and Get
  std::function<Status(CInstrument&, int)> set;
  std::function<double(CInstrument&)> get;
  bool keepsReadBack;  // a read-back that differs is stored
};

template <typename T>
SETTING MakeSetting(const char* operation, Status (CInstrument::*set)(T),
                    Status (CInstrument::*get)(T&) const, bool keepsReadBack = false) {
  return {operation,
          [set](CInstrument& instrument, int value) {
            return (instrument.*set)(static_cast<T>(value));
          },
          [get](CInstrument& instrument) { return static_cast<double>(Ask(instrument, get)); },
          keepsReadBack};
}

std::vector<SETTING> AllSettings() {
  using I = CInstrument;
  return {
      MakeSetting("ChannelMode", &I::SetChannelMode, &I::GetChannelMode),
      MakeSetting("ClockSource", &I::SetClockSource, &I::GetClockSource),
      MakeSetting("ClockPeriod", &I::SetClockPeriod, &I::GetClockPeriod, true),
      MakeSetting("ClockInputThreshold", &I::SetClockThreshold, &I::GetClockThreshold, true),
      MakeSetting("ClockPolarity", &I::SetClockPolarity, &I::GetClockPolarity),
      MakeSetting("EventFilter", &I::SetEventFilter, &I::GetEventFilter),
      MakeSetting("EventForInhibit", &I::SetInhibitEvent, &I::GetInhibitEvent),
      MakeSetting("EventModeForJump", &I::SetJumpEventMode, &I::GetJumpEventMode),
      MakeSetting("EventModeForAdvance", &I::SetAdvEventMode, &I::GetAdvEventMode),
      MakeSetting("RunMode", &I::SetRunMode, &I::GetRunMode),
      MakeSetting("SignalInputSource", &I::SetInputSignalSource, &I::GetInputSignalSource),
  };
}

// The value 0 that every setting takes, and 1, to which it is changed.
TEST(InstrumentSettings, AreStoredOnceEveryModuleTookThem) {
  for (const SETTING& setting : AllSettings()) {
    SCOPED_TRACE(setting.operation);
    CInstrumentFixture fixture(2);
    CInstrument& instrument = fixture.Instrument();
    const std::string set = std::string("Set") + setting.operation;
    const std::string get = std::string("Get") + setting.operation;
    ASSERT_EQ(setting.set(instrument, 0), S_OK);

    for (const std::string& failing : {set, get}) {
      SCOPED_TRACE(failing);
      fixture.Simulation().FailCall(failing, 1, 1);
      fixture.Simulation().LogCalls(true);
      EXPECT_EQ(setting.set(instrument, 1), E_FAIL);
      EXPECT_EQ(setting.get(instrument), 0);
      EXPECT_THAT(fixture.Simulation().TakeCalls(), testing::Contains("0 " + set + "(1)"))
          << "the first module keeps what it took";
    }

    // What is read back counts with real hardware only.
    fixture.Simulation().Quantise(get, [](double) { return 0.0; });
    EXPECT_EQ(setting.set(instrument, 1), S_OK);
    EXPECT_EQ(setting.get(instrument), 1);
    fixture.Simulation().Mainframe().hardwarePresent = true;
    EXPECT_EQ(setting.set(instrument, 1), E_FAIL);
    EXPECT_EQ(setting.get(instrument), setting.keepsReadBack ? 0 : 1);
  }
}

TEST(InstrumentSettings, RefuseWhatNoHardwareCanTake) {
  CInstrumentFixture fixture;
  fixture.Simulation().LogCalls(true);
  for (const double bad : {std::numeric_limits<double>::quiet_NaN(), HUGE_VAL, -HUGE_VAL}) {
    EXPECT_EQ(fixture.Instrument().SetClockPeriod(bad), E_FAIL);
    EXPECT_EQ(fixture.Instrument().SetClockThreshold(static_cast<float>(bad)), E_FAIL);
  }
  EXPECT_EQ(fixture.Instrument().SetChannelMode(static_cast<ChannelMode>(2)), E_FAIL);
  EXPECT_THAT(fixture.Simulation().TakeCalls(), IsEmpty()) << "not even the clock is touched";
}

TEST(InstrumentSettings, ClockStandsStillWhileThePeriodChanges) {
  const struct {
    const char* story;
    std::function<void(CSimulationControl&)> prepare;
    Status status;
    std::vector<std::string> calls;
  } rows[] = {
      {"accepted",
       [](CSimulationControl&) {},
       S_OK,
       {"0 SetClockState(0)", "0 SetClockPeriod(2)", "1 SetClockPeriod(2)", "0 SetClockState(1)"}},
      {"an error leaves it off",
       [](CSimulationControl& control) { control.FailCall("SetClockPeriod", 1, 0); },
       E_FAIL,
       {"0 SetClockState(0)", "0 SetClockPeriod(2)"}},
      {"a difference does not, and ends the walk",
       [](CSimulationControl& control) {
         control.Mainframe().hardwarePresent = true;
         control.Quantise("GetClockPeriod", [](double) { return 1.5; });
       },
       E_FAIL,
       {"0 SetClockState(0)", "0 SetClockPeriod(2)", "0 SetClockState(1)"}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.story);
    CInstrumentFixture fixture(2);
    row.prepare(fixture.Simulation());
    fixture.Simulation().LogCalls(true);
    EXPECT_EQ(fixture.Instrument().SetClockPeriod(2), row.status);
    EXPECT_EQ(fixture.Simulation().TakeCalls(), row.calls);
  }
}

TEST(InstrumentSettings, OneInstrumentDrivesAnExclusiveSignal) {
  const struct {
    SignalType type;
    const char* name;  // in the message; null where it may be shared
  } rows[] = {
      {SignalType::None, nullptr},
      {SignalType::Signal1, "Signal1"},
      {SignalType::Signal2, "Signal2"},
      {SignalType::Signal3, nullptr},
      {SignalType::Signal4, nullptr},
      {SignalType::Clk10MHz, ""},  // has no short name: the message names none
  };
  CInstrumentFixture fixture;
  auto other = std::make_unique<CInstrument>();
  (void)other->Initialize();
  (void)other->SetInstrumentName("PG 2");
  CInstrument& second = *other;
  ASSERT_EQ(fixture.Instruments().AddInstrument(other.release()), S_OK);
  (void)second.EnableInstrument(0);  // a disabled one drives all the same
  fixture.Simulation().LogCalls(true);
  for (const auto& row : rows) {
    SCOPED_TRACE(static_cast<int>(row.type));
    ASSERT_EQ(second.SetOutputSignalDest(row.type), S_OK);
    fixture.Host().boxes.clear();
    (void)fixture.Simulation().TakeCalls();
    EXPECT_EQ(fixture.Instrument().SetOutputSignalDest(row.type),
              row.name ? PG_E_SIGNAL_DRIVEN : S_OK);
    EXPECT_EQ(fixture.Simulation().TakeCalls().empty(), row.name != nullptr);
    EXPECT_EQ(second.CanSetSignalOut(row.type), S_OK) << "its own signal";
    std::vector<std::string> message;
    if (row.name) message = {row.name + std::string(" is already driven by the module PG 2 !!!")};
    EXPECT_EQ(fixture.Host().BoxTexts(), message);
    ASSERT_EQ(fixture.Instrument().SetOutputSignalDest(SignalType::None), S_OK);
  }
}

TEST(InstrumentSettings, LimitsFollowTheMode) {
  CInstrumentFixture fixture(2, true);
  CInstrument& instrument = fixture.Instrument();
  const struct {
    ChannelMode mode;
    int pod, module, channels, minimum, speed;
    double shortest, longest;
    long depth;
    const char* properties;
  } rows[] = {
      {ChannelMode::Full, 16, 64, 128, 40, 134, 7.4626865e-09, 2.0, 1048572,
       "QPG-64,AA123456,0.17,134 MHz,1048572"},
      {ChannelMode::Half, 8, 32, 64, 80, 268, 3.7313432e-09, 1.0, 2097144,
       "QPG-64,AA123456,0.17,268 MHz,2097144"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.properties);
    ASSERT_EQ(instrument.SetChannelMode(row.mode), S_OK);
    EXPECT_EQ(Ask(instrument, &CInstrument::GetMaxChannelsPerPod), row.pod);
    EXPECT_EQ(Ask(instrument, &CInstrument::GetMaxChannelsPerModule), row.module);
    EXPECT_EQ(Ask(instrument, &CInstrument::GetBlockWidth), row.channels);
    EXPECT_EQ(Ask(instrument, &CInstrument::GetMinBlocksize), row.minimum);
    EXPECT_EQ(Ask(instrument, &CInstrument::GetMaxClockSpeed), row.speed);
    EXPECT_EQ(Ask(instrument, &CInstrument::GetMinClockPeriod), row.shortest);
    EXPECT_EQ(Ask(instrument, &CInstrument::GetMaxClockPeriod), row.longest);
    EXPECT_EQ(Ask(instrument, &CInstrument::GetMaxBlocksize), row.depth);
    EXPECT_EQ(Ask(instrument, &CInstrument::GetModuleProperties, 1), row.properties);
  }
}

}  // namespace
}  // namespace quillpg
