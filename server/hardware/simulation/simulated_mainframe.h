#pragma once

#include "hardware/simulation/module_settings.h"
#include "hardware/simulation/simulated_identity.h"
#include "quillpg/engine_types.h"

#include <string>

namespace quillpg {

/// What one simulated module answers when it is asked who it is, and the settings that it starts
/// with. The only source of these answers.
struct SIMULATED_MODULE {
  int frame = 0;  ///< 0 mainframe, n expansion frame n
  int slot = SIMULATED_FIRST_SLOT;
  bool option = false;             ///< the memory option is fitted
  bool simulated = true;           ///< what VisaStub answers
  bool firmwareCompatible = true;  ///< what IsFirmwareCompatible answers
  Manufacturer manufacturer = Manufacturer::Quillmark;
  Device device = Device::PatternGenerator;
  std::string model{SIMULATED_MODEL_NAME};
  std::string serial{SIMULATED_SERIAL};
  std::string firmware{SIMULATED_FIRMWARE};
  std::string diagnostics{SIMULATED_DIAGNOSTICS};
  std::string pods{SIMULATED_PODS};  ///< comma-separated keywords, pods A to D
  CModuleSettings settings;          ///< at start and after ResetModule
};

/// What the mainframe answers.
struct SIMULATED_MAINFRAME {
  Mainframe type = Mainframe::Slots13;
  int expansions = 0;
  int slots = SIMULATED_FRAME_SLOTS;
  bool hardwarePresent = false;  ///< true: the engine compares every read-back
  TestResult diagnostics = TestResult::Pass;
  std::string frontPanel;
};

}  // namespace quillpg
