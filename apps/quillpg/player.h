#pragma once

#include <cstdint>

namespace quillpg {
class CAppServer;
class CMessageRouter;
class CSimulationControl;
}  // namespace quillpg

namespace quillpg::tool {

/// How a play ended, as the exit statuses tell it apart.
enum class PlayResult {
  Idle,         ///< the program came to its end
  Limit,        ///< it was stopped after the vectors asked for
  Waiting,      ///< it waits for an event that cannot come any more
  Interrupted,  ///< the user ended it
  Failed,       ///< the simulation could not go on
};

/// How long a play may last.
struct PLAY_LIMITS {
  std::int64_t vectors;    ///< at most so many
  bool holdWaits = false;  ///< run on through a wait that nothing to come can end
};

/// Starts the server's instruments and moves the clock of the simulated mainframe.
class CPlayer {
 public:
  CPlayer(CAppServer& server, CSimulationControl& simulation, CMessageRouter& router)
      : m_server(server), m_simulation(simulation), m_router(router) {}

  PlayResult Play(const PLAY_LIMITS& limits);

  /// The same in step mode, `step` vectors a step.
  PlayResult PlayStepwise(const PLAY_LIMITS& limits, int step);

  /// Vectors clocked by the module that got furthest.
  std::int64_t Clocked() const;

 private:
  template <typename Advance>
  PlayResult Run(const PLAY_LIMITS& limits, Advance advance);
  bool AllIdle() const;
  bool WaitsForGood() const;

  CAppServer& m_server;
  CSimulationControl& m_simulation;
  CMessageRouter& m_router;
};

}  // namespace quillpg::tool
