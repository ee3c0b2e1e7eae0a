#include "hardware/simulation/sequencer.h"

#include "hardware/simulation/memory_sink.h"
#include "hardware/simulation/simulated_hardware.h"
#include "support/simulated_program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace quillpg {
namespace {

// One module whose vectors are letters: block 0 is "abc", block 1 "de", block 2 "f"; there is no
// block 3. Event 1 is true while the signal input is 1, event 2 while E0 is, event 3 has no rows;
// no other event is defined. Subsequence 1 is block 0, then block 2 twice; 2 has a missing block
// and counts below 1; 3 is empty.
class CLetterPlayer {
 public:
  explicit CLetterPlayer(std::string_view sequence) {
    hardware.Control().AddVectorSink(&sink);
    CSorrelModule& module = Module();
    module.SetChannelMode(ChannelMode::Half);
    module.EnableOutput(1);
    SendLetters(0, "abc");
    SendLetters(1, "de");
    SendLetters(2, "f");
    module.DefineEvent(1, "1XXXXXXXX");
    module.DefineEvent(2, "XXXXXXXX1");
    module.DefineEvent(3, "");
    module.DefineSubSequence(1, 2, "0,1,2,2");
    module.DefineSubSequence(2, 3, "3,5,2,0,1,-3");
    module.DefineSubSequence(3, 0, "");
    const auto fields = std::ranges::count(sequence, ',') + 1;
    EXPECT_EQ(S_OK, module.DefineSequence(static_cast<int>(fields / 6), std::string(sequence)));
  }

  CSorrelModule& Module() { return *hardware.Control().HardwareModule(0); }

  void SendLetters(int block, std::string_view letters) {
    SendBlock(Module(), block, ChannelMode::Half, {letters.begin(), letters.end()});
  }

  void Start() {
    Module().Initiate();
    Module().Start();
  }

  // One character a vector: level of the signal input; the last one holds.
  void SetSignalInput(std::string_view levels) {
    std::vector<STIMULUS_LINE> lines;
    for (std::size_t i = 0; i < levels.size(); ++i) {
      lines.push_back({static_cast<std::int64_t>(i), levels[i] + std::string("00000000")});
    }
    EXPECT_EQ(S_OK, hardware.Control().SetStimulus(lines));
  }

  // The letters that were driven, "." before the first one, and the state of the sequencer.
  std::string Played() {
    std::string played;
    for (const std::uint64_t level : sink.Levels(0)) {
      played += level == 0 ? '.' : static_cast<char>(level);
    }
    std::string state;
    Module().GetSequencerStatus(state);
    return played + " " + state;
  }

  CSimulatedHardware hardware;
  CMemorySink sink;
};

constexpr EventMode kLevel = EventMode::Level;
constexpr EventMode kEdge = EventMode::Edge;

TEST(Sequencer, PlaysLinesWaitsAndJumps) {
  const struct {
    const char* what;
    const char* sequence;  // output, repeat, wait-for, jump-if, jump-to, signal
    EventMode mode;
    const char* input;
    int vectors;
    const char* expected;
  } rows[] = {
      {"lines in order", "0,1,0,0,0,1,1,2,0,0,0,1", kLevel, "", 20, "abcdede IDL"},
      {"ends with the last vector", "0,1,0,0,0,1", kLevel, "", 3, "abc IDL"},
      {"negative repeat", "2,-7,0,0,0,1", kLevel, "", 20, "f IDL"},

      {"holds the last vector", "0,1,0,0,0,1,2,1,1,0,0,1", kLevel, "000001", 20, "abcccf IDL"},
      {"event never defined", "2,1,7,0,0,1", kLevel, "1", 4, ".... WAIT"},
      {"event without rows", "2,1,3,0,0,1", kLevel, "1", 4, ".... WAIT"},
      {"edge: none before the start", "2,1,1,0,0,1", kEdge, "1", 20, "f IDL"},
      {"edge as the wait begins", "0,1,0,0,0,1,2,1,1,0,0,1", kEdge, "0001", 20, "abcf IDL"},
      {"edge before it is none", "0,1,0,0,0,1,2,1,1,0,0,1", kEdge, "0011101", 20, "abccccf IDL"},

      {"always: after all", "2,2,0,-1,2,1,0,1,0,0,0,1,1,1,0,0,0,1", kLevel, "", 9, "ffde IDL"},
      {"always, endless: after one", "2,0,0,-1,1,1,1,1,0,0,0,1", kLevel, "", 20, "fde IDL"},
      {"level at the end", "1,5,0,1,1,1,2,1,0,0,0,1", kLevel, "00010", 20, "dedef IDL"},
      {"level in the middle", "1,3,0,1,9,1,2,1,0,0,0,1", kLevel, "0010", 20, "dededef IDL"},
      {"level at the last repetition", "1,2,0,1,9,1,2,1,0,0,0,1", kLevel, "0001", 20, "dede IDL"},
      {"edge in the middle is seen", "0,9,0,1,9,1", kEdge, "000010", 20, "abcabc IDL"},
      {"edge at its first vector", "0,2,0,1,9,1,2,1,0,0,0,1", kEdge, "0001", 20, "abcabc IDL"},
      {"edge before it is not", "0,1,0,0,0,1,1,2,0,1,9,1,2,1,0,0,0,1", kEdge, "001", 20,
       "abcdedef IDL"},
      {"endless until the event", "2,0,0,1,1,1,1,1,0,0,0,1", kLevel, "00001", 20, "fffffde IDL"},
      {"jump to before the first line", "2,1,0,-1,-4,1,1,1,0,0,0,1", kLevel, "", 20, "f IDL"},

      {"subsequence", "-1,2,0,0,0,1", kLevel, "", 20, "abcffabcff IDL"},
      {"jump at the end of a pass", "-1,3,0,1,9,1", kLevel, "0001111111", 20, "abcff IDL"},
      {"not within a pass", "-1,2,0,1,9,1,1,1,0,0,0,1", kLevel, "00010", 20, "abcffabcffde IDL"},
      {"counts below 1, missing block", "-2,1,0,0,0,1", kLevel, "", 20, "fde IDL"},

      {"nothing", "3,1,0,0,0,1,-9,1,0,0,0,1,-3,1,0,0,0,1,2,1,0,0,0,1", kLevel, "", 9, "f IDL"},
      {"nothing, endlessly", "3,0,0,0,0,1", kLevel, "", 20, " IDL"},
      {"no loop without time", "3,1,0,-1,1,1,-3,1,0,-1,0,1", kLevel, "", 20, " IDL"},
      {"time lets a loop go on", "3,1,0,0,0,1,2,1,0,-1,0,1", kLevel, "", 4, "ffff RUNN"},
  };
  for (const auto& row : rows) {
    for (const int slice : {row.vectors, 1}) {  // vector by vector it must come to the same
      SCOPED_TRACE(row.what);
      CLetterPlayer player(row.sequence);
      player.Module().SetEventModeForAdvance(row.mode);
      player.Module().SetEventModeForJump(row.mode);
      player.SetSignalInput(row.input);
      player.Start();
      for (int i = 0; i < row.vectors; i += slice) player.hardware.Control().Clock(slice);
      EXPECT_EQ(row.expected, player.Played());
    }
  }
}

TEST(Sequencer, HostCallsWhileItRuns) {
  const struct {
    const char* what;
    const char* sequence;
    const char* input;
    int before;  // vectors clocked before the call
    Status (CSorrelModule::*call)();
    const char* expected;
  } rows[] = {
      {"advance a wait", "2,1,7,0,0,1", "", 2, &CSorrelModule::Advance, "..f IDL"},
      {"advance an endless line", "0,0,0,0,0,1,2,1,0,0,0,1", "", 4, &CSorrelModule::Advance,
       "abcabcf IDL"},
      {"jump-if goes first", "0,0,0,1,9,1,2,1,0,0,0,1", "000001", 4, &CSorrelModule::Advance,
       "abcabc IDL"},
      {"advance means nothing else", "2,3,0,0,0,1", "", 1, &CSorrelModule::Advance, "fff IDL"},
      {"jump out of a wait", "2,1,7,0,1,1,1,1,0,0,0,1", "", 1, &CSorrelModule::Jump, ".de IDL"},
      {"jump out of a line", "0,5,0,0,1,1,2,1,0,0,0,1", "", 1, &CSorrelModule::Jump, "abcf IDL"},
      {"jump out of a subsequence", "-1,5,0,0,1,1,2,1,0,0,0,1", "", 1, &CSorrelModule::Jump,
       "abcfff IDL"},
      {"abort", "0,0,0,0,0,1", "", 2, &CSorrelModule::Abort, "ab IDL"},
      {"idle: advance", "2,1,0,0,0,1", "", 2, &CSorrelModule::Advance, "f IDL"},
      {"initiate", "0,0,0,0,0,1", "", 2, &CSorrelModule::Initiate, "ab INIT"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    CLetterPlayer player(row.sequence);
    player.SetSignalInput(row.input);
    player.Start();
    player.hardware.Control().Clock(row.before);
    (player.Module().*row.call)();
    player.hardware.Control().Clock(9);
    EXPECT_EQ(row.expected, player.Played());
  }
}

TEST(Sequencer, RepeatsAreOneRun) {
  const std::tuple<const char*, const char*, std::int64_t, int> rows[] = {
      {"0,65536,0,0,0,1", "", 196608, 1},
      {"0,65536,0,1,9,1", "0000000000", 196608, 1},  // nothing to jump for
      {"0,65536,0,1,9,1", "0000000001", 12, 2},      // repetitions before the event, the last one
  };
  for (const auto& [sequence, input, vectors, runs] : rows) {
    SCOPED_TRACE(sequence);
    CLetterPlayer player(sequence);
    player.SetSignalInput(input);
    player.Start();
    PlayEnd end = PlayEnd::Limit;
    player.hardware.Control().PlayUntilIdle(1000000, end);
    EXPECT_EQ(PlayEnd::Idle, end);
    EXPECT_EQ(vectors, player.sink.CountedVectors());
    EXPECT_EQ(runs, player.sink.CountedRuns());
  }
}

TEST(Sequencer, StartNeedsInitiateAndStepNeedsStepMode) {
  CLetterPlayer player("0,2,0,0,0,1");
  CSorrelModule& module = player.Module();
  EXPECT_EQ(E_FAIL, module.Start());
  player.Start();
  module.Step(2);  // ignored: the module runs by the clock
  EXPECT_EQ(" RUNN", player.Played());
  module.SetRunMode(RunMode::Step);
  module.Step(2);
  player.hardware.Control().Clock(7);  // ignored: the module runs by steps
  EXPECT_EQ("ab RUNN", player.Played());
  PlayEnd end = PlayEnd::Limit;
  player.hardware.Control().PlayUntilIdle(7, end);
  EXPECT_EQ(PlayEnd::Stepping, end);
  module.Step(100);
  EXPECT_EQ("abcabc IDL", player.Played());
}

TEST(Sequencer, SignalOutputFollowsTheLineAndIsHeldAndEveryRunBeginsAnew) {
  CLetterPlayer player("2,1,0,0,0,1,2,1,1,0,0,7,2,1,0,0,0,0");
  player.SetSignalInput("0001");
  for (const char* expected : {"11120", "1112011120"}) {  // any level but 0 and 1 is undefined
    player.Start();
    player.hardware.Control().Clock(9);
    std::string signals;
    std::string lines;
    for (const CMemorySink::VECTOR& vector : player.sink.Vectors(0)) {
      signals += static_cast<char>('0' + vector.signal);
      lines += static_cast<char>('0' + vector.line);
    }
    EXPECT_EQ(expected, signals);
    EXPECT_TRUE(lines.ends_with("01112")) << lines;
  }
}

TEST(Sequencer, BlocksThatChangeWhileTheyPlayEndCleanly) {
  CLetterPlayer player("0,3,0,0,0,1,2,1,0,0,0,1");
  player.Start();
  player.hardware.Control().Clock(2);
  player.SendLetters(0, "x");  // shorter than what was played of it
  player.hardware.Control().Clock(1);
  player.Module().DeleteAllBlocks();
  player.hardware.Control().Clock(9);
  EXPECT_EQ("abx IDL", player.Played());
}

}  // namespace
}  // namespace quillpg
