#pragma once

#include "base/ordered_list.h"
#include "hardware/module.h"
#include "quillpg/api.h"
#include "quillpg/result_codes.h"

#include <string>

namespace quillpg {

class CMessageRouter;
class CSorrelModule;
class CSystem;

/// Owns the modules of the running system, in the order in which the hardware library reports them.
///
/// Modules that are about to be destroyed are first taken out of every instrument of the running
/// server, so that no instrument refers to a dead one.
class QUILLPG_API CModuleManager {
 public:
  CModuleManager() = default;
  ~CModuleManager() = default;

  /// Copying makes one new module for each of the source: same hardware modules, default settings.
  CModuleManager(const CModuleManager& other);
  CModuleManager& operator=(const CModuleManager& other);

  /// Discovers the modules anew: simulated ones and those whose firmware the engine can work with;
  /// others are left out silently. Reads no settings: see InitializeModules. S_OK, with no modules,
  /// also when the library gives no system.
  Status Initialize();

  /// `count` modules without hardware, none for a count below 1; E_FAIL, with no modules, above
  /// 256.
  Status Initialize(int count);

  /// Reads every module's settings from the hardware: CModule::Initialize.
  Status InitializeModules();
  Status ResetModules();

  /// Both are passed to every module's hardware object, now and after a later discovery. The router
  /// stays the caller's; null drops messages.
  Status SetLogDirectory(const std::string& directory);
  Status SetMessageRouter(CMessageRouter* router);

  Status GetNoOfModules(int& count) const;
  /// The module stays the manager's; null, with S_OK, for an index out of range.
  Status GetModuleAt(int index, CModule** module) const;
  /// Null and E_FAIL for an index out of range; null and S_OK for a module without hardware.
  Status GetSorrelModuleAt(int index, CSorrelModule** module) const;
  /// -1 and E_FAIL for a module that is not in the list.
  Status GetModulePos(const CModule* module, int& position) const;

 private:
  void DeleteAll();
  Status Discover(CSystem& system);
  Status AppendModule(CSorrelModule* hardware);
  template <typename Operation>
  void ForEachHardware(Operation&& operation) const;

  COrderedList<CModule> m_modules;
  std::string m_logDirectory;
  bool m_logDirectorySet = false;
  CMessageRouter* m_messageRouter = nullptr;
};

}  // namespace quillpg
