#include "hardware/simulation/virtual_clock.h"

#include "hardware/simulation/memory_sink.h"
#include "hardware/simulation/pattern_memory.h"
#include "hardware/simulation/simulated_hardware.h"
#include "support/simulated_program.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace quillpg {
namespace {

using testing::Each;
using testing::ElementsAre;

std::vector<std::uint64_t> RandomRows(std::size_t count, std::uint64_t mask) {
  std::mt19937_64 random(count);
  std::vector<std::uint64_t> rows(count);
  for (std::uint64_t& row : rows) row = random() & mask;
  return rows;
}

TEST(PatternMemory, GivesBackWhatTheEntryTablesPacked) {
  const std::pair<ChannelMode, std::uint64_t> modes[] = {{ChannelMode::Half, 0xFFFFFFFFU},
                                                         {ChannelMode::Full, ~std::uint64_t{0}}};
  for (const auto& [mode, mask] : modes) {
    // Every share of short units, alone (up to 48) and after full ones, and more than one transfer.
    for (const std::size_t size : {1, 2, 3, 7, 8, 20, 40, 41, 48, 80, 85, 1001, 20003}) {
      SCOPED_TRACE(std::to_string(static_cast<int>(mode)) + " " + std::to_string(size));
      CSimulatedHardware hardware;
      CMemorySink sink;
      hardware.Control().AddVectorSink(&sink);
      CSorrelModule& module = *hardware.Control().HardwareModule(0);
      const std::vector<std::uint64_t> rows = RandomRows(size, mask);
      module.SetChannelMode(mode);
      SendBlock(module, 5, mode, rows);
      module.DefineSequence(1, "5,1,0,0,0,1");
      module.Initiate();
      module.Start();
      hardware.Control().Clock(100000);
      EXPECT_EQ(rows, sink.Levels(0));
    }
  }
}

// Modules with one block of the same length each, ready to start.
class CMainframe {
 public:
  CMainframe() { hardware.Control().AddVectorSink(&sink); }

  CSorrelModule& Load(int index, const char* sequence, const std::vector<std::uint64_t>& rows) {
    CSorrelModule& module = *hardware.Control().HardwareModule(index);
    module.EnableOutput(1);
    SendBlock(module, 0, ChannelMode::Full, rows);
    module.DefineSequence(1, sequence);
    module.Initiate();
    return module;
  }

  PlayEnd Play(std::int64_t vectors) {
    PlayEnd end = PlayEnd::Stepping;
    EXPECT_EQ(S_OK, hardware.Control().PlayUntilIdle(vectors, end));
    return end;
  }

  std::vector<std::uint64_t> HighZ(int module) const {
    std::vector<std::uint64_t> highZ;
    std::ranges::transform(sink.Vectors(module), std::back_inserter(highZ),
                           &CMemorySink::VECTOR::highZ);
    return highZ;
  }

  CSimulatedHardware hardware;
  CMemorySink sink;
};

constexpr const char* kOnce = "0,1,0,0,0,1";

TEST(VirtualClock, FollowersPlayTheirOwnBlocksByTheMastersSequence) {
  CMainframe frame;
  const auto rows = RandomRows(40, ~std::uint64_t{0});
  const auto others = RandomRows(41, ~std::uint64_t{0});
  CSorrelModule& master = frame.Load(1, "0,2,0,0,0,1", rows);
  CSorrelModule& follower = frame.Load(2, "0,7,0,0,0,1", others);
  CSorrelModule& apart = frame.Load(3, kOnce, others);
  follower.SetWeldMode(1);
  master.Start();
  EXPECT_EQ(PlayEnd::Limit, frame.Play(50));
  std::string state;
  follower.GetSequencerStatus(state);
  EXPECT_EQ("RUNN", state);
  apart.GetSequencerStatus(state);
  EXPECT_EQ("INIT", state);
  EXPECT_EQ(PlayEnd::Idle, frame.Play(1000));
  std::vector<std::uint64_t> expected[2];
  for (std::size_t i = 0; i < 80; ++i) {
    expected[0].push_back(rows[i % 40]);
    expected[1].push_back(others[i % 40]);
  }
  EXPECT_EQ(expected[0], frame.sink.Levels(1));
  EXPECT_EQ(expected[1], frame.sink.Levels(2));
  EXPECT_TRUE(frame.sink.Levels(3).empty());
}

TEST(VirtualClock, DisabledOutputsAndInhibitByPodDAreHighImpedance) {
  constexpr std::uint64_t kInhibitA = std::uint64_t{1} << 52;  // channel 4 of pod D
  constexpr std::uint64_t kInhibitD = std::uint64_t{1} << 55;  // channel 7 of pod D
  constexpr std::uint64_t kPodA = 0xFFFF;
  constexpr std::uint64_t kPodD = kPodA << 48;
  const std::vector<std::uint64_t> rows = {0, kInhibitA, kInhibitD, kInhibitA | kInhibitD};
  CMainframe frame;
  CSorrelModule& module = frame.Load(0, kOnce, rows);
  module.SetInhibitByData('A', 1);
  module.SetInhibitByData('D', 1);
  const auto play = [&] {
    frame.sink.Clear();
    module.Initiate();
    module.Start();
    frame.Play(100);
    return frame.HighZ(0);
  };
  EXPECT_THAT(play(), ElementsAre(0, kPodA, kPodD, kPodA | kPodD));
  module.SetInhibitByData('D', 0);
  EXPECT_THAT(play(), ElementsAre(0, kPodA, 0, kPodA));
  module.EnableOutput(0);
  EXPECT_THAT(play(), Each(~std::uint64_t{0}));
  EXPECT_EQ(rows, frame.sink.Levels(0));

  CSorrelModule& half = *frame.hardware.Control().HardwareModule(1);
  half.SetChannelMode(ChannelMode::Half);
  half.EnableOutput(1);
  half.SetInhibitByData('B', 1);
  SendBlock(half, 0, ChannelMode::Half, {0, 1U << 29});  // channel 5 of pod D
  half.DefineSequence(2, "0,1,0,0,0,1,0,1,1,0,0,1");
  half.Initiate();
  half.Start();
  frame.hardware.Control().Clock(3);  // the last one is held
  EXPECT_THAT(frame.HighZ(1), ElementsAre(0, 0xFF00, 0xFF00));
  half.EnableOutput(0);
  frame.hardware.Control().Clock(1);
  EXPECT_EQ(0xFFFFFFFFU, frame.HighZ(1).back());
}

// Keeps how far each sequencer is, and how far one ran ahead of the other in time.
struct TIME_SINK : CVectorSink {
  void OnRun(const VECTOR_RUN& run) override {
    const int master = run.module == 0 ? 0 : 1;
    EXPECT_EQ(clocked[master], run.firstVector);
    clocked[master] += run.count * run.repeat;
    mostAhead = std::max(mostAhead, clocked[0] - 4 * clocked[1]);
  }
  std::int64_t clocked[2] = {};
  std::int64_t mostAhead = 0;
};

TEST(VirtualClock, SequencersKeepStepInTime) {
  CMainframe frame;
  TIME_SINK time;
  frame.hardware.Control().AddVectorSink(&time);
  CSorrelModule& fast = frame.Load(0, "0,40000,0,0,0,1", RandomRows(40, 1));
  CSorrelModule& slow = frame.Load(2, "0,10000,0,0,0,1", RandomRows(40, 1));
  fast.SetClockPeriod(1e-6);
  slow.SetClockPeriod(4e-6);
  fast.Start();
  slow.Start();
  EXPECT_EQ(PlayEnd::Idle, frame.Play(10000000));
  EXPECT_THAT(time.clocked, ElementsAre(1600000, 400000));
  EXPECT_LE(time.mostAhead, SEQUENCER_SLICE);

  // One that waits for ever holds its pins as long as the other plays, and no longer.
  time = {};
  slow.DefineSequence(1, "0,1,1,0,0,1");
  for (CSorrelModule* module : {&fast, &slow}) {
    module->Initiate();
    module->Start();
  }
  EXPECT_EQ(PlayEnd::Waiting, frame.Play(10000000));
  EXPECT_THAT(time.clocked, ElementsAre(1600000, 400000));
}

TEST(VirtualClock, APollMovesItWhenAskedTo) {
  CMainframe frame;
  CSorrelModule& module = frame.Load(0, kOnce, RandomRows(40, 1));
  module.Start();
  std::string states;
  for (const int vectors : {0, 30, 30}) {
    frame.hardware.Control().SetVectorsPerPoll(vectors);
    std::string state;
    module.GetSequencerStatus(state);
    states += state;
  }
  EXPECT_EQ("RUNNRUNNIDL", states);
  EXPECT_EQ(40, frame.sink.CountedVectors());
}

}  // namespace
}  // namespace quillpg
