#pragma once

#include "hardware/simulation/simulated_hardware.h"
#include "quillpg/host_services.h"

#include <functional>

namespace quillpg {
class CAppServer;
class CMessageRouter;
}  // namespace quillpg

namespace quillpg::tool {

/// The tool as the engine's host: when the engine yields after an interrupt, what runs is aborted.
class CToolHost : public CHostServices {
 public:
  void YieldToMessageLoop() override;

  std::function<void()> onInterrupt;
};

/// The engine from start to end of a command: a simulated mainframe, the tool as host, the server.
class CServerSession {
 public:
  /// `router` must outlive the session.
  explicit CServerSession(CMessageRouter& router);
  CServerSession(const CServerSession&) = delete;
  CServerSession& operator=(const CServerSession&) = delete;
  ~CServerSession();

  /// The mainframe. What it consists of is settled before the first Server().
  CSimulationControl& Simulation() { return m_hardware.Control(); }

  /// The server, started at the first call; null, with a word on standard error, when it does not
  /// start.
  CAppServer* Server();

  /// Called from the engine's yields once the user interrupts, again and again; aborting compile
  /// and download is the session's own affair.
  void OnInterrupt(std::function<void()> abort) { m_abort = std::move(abort); }

 private:
  void Abort();

  CMessageRouter& m_router;
  CSimulatedHardware m_hardware;
  CToolHost m_host;
  std::function<void()> m_abort;
  CAppServer* m_server = nullptr;
};

}  // namespace quillpg::tool
