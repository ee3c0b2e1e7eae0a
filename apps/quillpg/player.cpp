#include "player.h"

#include "hardware/simulation/simulation_control.h"
#include "instrument/instrument.h"
#include "instrument/instrument_manager.h"
#include "interrupt.h"
#include "quillpg/app_server.h"
#include "quillpg/message_router.h"

#include <algorithm>
#include <optional>

namespace quillpg::tool {
namespace {

// Vectors between two looks at the interrupt flag and two steps of the progress bar.
constexpr std::int64_t kSlice = 262144;

/// The instruments of the server, null entries left out, with their list positions.
template <typename Visit>
void ForEachInstrument(CAppServer& server, Visit visit) {
  CInstrumentManager* manager = nullptr;
  int count = 0;
  if (server.GetInstrumentManager(&manager) != S_OK) return;
  (void)manager->GetNoOfInstruments(count);
  for (int i = 0; i < count; ++i) {
    CInstrument* instrument = nullptr;
    if (manager->GetInstrumentAt(i, &instrument) == S_OK && instrument) {
      visit(i, *instrument);
    }
  }
}

}  // namespace

/// Starts, then calls `advance(vectors)` until it gives a result or the limit is reached.
template <typename Advance>
PlayResult CPlayer::Run(const PLAY_LIMITS& limits, Advance advance) {
  m_router.SetProgressTitle("Playing");
  (void)m_server.Run();
  std::optional<PlayResult> result;
  for (std::int64_t clocked = 0; !result; clocked = Clocked()) {
    m_router.SetProgressStatus(
        static_cast<int>(static_cast<double>(clocked) / static_cast<double>(limits.vectors) * 100));
    if (Interrupted()) {
      result = PlayResult::Interrupted;
    } else if (clocked >= limits.vectors) {
      result = PlayResult::Limit;
    } else {
      result = advance(limits.vectors - clocked);
    }
  }
  if (*result != PlayResult::Idle) (void)m_server.Stop();
  return *result;
}

PlayResult CPlayer::Play(const PLAY_LIMITS& limits) {
  return Run(limits, [&](std::int64_t left) -> std::optional<PlayResult> {
    const std::int64_t slice = std::min(left, kSlice);
    PlayEnd end = PlayEnd::Limit;
    if (Failed(m_simulation.PlayUntilIdle(slice, end))) return PlayResult::Failed;
    if (end == PlayEnd::Idle) return PlayResult::Idle;
    if (end != PlayEnd::Waiting) return std::nullopt;
    if (!limits.holdWaits) return PlayResult::Waiting;
    // The slice was played in part before the wait came.
    const std::int64_t rest = std::min(limits.vectors - Clocked(), kSlice);
    if (Failed(m_simulation.Clock(rest))) return PlayResult::Failed;
    return std::nullopt;
  });
}

PlayResult CPlayer::PlayStepwise(const PLAY_LIMITS& limits, int step) {
  ForEachInstrument(
      m_server, [](int, CInstrument& instrument) { (void)instrument.SetRunMode(RunMode::Step); });
  return Run(limits, [&](std::int64_t left) -> std::optional<PlayResult> {
    const int steps = static_cast<int>(std::min<std::int64_t>(left, step));
    ForEachInstrument(m_server, [&](int i, CInstrument&) { (void)m_server.Step(i, steps); });
    if (AllIdle()) return PlayResult::Idle;
    if (!limits.holdWaits && WaitsForGood()) return PlayResult::Waiting;
    return std::nullopt;
  });
}

std::int64_t CPlayer::Clocked() const {
  std::int64_t most = 0;
  for (int i = 0; i < m_simulation.ModuleCount(); ++i) {
    SEQUENCER_POSITION position;
    if (m_simulation.GetSequencer(i, position) == S_OK) most = std::max(most, position.clocked);
  }
  return most;
}

bool CPlayer::AllIdle() const {
  for (int i = 0; i < m_simulation.ModuleCount(); ++i) {
    SEQUENCER_POSITION position;
    if (m_simulation.GetSequencer(i, position) == S_OK && position.state != ModuleState::Idle) {
      return false;
    }
  }
  return true;
}

/// True when every module that is not idle waits for what cannot come any more.
bool CPlayer::WaitsForGood() const {
  bool waits = false;
  for (int i = 0; i < m_simulation.ModuleCount(); ++i) {
    SEQUENCER_POSITION position;
    if (m_simulation.GetSequencer(i, position) != S_OK) continue;
    if (position.state == ModuleState::Idle) continue;
    if (!position.stuck) return false;
    waits = true;
  }
  return waits;
}

}  // namespace quillpg::tool
