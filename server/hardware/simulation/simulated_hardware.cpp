#include "hardware/simulation/simulated_hardware.h"

#include "hardware/simulation/call_monitor.h"
#include "hardware/simulation/simulated_system.h"
#include "hardware/simulation/virtual_clock.h"

namespace quillpg {

struct CSimulatedHardware::PARTS {
  CCallMonitor calls;
  CVirtualClock clock;
  CSimulatedSystem system{calls, clock};
  CSimulationControl control{system, calls, clock};
};

CSimulatedHardware::CSimulatedHardware() : m_parts(std::make_unique<PARTS>()) {}
CSimulatedHardware::~CSimulatedHardware() = default;

CSimulationControl& CSimulatedHardware::Control() { return m_parts->control; }

Status CSimulatedHardware::Initialize() { return m_parts->system.Start(); }

Status CSimulatedHardware::GetSystem(CSystem** system) {
  if (!system) return E_FAIL;
  *system = &m_parts->system;
  return S_OK;
}

Status CSimulatedHardware::IsHardwarePresent(int& present) {
  present = m_parts->system.Mainframe().hardwarePresent ? 1 : 0;
  return S_OK;
}

Status CSimulatedHardware::SetMessageRouter(CMessageRouter* /*router*/) { return S_OK; }

Status CSimulatedHardware::RunPowerOnDiagnostics(TestResult& result) {
  result = m_parts->system.Mainframe().diagnostics;
  return S_OK;
}

}  // namespace quillpg
