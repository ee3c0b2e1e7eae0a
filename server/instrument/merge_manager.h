#pragma once

#include "base/ordered_list.h"
#include "quillpg/api.h"
#include "quillpg/result_codes.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quillpg {

class CInstrument;
class CInstrumentManager;
class CModule;
class CModuleManager;

/// One instrument of the working copy.
struct INSTRUMENT_INFO {
  int frame = -1;
  int moduleCount = -1;
  std::string name;
  int changed = 1;  ///< 1: no live instrument has exactly these modules
};

inline std::string_view NameOf(const INSTRUMENT_INFO& info) { return info.name; }

/// One module of the working copy. Without hardware it has no slot, no frame and no texts.
struct MODULE_INFO {
  int slot = -1;
  int slotsOccupied = 0;
  int frame = -1;
  int index = 0;          ///< in the module manager
  long memoryDepth = 0;   ///< vectors in FULL mode
  float clockDeskew = 0;  ///< nanoseconds; what stands here is sent by Update
  int mergeable = 0;      ///< with the module before it
  std::string modelName;
  std::string serialNo;
  std::string diagnostics;
  std::string firmwareVersion;
};

/// Working copy behind a dialog that merges neighbouring modules into instruments (a master and up
/// to four slaves) and splits them again. Nothing changes for real before Update. Modules and
/// instruments are named by their position in the working copy, from 0; an instrument is always a
/// run of consecutive modules, which begins where the instrument before it ends.
///
/// Entries of the instrument list may be empty after AddInstrument beyond the end: positions and
/// counts include them, walks and Update skip them.
class QUILLPG_API CMergeManager {
 public:
  CMergeManager() = default;
  CMergeManager(const CMergeManager&) = delete;
  CMergeManager& operator=(const CMergeManager&) = delete;
  virtual ~CMergeManager() = default;

  /// Builds the working copy from the live instruments; edits so far are lost, the counter of
  /// generated names goes on. E_FAIL, with an empty copy, for null and without a server.
  Status Initialize(CInstrumentManager* instruments);

  /// `can` is 0 when the module's instrument is full. Looks neither at MODULE_INFO::mergeable nor
  /// at the neighbour (deliberate): the first module and a sum above the limit fail in Merge. 0 and
  /// E_FAIL for a module that no instrument holds.
  Status CanMerge(int module, int& can) const;
  /// `can` is 1 for every module of a merged instrument, also for its first one, for which UnMerge
  /// fails (deliberate). 0 and E_FAIL for a module that no instrument holds.
  Status CanUnMerge(int module, int& can) const;
  /// Joins the instrument of `module` to that of the module before it, which gets a new name and
  /// becomes current. E_FAIL, with nothing changed, when both are one and for more than five
  /// modules.
  Status Merge(int module);
  /// Splits the instrument in front of `module`; both parts get new names, the first one becomes
  /// current. S_OK for a module alone; E_FAIL for the first module of a merged instrument.
  Status UnMerge(int module);
  /// Makes the live instruments what the working copy says. Those that have the modules of one of
  /// its entries keep their data, under whatever name, and take the entry's name; the others are
  /// destroyed and made anew with defaults and without an event handler. Without an edit of the
  /// instrument list since Initialize only names, deskews and the current instrument go over.
  /// E_FAIL, with nothing done, before Initialize and while a compile or download runs.
  Status Update();

  /// Inserts an instrument with a generated name; a position beyond the end leaves empty entries.
  /// E_FAIL for a bad position and a count outside 0 to 5.
  Status AddInstrument(int frame, int position, int moduleCount);
  Status DeleteInstrument(int instrument);
  /// `valid` is 0 for a name in use and for a blank one; while there is no instrument every name is
  /// valid.
  Status IsValidInstrumentName(const std::string& name, int& valid) const;
  /// The catalogue's "PG %d" with the first free number from the counter on. The counter stays at
  /// the number given (deliberate): only using the name makes the next call go on.
  Status GetUniqueInstrumentName(std::string& name);
  /// Stores any name; see IsValidInstrumentName.
  Status SetInstrumentName(int instrument, const std::string& name);
  Status GetInstrumentName(int instrument, std::string& name) const;
  /// "Master", "Slave1" to "Slave4", empty for a module alone.
  Status GetRoleName(int module, std::string& role) const;
  /// Stored and returned without checks; -1 means none.
  Status SetCurrentInst(int instrument);
  Status GetCurrentInst(int& instrument) const;
  /// Expansion frames of the system when the copy was built.
  Status GetNoOfExpansions(int& count) const;

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
  /// Vectors in FULL mode; the smallest of the instrument's modules.
  Status GetMemoryDepth(int instrument, long& vectors) const;
  /// MHz; as the live instrument with these modules has it, else that of the FULL mode.
  Status GetMaxClockSpeed(int instrument, int& megahertz) const;
  /// As the live instrument with these modules has it, else that of the FULL mode.
  Status GetMaxChannelsPerModule(int instrument, int& channels) const;
  Status GetInstrumentInfo(const COrderedList<INSTRUMENT_INFO>** list) const;
  Status GetModuleInfo(const COrderedList<MODULE_INFO>** list) const;

 private:
  /// What an instrument is to consist of, and the live one that does already.
  struct PLAN {
    std::string name;
    int firstModule = 0;
    std::vector<int> modules;  ///< in the system; empty for an entry of which nothing is made
    CInstrument* live = nullptr;
  };

  bool HoldsModule(int module) const { return m_moduleInfo.Holds(module); }
  int FindInstrument(int module) const;
  int FindFilled(int from, int step) const;
  int ModulesBefore(int instrument) const;
  std::vector<int> ModulesOf(int instrument) const;
  std::vector<CModule*> Find(const std::vector<int>& modules) const;
  CInstrument* LiveWith(const std::vector<int>& positions) const;

  Status Build();
  int CopyInstruments();
  Status CopyModules();
  bool IsMergeable(int module) const;
  Status InsertInstrument(int position, int frame, const std::string& name, int moduleCount);

  void ApplyDeskew(int firstModule, int count) const;
  void DropEmptyEntries() const;
  std::vector<PLAN> GetUnchangedInstrumentList() const;
  void DeleteChangedInstruments(const std::vector<PLAN>& plan) const;
  Status CreateInstruments(std::vector<PLAN>& plan) const;
  CInstrument* CreateInstrument(const PLAN& entry, int position) const;
  void UpdateNewInstrumentNames(const std::vector<PLAN>& plan) const;
  void MakeCurrent(const std::vector<PLAN>& plan, int index) const;

  int m_nameCounter = 0;
  int m_currentInstrument = -1;
  int m_expansions = 0;
  COrderedList<INSTRUMENT_INFO> m_instrumentInfo;
  COrderedList<MODULE_INFO> m_moduleInfo;
  CModuleManager* m_modules = nullptr;
  CInstrumentManager* m_instruments = nullptr;
  bool m_edited = false;              ///< the list is no longer what Initialize made of it
  std::uint64_t m_builtRevision = 0;  ///< of the live list when the copy was built
};

}  // namespace quillpg
