#pragma once

#include "hardware/hardware_library.h"
#include "hardware/simulation/simulated_mainframe.h"
#include "hardware/simulation/simulated_module.h"

#include <memory>
#include <string>
#include <vector>

namespace quillpg {

class CCallMonitor;
class CVirtualClock;

/// The simulated mainframe: owns its modules and answers for the frame.
class CSimulatedSystem final : public CSystem, public CSystemInfo {
 public:
  /// Monitor and clock must outlive the system. It starts with the five modules of the default.
  CSimulatedSystem(CCallMonitor& calls, CVirtualClock& clock);

  SIMULATED_MAINFRAME& Mainframe() { return m_mainframe; }
  int ModuleCount() const { return static_cast<int>(m_modules.size()); }
  CSimulatedModule* Module(int index) const;  ///< null for a bad index

  /// `count` equal modules in every second slot from the first one on.
  static std::vector<SIMULATED_MODULE> MakeDescriptions(int count, bool option);

  /// Replaces the modules. The engine may still know those that were handed out: they live on until
  /// modules that were handed out are replaced the next time.
  void SetModules(std::vector<SIMULATED_MODULE> descriptions);

  // CSystem
  Status GetSystemInfo(CSystemInfo** info) override;
  Status GetFirstSorrelModulePos(int& pos) override;
  Status GetNextSorrelModule(int& pos, CSorrelModule** module) override;
  Status GetModuleAt(int slot, CVXIModule** module) override;
  Status IsSorrelModule(Device device, Manufacturer manufacturer, int& is) override;
  Status IsBenchTop(int& is) override;
  Status GetControllerSlots(int& first, int& last) override;
  Status GetControllerProperties(int controller, std::string& text) override;
  Status PrepareLoadFromStub() override;
  Status AddModuleFromStub(int option) override;
  Status LoadFromStubComplete() override;

  // CSystemInfo
  Status GetMainframeType(quillpg::Mainframe& type) override;
  Status GetNoOfExpansions(int& count) override;
  Status GetNoOfModules(int& count) override;
  Status GetSystemSlots(int& count) override;
  Status GetFrontPanelConfig(std::string& text) override;

 private:
  using MODULES = std::vector<std::unique_ptr<CSimulatedModule>>;

  CCallMonitor& m_calls;
  CVirtualClock& m_clock;
  SIMULATED_MAINFRAME m_mainframe;
  MODULES m_modules;
  MODULES m_retired;         // replaced, but perhaps still known to the engine
  bool m_handedOut = false;  // one of m_modules is known outside
  std::vector<SIMULATED_MODULE> m_fromStub;
};

}  // namespace quillpg
