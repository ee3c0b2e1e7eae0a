#pragma once

#include "hardware/simulation/sequencer.h"
#include "hardware/simulation/simulation_control.h"
#include "quillpg/result_codes.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quillpg {

class CSimulatedModule;

/// The clock that all sequencers of the mainframe run on, and the order in which they run.
class CVirtualClock {
 public:
  /// The modules of the mainframe in order; they stay the caller's.
  void SetModules(std::vector<CSimulatedModule*> modules);

  PLAY_ENVIRONMENT& Environment() { return m_environment; }
  void SetVectorsPerPoll(std::int64_t vectors);

  Status Clock(std::int64_t vectors);
  Status PlayUntilIdle(std::int64_t vectors, PlayEnd& end);
  /// Starts a module's sequencer together with its followers.
  Status Start(CSimulatedModule& module);
  /// Clocks one module that is in step mode; else nothing.
  Status Step(CSimulatedModule& module, int vectors);
  /// A status poll: moves the clock when the host asked for that.
  void Poll();

  /// The module whose sequencer drives `module`: itself, or the one that it follows.
  CSimulatedModule& MasterOf(CSimulatedModule& module) const;

 private:
  struct PLAYER {
    CSimulatedModule* module;
    std::int64_t left;  // vectors it may still clock
  };

  template <typename Operation>
  Status Guarded(Operation&& operation);
  void BindSources(CSimulatedModule& master) const;
  std::vector<PLAYER> MakePlayers(std::int64_t vectors);
  static PLAYER* PickNext(std::vector<PLAYER>& players, bool passStuck);
  static void PlaySlice(PLAYER& player, std::size_t players, bool stopWhenStuck);
  static void CatchUp(std::vector<PLAYER>& players, const PLAYER& leader);
  PlayEnd EndOf(const std::vector<PLAYER>& players) const;

  std::vector<CSimulatedModule*> m_modules;
  PLAY_ENVIRONMENT m_environment;
  std::int64_t m_vectorsPerPoll = 0;
  bool m_busy = false;
};

}  // namespace quillpg
