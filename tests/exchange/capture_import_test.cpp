#include "exchange/capture_import.h"

#include "exchange/capture_loader.h"
#include "exchange/capture_runs.h"
#include "program/group.h"
#include "support/instrument_fixture.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <sstream>

namespace quillpg {
namespace {

/// A capture file that is gone with the object.
class CCaptureFile : public CTemporaryFolder {
 public:
  explicit CCaptureFile(const std::string& text) { Write("capture.vcd", text); }
  std::string Path() const { return File("capture.vcd"); }
};

using LevelAt = std::function<std::uint64_t(std::int64_t vector, int signal)>;

// A file of `signals` scalars whose vectors, `step` nanoseconds each, `levelAt` gives.
std::string WriteCapture(int signals, std::int64_t vectors, std::int64_t step,
                         const LevelAt& levelAt) {
  std::ostringstream out;
  out << "$timescale 1 ns $end\n";
  for (int i = 0; i < signals; ++i) out << "$var wire 1 n" << i << " s" << i << " $end\n";
  out << "$enddefinitions $end\n";
  for (std::int64_t v = 0; v < vectors; ++v) {
    std::string changes;
    for (int i = 0; i < signals; ++i) {
      const std::uint64_t level = levelAt(v, i);
      if (v != 0 && level == levelAt(v - 1, i)) continue;
      changes += (level ? " 1n" : " 0n") + std::to_string(i);
    }
    if (!changes.empty()) out << '#' << v * step << changes << '\n';
  }
  out << '#' << vectors * step << '\n';
  return out.str();
}

std::uint64_t Noise(std::int64_t vector, int signal) {
  return MixHash(static_cast<std::uint64_t>(vector), static_cast<std::uint64_t>(signal)) >> 63;
}

std::uint64_t Pulse(std::int64_t vector, int signal) { return vector % 1000 < 7 + signal ? 1 : 0; }

TEST(CaptureImport, ChoosesTheLeastHardwareAndPlaysTheCapture) {
  struct Row {
    const char* what;
    int signals;
    std::int64_t vectors, step;
    LevelAt levelAt;
    ChannelMode mode;
    int modules;
    bool option;
    PlayEnd end = PlayEnd::Idle;
  };
  constexpr ChannelMode kFull = ChannelMode::Full;
  constexpr ChannelMode kHalf = ChannelMode::Half;
  const Row rows[] = {
      {"shorter than a block", 3, 7, 10, Noise, kFull, 1, false, PlayEnd::Limit},
      {"pulses and idle times", 8, 300'000, 10, Pulse, kFull, 1, false},
      {"five modules", 320, 100, 10, Noise, kFull, 5, false},
      {"only HALF mode is fast enough", 33, 100, 4, Noise, kHalf, 2, false},
      {"only FULL mode is slow enough", 3, 100, 1'500'000'000, Noise, kFull, 1, false},
      {"HALF mode's memory", 2, 300'000, 10, Noise, kHalf, 1, false},
      {"the option in FULL mode", 2, 600'000, 10, Noise, kFull, 1, true},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    const CCaptureFile file(WriteCapture(row.signals, row.vectors, row.step, row.levelAt));
    CEngineFixture engine;
    CCaptureImport import;
    ASSERT_EQ(import.Read(file.Path()), S_OK) << import.GetErrorText();
    ASSERT_EQ(import.Plan(RATIO{}), S_OK) << import.GetErrorText();
    EXPECT_EQ(import.GetPlan().mode, row.mode);
    EXPECT_EQ(import.GetPlan().modules, row.modules);
    EXPECT_EQ(import.GetPlan().memoryOption, row.option);
    ASSERT_EQ(import.GetLength(), row.vectors);
    ASSERT_EQ(import.ConfigureSimulation(engine.Simulation()), S_OK) << import.GetErrorText();
    ASSERT_EQ(engine.Modules().Initialize(), S_OK);
    CInstrument* instrument = nullptr;
    ASSERT_EQ(import.Load(&instrument), S_OK) << import.GetErrorText();
    CMemorySink sink;
    engine.Play(sink, row.vectors, row.end);
    const int each = row.mode == ChannelMode::Full ? 64 : 32;
    std::int64_t wrong = 0;
    for (int signal = 0; signal < row.signals; ++signal) {
      const auto& played = sink.Vectors(signal / each);
      ASSERT_EQ(played.size(), static_cast<std::size_t>(row.vectors));
      for (std::int64_t v = 0; v < row.vectors; ++v) {
        const std::uint64_t levels = played[static_cast<std::size_t>(v)].levels;
        wrong += (levels >> (signal % each) & 1) != row.levelAt(v, signal) ? 1 : 0;
      }
    }
    EXPECT_EQ(wrong, 0);
  }
}

TEST(CaptureImport, RefusesWithTheFigures) {
  const struct {
    const char* what;
    std::string text;
    Status status;
    const char* error;  // behind the file's name
  } rows[] = {
      {"too fast", "$timescale 1 ps $end $var wire 1 ! D $end $enddefinitions $end #0 0! #1 1! #3",
       E_FAIL,
       ": no sample period fits the time stamps, whose common step is 1 ps: the clock plays "
       "3.7313432 ns to 2 s"},
      {"too long", WriteCapture(1, 2'100'000, 10, Noise), PG_E_LIMIT,
       ": the capture does not fit: it has 2100000 vectors of 1 channel and needs in FULL mode "
       "2100000 vectors of memory, of 1048572 with the memory option; in HALF mode 2100000 vectors "
       "of memory, of 2097144 with the memory option"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    const CCaptureFile file(row.text);
    CCaptureImport import;
    ASSERT_EQ(import.Read(file.Path()), S_OK) << import.GetErrorText();
    EXPECT_EQ(import.Plan(RATIO{}), row.status);
    EXPECT_EQ(import.GetErrorText(), file.Path() + row.error);
    CInstrument* instrument = nullptr;
    EXPECT_EQ(import.Load(&instrument), E_FAIL);
  }
}

TEST(CaptureImport, TakesACoarserGridWhereTheExactOneDoesNotFit) {
  // 12 MHz in ticks of 10 ns: the common step, a tick, gives 8 1/3 vectors for each sample.
  std::string text = "$timescale 10 ns $end $var wire 4 ! D $end $enddefinitions $end\n";
  constexpr std::int64_t kSamples = 260'000;
  for (std::int64_t i = 0; i < kSamples; ++i) {
    text += "#" + std::to_string((i * 50 + 3) / 6) + " b";
    for (int bit = 0; bit < 4; ++bit) text += Noise(i, bit) ? '1' : '0';
    text += " !\n";
  }
  const CCaptureFile file(text + "#" + std::to_string((kSamples * 50 + 3) / 6));
  CCaptureImport import;
  ASSERT_EQ(import.Read(file.Path()), S_OK) << import.GetErrorText();
  ASSERT_EQ(import.Plan(RATIO{}), S_OK) << import.GetErrorText();
  EXPECT_EQ(import.GetPlan().grid.period, (RATIO{1, 12'000'000}));
  EXPECT_EQ(import.GetLength(), kSamples);
}

TEST(CaptureImport, NamesGroupsApartAndPinsAsTheCaptureDoes) {
  const CCaptureFile file(
      "$comment at 1 MHz $end $timescale 1 us $end $var wire 1 a Clk $end\n"
      "$var wire 1 b CLK $end $var wire 1 c clk_2 $end $var wire 1 d $end $var wire 1 e Clk $end\n"
      "$var wire 3 f D+ [4:2] $end $enddefinitions $end\n"
      "#0 1a 0b 1c 0d 1e b011 f #100\n");
  CInstrumentFixture engine;
  CCaptureImport import;
  ASSERT_EQ(import.Read(file.Path()), S_OK) << import.GetErrorText();
  ASSERT_EQ(import.Plan(RATIO{}), S_OK) << import.GetErrorText();
  CInstrument* instrument = nullptr;
  VCD_INSTRUMENT pins;
  ASSERT_EQ(import.Load(&instrument), S_OK) << import.GetErrorText();
  const CGroupManager& groups = *Find(*instrument, &CInstrument::GetGroupManager);
  EXPECT_EQ(Ask(groups, &CGroupManager::GetGroupNames),
            (std::vector<std::string>{"Clk", "CLK_3", "clk_2", "_1", "Clk_4", "D+"}));
  const GROUP* group = Find(groups, &CGroupManager::GetGroup, "D+");
  EXPECT_EQ(group->Channels(), (std::vector<int>{7, 6, 5}));  // most significant first
  ASSERT_EQ(import.DescribeForVcd(pins), S_OK);
  std::string text;
  for (const VCD_SIGNAL& signal : pins.signals) text += signal.name + signal.range + ",";
  EXPECT_EQ(text, "Clk,CLK,clk_2,,Clk,D+[4:2],");
  EXPECT_EQ(pins.signals.back().channels, group->Channels());
}

}  // namespace
}  // namespace quillpg
