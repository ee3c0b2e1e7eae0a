#include "hardware/simulation/virtual_clock.h"

#include "hardware/simulation/memory_sink.h"
#include "hardware/simulation/pattern_memory.h"
#include "hardware/simulation/simulated_hardware.h"
#include "support/simulated_program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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
  std::vector<std::uint64_t> twice = rows;
  twice.insert(twice.end(), rows.begin(), rows.end());
  EXPECT_EQ(twice, frame.sink.Levels(1));
  std::vector<std::uint64_t> expected(others.begin(), others.begin() + 40);
  expected.insert(expected.end(), others.begin(), others.begin() + 40);
  EXPECT_EQ(expected, frame.sink.Levels(2));
  EXPECT_TRUE(frame.sink.Levels(3).empty());
  SEQUENCER_POSITION position;
  EXPECT_EQ(S_OK, frame.hardware.Control().GetSequencer(2, position));
  EXPECT_EQ(80, position.clocked);
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

  CMainframe half;
  CSorrelModule& narrow = *half.hardware.Control().HardwareModule(0);
  narrow.SetChannelMode(ChannelMode::Half);
  narrow.EnableOutput(1);
  narrow.SetInhibitByData('B', 1);
  SendBlock(narrow, 0, ChannelMode::Half, {0, 1U << 29});  // channel 5 of pod D
  narrow.DefineSequence(2, "0,1,0,0,0,1,0,1,1,0,0,1");
  narrow.Initiate();
  narrow.Start();
  half.hardware.Control().Clock(3);  // the last one is held
  EXPECT_THAT(half.HighZ(0), ElementsAre(0, 0xFF00, 0xFF00));
  narrow.EnableOutput(0);
  half.hardware.Control().Clock(1);
  EXPECT_EQ(0xFFFFFFFFU, half.HighZ(0).back());
}

TEST(VirtualClock, TellsWhyAPlayEnded) {
  struct ROW {
    const char* what;
    const char* sequence;
    const char* levels;  // of the inputs from vector 100 on
    std::int64_t limit;
    PlayEnd end;
    std::int64_t clocked;
  };
  const ROW rows[] = {
      {"the end", kOnce, "000000000", 1000, PlayEnd::Idle, 40},
      {"the end at the limit", kOnce, "000000000", 40, PlayEnd::Idle, 40},
      {"the limit", "0,0,0,0,0,1", "000000000", 1000, PlayEnd::Limit, 1000},
      {"a wait that ends", "0,1,1,0,0,1", "100000000", 1000, PlayEnd::Idle, 140},
      {"a wait that would end", "0,1,1,0,0,1", "100000000", 99, PlayEnd::Limit, 99},
      {"a wait that never ends", "0,1,1,0,0,1", "011111111", 1000, PlayEnd::Waiting, 0},
      {"nothing allowed", kOnce, "000000000", 0, PlayEnd::Limit, 0},
  };
  for (const ROW& row : rows) {
    SCOPED_TRACE(row.what);
    CMainframe frame;
    CSorrelModule& module = frame.Load(0, row.sequence, RandomRows(40, 1));
    module.DefineEvent(1, "1XXXXXXXX");
    EXPECT_EQ(S_OK, frame.hardware.Control().SetStimulus({{100, row.levels}}));
    module.Start();
    EXPECT_EQ(row.end, frame.Play(row.limit));
    EXPECT_EQ(row.clocked, frame.sink.CountedVectors());
  }
  CMainframe frame;
  EXPECT_EQ(PlayEnd::Idle, frame.Play(10));
  EXPECT_EQ(E_FAIL, frame.hardware.Control().Clock(-1));
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
  std::string state;
  module.GetSequencerStatus(state);
  EXPECT_EQ("RUNN", state);
  EXPECT_EQ(0, frame.sink.CountedVectors());
  frame.hardware.Control().SetVectorsPerPoll(30);
  module.GetSequencerStatus(state);
  EXPECT_EQ("RUNN", state);
  module.GetSequencerStatus(state);
  EXPECT_EQ("IDL", state);
  EXPECT_EQ(40, frame.sink.CountedVectors());
  frame.hardware.Control().SetSequencerText(0, "wait");
  module.GetSequencerStatus(state);
  EXPECT_EQ("wait", state);
}

TEST(EventStimulus, TakesOnlyRisingVectorsAndNineLevels) {
  struct ROW {
    std::vector<STIMULUS_LINE> lines;
    bool taken;
  };
  const ROW rows[] = {
      {{}, true},
      {{{0, "000000000"}, {1, "111111111"}}, true},
      {{{-1, "000000000"}}, false},
      {{{5, "000000000"}, {5, "111111111"}}, false},
      {{{5, "00000000"}}, false},
      {{{5, "0000000000"}}, false},
      {{{5, "00000000X"}}, false},
  };
  for (const ROW& row : rows) {
    CEventStimulus stimulus;
    EXPECT_EQ(row.taken, stimulus.Set(row.lines) == S_OK);
  }
  CEventStimulus stimulus;
  EVENT_TRUTH e0;  // true while E0, the last of the nine, is 1
  for (std::size_t inputs = 256; inputs < 512; ++inputs) e0.set(inputs);
  ASSERT_EQ(S_OK, stimulus.Set({{3, "000000001"}, {5, "100000001"}, {9, "111111110"}}));
  ASSERT_EQ(E_FAIL, stimulus.Set({{3, ""}}));  // the one before stays
  EXPECT_EQ(3, stimulus.FirstTrue(e0, 0));
  EXPECT_EQ(8, stimulus.FirstTrue(e0, 8));
  EXPECT_EQ(CEventStimulus::NEVER, stimulus.FirstTrue(e0, 9));
  EXPECT_EQ(3, stimulus.FirstEdge(e0, 2));
  EXPECT_EQ(CEventStimulus::NEVER, stimulus.FirstEdge(e0, 3));
}

}  // namespace
}  // namespace quillpg
