#pragma once

#include "quillpg/api.h"
#include "quillpg/result_codes.h"

#include <memory>
#include <string>
#include <vector>

namespace quillpg {

class CInstrumentManager;

/// One instrument of the working copy.
struct INSTRUMENT_INFO {
  int frame = -1;
  int moduleCount = -1;
  std::string name;
  int changed = 1;  ///< 1: no live instrument has exactly these modules
};

/// One module of the working copy.
struct MODULE_INFO {
  int slot = 0;
  int slotsOccupied = 0;
  int frame = -1;
  int index = 0;  ///< in the module manager
  long memoryDepth = 0;
  float clockDeskew = 0;  ///< nanoseconds
  int mergeable = 0;      ///< with the module before it
  std::string modelName;
  std::string serialNo;
  std::string diagnostics;
  std::string firmwareVersion;
};

/// Working copy behind a dialog that merges neighbouring modules into instruments (a master and up
/// to four slaves) and splits them again. Nothing changes for real before Update. Modules and
/// instruments are named by their position in the working copy, from 0; an instrument is always a
/// run of consecutive modules.
class QUILLPG_API CMergeManager {
 public:
  CMergeManager() = default;
  CMergeManager(const CMergeManager&) = delete;
  CMergeManager& operator=(const CMergeManager&) = delete;
  virtual ~CMergeManager() = default;

  /// Builds the working copy from the live instruments; edits so far are lost.
  Status Initialize(CInstrumentManager* instruments);

  /// `can` is 0 when the module's instrument is full. Does not look at MODULE_INFO::mergeable.
  Status CanMerge(int module, int& can) const;
  /// `can` is 1 for every module of a merged instrument, also for its first one, for which UnMerge
  /// fails.
  Status CanUnMerge(int module, int& can) const;
  /// Joins the instrument of `module` to that of the module before it.
  Status Merge(int module);
  /// Splits the instrument in front of `module`.
  Status UnMerge(int module);
  /// Makes the live instruments what the working copy says; those with the same modules keep their
  /// data.
  Status Update();

  Status AddInstrument(int frame, int position, int moduleCount);
  Status DeleteInstrument(int instrument);
  Status IsValidInstrumentName(const std::string& name, int& valid) const;
  Status GetUniqueInstrumentName(std::string& name);
  Status SetInstrumentName(int instrument, const std::string& name);
  Status GetInstrumentName(int instrument, std::string& name) const;
  /// "Master", "Slave1" to "Slave4", empty for a module alone.
  Status GetRoleName(int module, std::string& role) const;
  Status SetCurrentInst(int instrument);
  Status GetCurrentInst(int& instrument) const;

  // --- queries of the working copy; what is handed out stays the manager's. -1 (null) and E_FAIL
  // where there is none ---

  Status GetNoOfModules(int& count) const;
  Status GetModuleCount(int instrument, int& count) const;
  Status GetNoOfInstruments(int& count) const;
  Status GetModuleAt(int module, MODULE_INFO** info) const;
  Status GetInstrumentAt(int instrument, INSTRUMENT_INFO** info) const;
  Status GetModuleId(const MODULE_INFO* info, int& module) const;
  Status GetInstrumentId(const INSTRUMENT_INFO* info, int& instrument) const;
  Status GetInstrumentId(int module, int& instrument) const;
  Status GetFirstInstrumentId(int& instrument) const;
  Status GetLastInstrumentId(int& instrument) const;
  Status GetPrevInstrumentId(int instrument, int& previous) const;
  Status GetNextInstrumentId(int instrument, int& next) const;
  Status GetFirstModuleId(int instrument, int& module) const;
  Status GetLastModuleId(int instrument, int& module) const;
  Status GetPrevModuleId(int module, int& previous) const;
  Status GetNextModuleId(int module, int& next) const;
  /// Modules of all instruments before this one.
  Status GetNoOfModulesToTheLeft(int instrument, int& count) const;
  Status IsModuleMerged(int module, int& merged) const;
  /// Vectors; the smallest of the instrument's modules.
  Status GetMemoryDepth(int instrument, long& vectors) const;
  /// MHz.
  Status GetMaxClockSpeed(int instrument, int& megahertz) const;
  Status GetMaxChannelsPerModule(int instrument, int& channels) const;
  Status GetInstrumentInfo(const std::vector<std::unique_ptr<INSTRUMENT_INFO>>** list) const;
  Status GetModuleInfo(const std::vector<std::unique_ptr<MODULE_INFO>>** list) const;
};

}  // namespace quillpg
