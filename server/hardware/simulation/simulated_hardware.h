#pragma once

#include "hardware/hardware_library.h"
#include "hardware/simulation/simulation_control.h"
#include "quillpg/api.h"

#include <memory>

namespace quillpg {

/// The hardware library without hardware: a mainframe with pattern generator modules that keep
/// what they are sent, answer with it and play what was downloaded on a virtual clock. At first
/// five modules in slots 3, 5, 7, 9 and 11, or those that a configuration file declares; Control()
/// changes that and everything else.
///
/// Independent of any other object of this class: a test makes its own and installs it.
class QUILLPG_API CSimulatedHardware : public CHardwareManager {
 public:
  CSimulatedHardware();
  ~CSimulatedHardware() override;
  CSimulatedHardware(const CSimulatedHardware&) = delete;
  CSimulatedHardware& operator=(const CSimulatedHardware&) = delete;

  CSimulationControl& Control();

  Status Initialize() override;
  Status GetSystem(CSystem** system) override;
  Status IsHardwarePresent(int& present) override;
  Status SetMessageRouter(CMessageRouter* router) override;
  Status RunPowerOnDiagnostics(TestResult& result) override;

 private:
  struct PARTS;
  std::unique_ptr<PARTS> m_parts;
};

}  // namespace quillpg
