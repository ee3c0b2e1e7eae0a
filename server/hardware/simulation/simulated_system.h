#pragma once

#include "hardware/hardware_library.h"
#include "hardware/simulation/module_list.h"
#include "hardware/simulation/simulated_mainframe.h"
#include "hardware/simulation/simulated_module.h"

#include <filesystem>
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
  CModuleList& Modules() const { return *m_modules; }

  /// `count` equal modules in every second slot from the first one on.
  static std::vector<SIMULATED_MODULE> MakeDescriptions(int count, bool option);

  /// Replaces the modules, and Start keeps these. The old ones live on until modules that were
  /// discovered after them are replaced in turn: the engine and the host may still know them.
  void SetModules(std::vector<SIMULATED_MODULE> descriptions);
  /// The configuration file to take instead of the one that is found; empty ends that. Start looks
  /// for modules in it again, whatever SetModules said before.
  void SetStubFile(const std::string& path);
  /// Makes the modules that the configuration file declares, when there is one, no hardware, and no
  /// modules of the host. Those of a file that is gone give way to the default.
  Status Start();

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
  std::unique_ptr<CModuleList> MakeDefault() const;
  void Replace(std::unique_ptr<CModuleList> modules);

  CCallMonitor& m_calls;
  CVirtualClock& m_clock;
  SIMULATED_MAINFRAME m_mainframe;
  std::unique_ptr<CModuleList> m_modules;               // never null
  std::vector<std::unique_ptr<CModuleList>> m_retired;  // replaced, but perhaps still known
  bool m_discovered = false;                            // m_modules are what the engine knows now
  bool m_declared = false;     // m_modules are those that a configuration file declared at start
  bool m_hostModules = false;  // the host said which modules there are
  std::vector<SIMULATED_MODULE> m_fromStub;
  std::filesystem::path m_stubPath;  // empty: searched for
};

}  // namespace quillpg
