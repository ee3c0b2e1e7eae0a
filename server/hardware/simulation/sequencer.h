#pragma once

#include "hardware/simulation/event_stimulus.h"
#include "hardware/simulation/pattern_program.h"
#include "hardware/simulation/pin_driver.h"
#include "quillpg/engine_types.h"
#include "quillpg/result_codes.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quillpg {

class CModuleSettings;
class CVectorSink;

/// What all sequencers share: the event inputs and those who watch the pins.
struct PLAY_ENVIRONMENT {
  CEventStimulus stimulus;
  std::vector<CVectorSink*> sinks;
};

/// Plays the program of one module: enters lines, waits, repeats and jumps, and hands what the pins
/// carry to the sinks. Repeats are handed over as runs.
///
/// Events are looked at in vectors: a wait with the levels of the vector that would be played next,
/// a jump-if with the levels of the last vector of the repetition. An edge is a vector at which the
/// event is true and was false one vector before; it counts for the wait or repetition that it lies
/// in, also at its first vector.
///
/// Everything that takes no time happens at once, so that the state is always the true one: after
/// the last vector of the program the sequencer is idle.
class CSequencer {
 public:
  /// Everything referred to belongs to the module and must stay.
  CSequencer(int module, const CPatternProgram& program, const CModuleSettings& settings,
             const PLAY_ENVIRONMENT& environment);

  /// The master and its followers; see CPinDriver::SetSources.
  void SetSources(const std::vector<PIN_SOURCE>& sources);

  void Initiate();
  /// E_FAIL unless the sequencer was initiated.
  Status Start();
  void Abort();
  /// Satisfies a wait; ends an endless line after its present repetition. Else nothing.
  void Advance();
  /// Ends a wait at once, a line after its present repetition, and goes to the line's jump-to.
  void Jump();

  /// Clocks at most `vectors`; gives how many, fewer when the program ended or when it is to stop
  /// at a wait that never ends.
  std::int64_t Clock(std::int64_t vectors, bool stopWhenStuck = false);

  ModuleState State() const { return m_state; }
  bool IsActive() const;  ///< plays or waits
  /// Waits for an event that the stimulus never makes true any more.
  bool IsStuck() const;
  int Line() const;          ///< -1 unless active
  int AwaitedEvent() const;  ///< 0 unless waiting
  std::int64_t Clocked() const { return m_clocked; }

 private:
  static constexpr std::int64_t NO_LINE = -1;  // entering it ends the program
  static constexpr std::int64_t SETTLED = -2;  // no line to enter now

  /// Enters lines, from `line` on, until one takes time or the program ends.
  void GoTo(std::int64_t line);
  // Each gives the line to enter next, or SETTLED.
  std::int64_t EnterLine(std::int64_t line);
  std::int64_t StartOutput();
  std::int64_t EndRepetition();
  std::int64_t EndLine() const;
  std::int64_t LineAfterNothing() const;
  std::int64_t JumpTarget() const;

  void ResolveOutput();
  bool BeginRepetition();
  void SkipEmptyItems();

  std::int64_t WaitEnd() const;
  bool JumpEventSeen() const;
  std::int64_t Hold(std::int64_t vectors);
  std::int64_t Play(std::int64_t vectors);
  void PlayRepetitions(const PIN_ROWS& rows, std::int64_t vectors);
  std::int64_t UndisturbedRepetitions(std::int64_t length, std::int64_t most) const;
  void DriveRows(const PIN_ROWS& rows, std::int64_t first, std::int64_t count, std::int64_t repeat);
  void Drive(const std::uint64_t* levels, const std::uint64_t* highZ, std::int64_t count,
             std::int64_t repeat);

  const int m_module;
  const CPatternProgram& m_program;
  const CModuleSettings& m_settings;
  const PLAY_ENVIRONMENT& m_environment;
  CPinDriver m_pins;

  ModuleState m_state = ModuleState::Idle;
  std::int64_t m_clocked = 0;
  std::int64_t m_line = 0;
  SEQUENCE_RECORD m_record;        // of m_line, as it was on entry
  std::int64_t m_idleEntries = 0;  // lines entered since time last passed
  bool m_advanceAsked = false;
  bool m_jumpAsked = false;

  std::int64_t m_waitBegan = 0;
  std::int64_t m_repetitionBegan = 0;
  std::int64_t m_repetitionsLeft = 0;  // this one included; not counted when endless

  std::vector<SUBSEQUENCE_RECORD> m_items;  // blocks of one repetition
  std::size_t m_item = 0;
  std::int64_t m_itemLeft = 0;  // passes of the item, this one included
  std::int64_t m_row = 0;       // vectors of this pass already played

  std::vector<std::uint64_t> m_held;  // the last vector driven
  int m_signal = 0;                   // the last level of the signal output
};

}  // namespace quillpg
