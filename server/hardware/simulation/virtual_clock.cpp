#include "hardware/simulation/virtual_clock.h"

#include "base/guard.h"
#include "hardware/simulation/module_settings.h"
#include "hardware/simulation/simulated_module.h"
#include "hardware/simulation/vector_sink.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace quillpg {
namespace {

constexpr double kInitialPeriod = 1e-4;
constexpr double kLongestPeriod = 1e9;

/// Any number can be set as the clock period; one that is no period counts as the initial one.
double Period(const CSimulatedModule& module) {
  const double period = module.Settings().At(Setting::ClockPeriod);
  return period > 0 && period < kLongestPeriod ? period : kInitialPeriod;
}

/// Seconds since Start.
double Elapsed(const CSimulatedModule& module) {
  return static_cast<double>(module.Sequencer().Clocked()) * Period(module);
}

bool IsStepping(const CSimulatedModule& module) {
  return module.Settings().Number(Setting::RunMode) == static_cast<int>(RunMode::Step);
}

}  // namespace

void CVirtualClock::SetModules(std::vector<CSimulatedModule*> modules) {
  m_modules = std::move(modules);
}

void CVirtualClock::SetVectorsPerPoll(std::int64_t vectors) {
  m_vectorsPerPoll = std::max<std::int64_t>(vectors, 0);
}

/// Nothing that is called from a sink may move the clock again.
template <typename Operation>
Status CVirtualClock::Guarded(Operation&& operation) {
  if (m_busy) return E_FAIL;
  m_busy = true;
  const Status status = GuardAllocation(std::forward<Operation>(operation));
  m_busy = false;
  return status;
}

Status CVirtualClock::Clock(std::int64_t vectors) {
  if (vectors < 0) return E_FAIL;
  return Guarded([&] {
    std::vector<PLAYER> players = MakePlayers(vectors);
    while (PLAYER* player = PickNext(players, false)) PlaySlice(*player, players.size(), false);
    return S_OK;
  });
}

Status CVirtualClock::PlayUntilIdle(std::int64_t vectors, PlayEnd& end) {
  if (vectors < 0) return E_FAIL;
  return Guarded([&] {
    std::vector<PLAYER> players = MakePlayers(vectors);
    while (PLAYER* player = PickNext(players, true)) {
      PlaySlice(*player, players.size(), true);
      CatchUp(players, *player);
    }
    end = EndOf(players);
    return S_OK;
  });
}

Status CVirtualClock::Start(CSimulatedModule& module) {
  return Guarded([&] {
    BindSources(module);
    return module.Sequencer().Start();
  });
}

Status CVirtualClock::Step(CSimulatedModule& module, int vectors) {
  return Guarded([&] {
    if (IsStepping(module) && vectors > 0) {
      BindSources(module);
      module.Sequencer().Clock(vectors);
    }
    return S_OK;
  });
}

void CVirtualClock::Poll() {
  if (m_vectorsPerPoll > 0 && !m_busy) (void)Clock(m_vectorsPerPoll);  // the answer tells the state
}

CSimulatedModule& CVirtualClock::MasterOf(CSimulatedModule& module) const {
  const auto place = std::ranges::find(m_modules, &module);
  if (place == m_modules.end()) return module;
  const auto index = place - m_modules.begin();
  const std::int64_t weld = module.WeldMode();
  return weld > 0 && weld <= index ? **(place - weld) : module;
}

/// The followers of a master are the modules right after it that are welded to it.
void CVirtualClock::BindSources(CSimulatedModule& master) const {
  std::vector<PIN_SOURCE> sources{master.Pins()};
  auto place = std::ranges::find(m_modules, &master);
  if (place != m_modules.end()) {
    for (++place; place != m_modules.end(); ++place) {
      if ((*place)->WeldMode() == 0 || &MasterOf(**place) != &master) break;
      sources.push_back((*place)->Pins());
    }
  }
  master.Sequencer().SetSources(sources);
}

std::vector<CVirtualClock::PLAYER> CVirtualClock::MakePlayers(std::int64_t vectors) {
  std::vector<PLAYER> players;
  for (CSimulatedModule* module : m_modules) {
    if (!module->Sequencer().IsActive() || IsStepping(*module)) continue;
    if (&MasterOf(*module) != module) continue;
    BindSources(*module);
    players.push_back({module, vectors});
  }
  return players;
}

/// The active player that is behind in time; null when none may go on.
CVirtualClock::PLAYER* CVirtualClock::PickNext(std::vector<PLAYER>& players, bool passStuck) {
  PLAYER* next = nullptr;
  for (PLAYER& player : players) {
    const CSequencer& sequencer = player.module->Sequencer();
    if (!sequencer.IsActive() || player.left == 0) continue;
    if (passStuck && sequencer.IsStuck()) continue;
    if (!next || Elapsed(*player.module) < Elapsed(*next->module)) next = &player;
  }
  return next;
}

void CVirtualClock::PlaySlice(PLAYER& player, std::size_t players, bool stopWhenStuck) {
  const std::int64_t slice = players > 1 ? std::min(player.left, SEQUENCER_SLICE) : player.left;
  const std::int64_t clocked = player.module->Sequencer().Clock(slice, stopWhenStuck);
  player.left = clocked > 0 ? player.left - clocked : 0;  // 0 only at the end of all counting
}

/// A sequencer that waits for nothing that will come still holds its pins while others play.
void CVirtualClock::CatchUp(std::vector<PLAYER>& players, const PLAYER& leader) {
  for (PLAYER& player : players) {
    CSequencer& sequencer = player.module->Sequencer();
    if (!sequencer.IsStuck()) continue;
    const double behind =
        (Elapsed(*leader.module) - Elapsed(*player.module)) / Period(*player.module);
    const double most = static_cast<double>(std::min(player.left, SEQUENCER_SLICE));
    const double vectors = std::clamp(std::round(behind), 0.0, most);
    player.left -= sequencer.Clock(static_cast<std::int64_t>(vectors));
  }
}

PlayEnd CVirtualClock::EndOf(const std::vector<PLAYER>& players) const {
  bool stuck = false;
  for (const PLAYER& player : players) {
    const CSequencer& sequencer = player.module->Sequencer();
    if (!sequencer.IsActive()) continue;
    if (!sequencer.IsStuck()) return PlayEnd::Limit;
    stuck = true;
  }
  if (stuck) return PlayEnd::Waiting;
  const bool steps = std::ranges::any_of(m_modules, [](const CSimulatedModule* module) {
    return module->Sequencer().IsActive() && IsStepping(*module);
  });
  return steps ? PlayEnd::Stepping : PlayEnd::Idle;
}

}  // namespace quillpg
