#include "hardware/simulation/sequencer.h"

#include "hardware/simulation/module_settings.h"
#include "hardware/simulation/vector_sink.h"

#include <algorithm>
#include <limits>

namespace quillpg {
namespace {

constexpr std::int64_t kAlways = -1;  // jump-if
constexpr std::int64_t kEndless = 0;  // repeat
constexpr int kUndefinedSignal = 2;
constexpr std::int64_t kMostClocked = std::numeric_limits<std::int64_t>::max() / 4;

bool IsEdge(const CModuleSettings& settings, Setting mode) {
  return settings.Number(mode) == static_cast<int>(EventMode::Edge);
}

int SignalLevel(std::int64_t value) {
  return value == 0 || value == 1 ? static_cast<int>(value) : kUndefinedSignal;
}

}  // namespace

CSequencer::CSequencer(int module, const CPatternProgram& program, const CModuleSettings& settings,
                       const PLAY_ENVIRONMENT& environment)
    : m_module(module), m_program(program), m_settings(settings), m_environment(environment) {}

void CSequencer::SetSources(const std::vector<PIN_SOURCE>& sources) {
  m_pins.SetSources(sources);
  m_held.resize(sources.size());
}

bool CSequencer::IsActive() const {
  return m_state == ModuleState::Waiting || m_state == ModuleState::Running;
}

bool CSequencer::IsStuck() const {
  return m_state == ModuleState::Waiting && WaitEnd() == CEventStimulus::NEVER;
}

int CSequencer::Line() const { return IsActive() ? static_cast<int>(m_line) : -1; }

int CSequencer::AwaitedEvent() const {
  return m_state == ModuleState::Waiting ? static_cast<int>(m_record.waitFor) : 0;
}

// --- control ---

void CSequencer::Initiate() {
  m_state = ModuleState::Initialising;
  m_clocked = 0;
  m_idleEntries = 0;
  std::ranges::fill(m_held, 0);
  m_signal = 0;
}

Status CSequencer::Start() {
  if (m_state != ModuleState::Initialising) return E_FAIL;
  GoTo(0);
  return S_OK;
}

void CSequencer::Abort() { m_state = ModuleState::Idle; }

void CSequencer::Advance() {
  if (m_state == ModuleState::Waiting) {
    m_idleEntries = 0;
    GoTo(StartOutput());
  } else if (m_state == ModuleState::Running && m_record.repeat == kEndless) {
    m_advanceAsked = true;
  }
}

void CSequencer::Jump() {
  if (m_state == ModuleState::Waiting) {
    m_idleEntries = 0;
    GoTo(JumpTarget());
  } else if (m_state == ModuleState::Running) {
    m_jumpAsked = true;
  }
}

std::int64_t CSequencer::Clock(std::int64_t vectors, bool stopWhenStuck) {
  const std::int64_t asked = std::min(vectors, kMostClocked - m_clocked);
  std::int64_t left = asked;
  while (left > 0 && IsActive() && !(stopWhenStuck && IsStuck())) {
    left -= m_state == ModuleState::Waiting ? Hold(left) : Play(left);
  }
  return asked - left;
}

// --- entering and leaving lines ---

void CSequencer::GoTo(std::int64_t line) {
  while (line != SETTLED) line = EnterLine(line);
}

std::int64_t CSequencer::EnterLine(std::int64_t line) {
  const std::vector<SEQUENCE_RECORD>& sequence = m_program.Sequence();
  const auto lines = static_cast<std::int64_t>(sequence.size());
  if (line < 0 || line >= lines || m_idleEntries >= lines) {
    m_state = ModuleState::Idle;
    return SETTLED;
  }
  ++m_idleEntries;
  m_line = line;
  m_record = sequence[static_cast<std::size_t>(line)];
  m_advanceAsked = false;
  m_jumpAsked = false;
  m_waitBegan = m_clocked;
  if (m_record.waitFor != 0 && WaitEnd() > m_clocked) {
    m_state = ModuleState::Waiting;
    return SETTLED;
  }
  return StartOutput();
}

std::int64_t CSequencer::StartOutput() {
  m_state = ModuleState::Running;
  m_repetitionsLeft = std::max<std::int64_t>(m_record.repeat, 1);
  ResolveOutput();
  return BeginRepetition() ? SETTLED : LineAfterNothing();
}

void CSequencer::ResolveOutput() {
  m_items.clear();
  if (m_record.output >= 0) {
    m_items.push_back({m_record.output, 1});
  } else if (m_record.output != std::numeric_limits<std::int64_t>::min()) {
    const auto* records = m_program.SubSequence(-m_record.output);
    if (records) m_items = *records;
  }
}

bool CSequencer::BeginRepetition() {
  m_repetitionBegan = m_clocked;
  m_item = 0;
  SkipEmptyItems();
  return m_item < m_items.size();
}

void CSequencer::SkipEmptyItems() {
  while (m_item < m_items.size() && m_pins.BlockSize(m_items[m_item].block) == 0) ++m_item;
  m_row = 0;
  if (m_item < m_items.size()) m_itemLeft = std::max<std::int64_t>(m_items[m_item].count, 1);
}

std::int64_t CSequencer::EndRepetition() {
  if (m_jumpAsked || JumpEventSeen()) return JumpTarget();
  const bool endless = m_record.repeat == kEndless;
  const bool done =
      endless ? m_advanceAsked || m_record.jumpIf == kAlways : --m_repetitionsLeft == 0;
  if (!done && BeginRepetition()) return SETTLED;
  return EndLine();
}

std::int64_t CSequencer::EndLine() const {
  return m_record.jumpIf == kAlways ? JumpTarget() : m_line + 1;
}

std::int64_t CSequencer::JumpTarget() const {
  return std::max<std::int64_t>(m_record.jumpTo, NO_LINE);
}

std::int64_t CSequencer::LineAfterNothing() const {
  // One repetition without a vector stands for all, or an endless line would never end.
  return JumpEventSeen() ? JumpTarget() : EndLine();
}

// --- events ---

std::int64_t CSequencer::WaitEnd() const {
  const EVENT_TRUTH& event = m_program.Event(m_record.waitFor);
  if (!IsEdge(m_settings, Setting::EventModeForAdvance)) {
    return m_environment.stimulus.FirstTrue(event, m_clocked);
  }
  return std::max(m_environment.stimulus.FirstEdge(event, m_waitBegan), m_clocked);
}

bool CSequencer::JumpEventSeen() const {
  if (m_record.jumpIf == 0 || m_record.jumpIf == kAlways) return false;
  const EVENT_TRUTH& event = m_program.Event(m_record.jumpIf);
  if (!IsEdge(m_settings, Setting::EventModeForJump)) {
    return m_environment.stimulus.IsTrue(event, std::max<std::int64_t>(m_clocked - 1, 0));
  }
  return m_environment.stimulus.FirstEdge(event, m_repetitionBegan, m_clocked) !=
         CEventStimulus::NEVER;
}

// --- time ---

std::int64_t CSequencer::Hold(std::int64_t vectors) {
  const std::int64_t end = WaitEnd();
  const std::int64_t held = std::min(vectors, end - m_clocked);
  if (held > 0) {
    const std::vector<std::uint64_t> highZ = m_pins.HighZ(m_held);
    Drive(m_held.data(), highZ.empty() ? nullptr : highZ.data(), 1, held);
  }
  if (m_clocked == end) GoTo(StartOutput());
  return held;
}

std::int64_t CSequencer::Play(std::int64_t vectors) {
  const std::int64_t before = m_clocked;
  const PIN_ROWS* rows = m_pins.Rows(m_items[m_item].block);
  if (!rows || m_row >= rows->size) {
    // The block went away, or became shorter, while it played.
    m_itemLeft = 1;
  } else if (m_row == 0 && vectors >= rows->size) {
    PlayRepetitions(*rows, vectors);
  } else {
    const std::int64_t count = std::min(vectors, rows->size - m_row);
    DriveRows(*rows, m_row, count, 1);
    m_row += count;
    if (m_row < rows->size) return count;
  }
  m_row = 0;
  if (--m_itemLeft == 0) {
    ++m_item;
    SkipEmptyItems();
    if (m_item >= m_items.size()) GoTo(EndRepetition());
  }
  return m_clocked - before;
}

void CSequencer::PlayRepetitions(const PIN_ROWS& rows, std::int64_t vectors) {
  const std::int64_t fitting = vectors / rows.size;
  std::int64_t repeat = 0;
  if (m_record.output >= 0) {
    // One block is a whole repetition: all but the last are counted here.
    repeat = UndisturbedRepetitions(rows.size, fitting);
    m_repetitionsLeft -= repeat - 1;
    m_repetitionBegan += (repeat - 1) * rows.size;
  } else {
    repeat = std::min(fitting, m_itemLeft);
    m_itemLeft -= repeat - 1;
  }
  DriveRows(rows, 0, rows.size, repeat);
}

std::int64_t CSequencer::UndisturbedRepetitions(std::int64_t length, std::int64_t most) const {
  if (m_jumpAsked || m_advanceAsked) return 1;
  const bool endless = m_record.repeat == kEndless && m_record.jumpIf != kAlways;
  const std::int64_t repetitions = endless ? most : std::min(most, m_repetitionsLeft);
  if (m_record.jumpIf == 0 || m_record.jumpIf == kAlways) return repetitions;
  const EVENT_TRUTH& event = m_program.Event(m_record.jumpIf);
  const std::int64_t end = m_clocked + repetitions * length;
  const std::int64_t seen = IsEdge(m_settings, Setting::EventModeForJump)
                                ? m_environment.stimulus.FirstEdge(event, m_clocked, end)
                                : m_environment.stimulus.FirstTrue(event, m_clocked, end);
  return std::clamp<std::int64_t>((seen - m_clocked) / length, 1, repetitions);
}

void CSequencer::DriveRows(const PIN_ROWS& rows, std::int64_t first, std::int64_t count,
                           std::int64_t repeat) {
  const auto width = static_cast<std::int64_t>(m_held.size());
  const std::uint64_t* levels = rows.levels.data() + first * width;
  m_signal = SignalLevel(m_record.signal);
  Drive(levels, rows.highZ.empty() ? nullptr : rows.highZ.data() + first * width, count, repeat);
  std::copy_n(levels + (count - 1) * width, width, m_held.begin());
}

void CSequencer::Drive(const std::uint64_t* levels, const std::uint64_t* highZ, std::int64_t count,
                       std::int64_t repeat) {
  const VECTOR_RUN run{m_module, m_pins.ModuleCount(),     m_clocked, count, repeat, levels,
                       highZ,    static_cast<int>(m_line), m_signal};
  for (CVectorSink* sink : m_environment.sinks) sink->OnRun(run);
  m_clocked += count * repeat;
  m_idleEntries = 0;
}

}  // namespace quillpg
