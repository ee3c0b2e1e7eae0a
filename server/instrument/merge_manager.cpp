#include "instrument/merge_manager.h"

#include "app/message_catalogue.h"
#include "app/message_service.h"
#include "base/guard.h"
#include "base/text.h"
#include "hardware/hardware_library.h"
#include "hardware/module_manager.h"
#include "instrument/instrument.h"
#include "instrument/instrument_manager.h"
#include "instrument/mode_limits.h"
#include "quillpg/app_server.h"
#include "quillpg/host_services.h"
#include "quillpg/limits.h"

#include <algorithm>
#include <memory>
#include <utility>

// The working copy: building, editing, queries. merge_update.cpp makes it real.

namespace quillpg {

namespace {

Status Answer(int& result, int value) {
  result = value;
  return value < 0 ? E_FAIL : S_OK;
}

// Entries are handed out, so any count may stand in them; empty ones hold no modules.
int CountOf(const INSTRUMENT_INFO* info) {
  return info ? std::clamp(info->moduleCount, 0, MAX_INSTRUMENT_MODULES) : 0;
}

}  // namespace

// --- building ------------------------------------------------------------------------------------

Status CMergeManager::Initialize(CInstrumentManager* instruments) {
  const CWaitCursor cursor;
  m_instrumentInfo.Clear();
  m_moduleInfo.Clear();
  m_instruments = instruments;
  m_modules = nullptr;
  m_currentInstrument = -1;
  m_edited = false;
  CAppServer* server = nullptr;
  (void)CAppServer::GetServer(&server);  // a server whose start-up failed is one all the same
  if (!instruments || !server || server->GetModuleManager(&m_modules) != S_OK || !m_modules) {
    return E_FAIL;
  }
  const Status status = GuardAllocation([&] { return Build(); });
  if (Failed(status)) {
    m_instrumentInfo.Clear();
    m_moduleInfo.Clear();
  }
  return status;
}

Status CMergeManager::Build() {
  (void)m_instruments->GetNoOfExpansions(m_expansions);  // 0 when it fails
  m_builtRevision = m_instruments->Revision();
  m_currentInstrument = CopyInstruments();
  return CopyModules();
}

// Empty entries of the live list are left out. Gives the place of the current instrument in the
// copy, -1 for none.
int CMergeManager::CopyInstruments() {
  int count = 0;
  int liveCurrent = -1;
  int current = -1;
  (void)m_instruments->GetNoOfInstruments(count);
  (void)m_instruments->GetCurrentInst(liveCurrent);
  for (int i = 0; i < count; ++i) {
    CInstrument* live = nullptr;
    (void)m_instruments->GetInstrumentAt(i, &live);
    if (!live) continue;
    if (i == liveCurrent) current = m_instrumentInfo.Count();
    auto info = std::make_unique<INSTRUMENT_INFO>();
    (void)live->GetInstrumentName(info->name);
    (void)live->GetNoOfModules(info->moduleCount);
    (void)live->GetFrameNo(info->frame);  // stays -1 without hardware
    info->changed = 0;
    (void)m_instrumentInfo.Append(std::move(info));
  }
  return current;
}

Status CMergeManager::CopyModules() {
  int count = 0;
  (void)m_modules->GetNoOfModules(count);
  for (int i = 0; i < count; ++i) {
    auto info = std::make_unique<MODULE_INFO>();
    info->index = i;
    CModule* module = nullptr;
    CSorrelModule* hardware = nullptr;
    (void)m_modules->GetModuleAt(i, &module);
    if (module) (void)module->GetClockDeskew(info->clockDeskew);
    if (module) (void)module->GetSorrelModule(&hardware);
    if (hardware) {  // what it does not answer keeps its default
      (void)hardware->GetSlotNo(info->slot);
      (void)hardware->GetSlotsOccupied(info->slotsOccupied);
      (void)hardware->GetModelName(info->modelName);
      (void)hardware->GetFrameNo(info->frame);
      (void)hardware->GetSerialNo(info->serialNo);
      (void)hardware->GetFirmwareVersion(info->firmwareVersion);
      (void)hardware->GetDiagnosticsStatus(info->diagnostics);
      (void)hardware->GetMemoryDepth(info->memoryDepth);
    }
    const Status status = m_moduleInfo.Append(std::move(info));
    if (Failed(status)) return status;
    m_moduleInfo.At(i)->mergeable = hardware && IsMergeable(i) ? 1 : 0;
  }
  return S_OK;
}

// True for a right-hand neighbour in the same frame with the same firmware.
bool CMergeManager::IsMergeable(int module) const {
  const MODULE_INFO* before = m_moduleInfo.At(module - 1);
  const MODULE_INFO& info = *m_moduleInfo.At(module);
  return before && before->slot == info.slot - info.slotsOccupied && before->frame == info.frame &&
         EqualNoCase(before->firmwareVersion, info.firmwareVersion);
}

// --- editing -------------------------------------------------------------------------------------

Status CMergeManager::CanMerge(int module, int& can) const {
  const int holder = FindInstrument(module);
  can = holder >= 0 && CountOf(m_instrumentInfo.At(holder)) < MAX_INSTRUMENT_MODULES ? 1 : 0;
  return holder < 0 ? E_FAIL : S_OK;
}

Status CMergeManager::CanUnMerge(int module, int& can) const {
  const Status status = IsModuleMerged(module, can);
  if (Failed(status)) can = 0;
  return status;
}

Status CMergeManager::Merge(int module) {
  const int right = FindInstrument(module);
  if (right < 0) return E_FAIL;
  const int left = FindInstrument(module - 1);
  if (left < 0 || left == right) return E_FAIL;
  INSTRUMENT_INFO& joined = *m_instrumentInfo.At(left);
  const int count = CountOf(&joined) + CountOf(m_instrumentInfo.At(right));
  if (count > MAX_INSTRUMENT_MODULES) return E_FAIL;
  // Named while both are still listed, so that neither name is given again.
  std::string name;
  const Status status = GetUniqueInstrumentName(name);
  if (Failed(status)) return status;
  joined.name = std::move(name);
  joined.moduleCount = count;
  joined.changed = 1;
  m_currentInstrument = left;
  return DeleteInstrument(right);
}

Status CMergeManager::UnMerge(int module) {
  const int instrument = FindInstrument(module);
  if (instrument < 0) return E_FAIL;
  INSTRUMENT_INFO& split = *m_instrumentInfo.At(instrument);
  const int count = CountOf(&split);
  if (count == 1) return S_OK;
  const int kept = module - ModulesBefore(instrument);
  if (kept == 0) return E_FAIL;
  std::string name;
  Status status = GetUniqueInstrumentName(name);
  if (Failed(status)) return status;
  split.name.swap(name);  // listed from now on, so that the next one differs
  std::string rest;
  status = GetUniqueInstrumentName(rest);
  if (!Failed(status)) status = InsertInstrument(instrument + 1, split.frame, rest, count - kept);
  if (Failed(status)) {
    split.name.swap(name);
    return status;
  }
  split.moduleCount = kept;
  split.changed = 1;
  m_currentInstrument = instrument;
  return S_OK;
}

Status CMergeManager::AddInstrument(int frame, int position, int moduleCount) {
  if (moduleCount < 0 || moduleCount > MAX_INSTRUMENT_MODULES) return E_FAIL;
  std::string name;
  const Status status = GetUniqueInstrumentName(name);
  return Failed(status) ? status : InsertInstrument(position, frame, name, moduleCount);
}

Status CMergeManager::InsertInstrument(int position, int frame, const std::string& name,
                                       int moduleCount) {
  return GuardAllocation([&] {
    const Status status = m_instrumentInfo.Insert(
        position, std::make_unique<INSTRUMENT_INFO>(INSTRUMENT_INFO{frame, moduleCount, name, 1}));
    if (!Failed(status)) m_edited = true;
    return status;
  });
}

Status CMergeManager::DeleteInstrument(int instrument) {
  const Status status = m_instrumentInfo.Remove(instrument);
  if (!Failed(status)) m_edited = true;
  return status;
}

// --- names ---------------------------------------------------------------------------------------

Status CMergeManager::IsValidInstrumentName(const std::string& name, int& valid) const {
  const bool refused = Trim(name).empty() || m_instrumentInfo.Find(name) >= 0;
  valid = m_instrumentInfo.Count() == 0 || !refused ? 1 : 0;
  return S_OK;
}

Status CMergeManager::GetUniqueInstrumentName(std::string& name) {
  return GuardAllocation([&] {
    const std::string format = CMessageService::Text(MSG_INSTRUMENT_NAME);
    // One more try than there are names in use; only a translation without a number needs more.
    for (int tries = 0; tries <= m_instrumentInfo.Count(); ++tries) {
      std::string candidate = FormatText(format, {m_nameCounter});
      int valid = 0;
      (void)IsValidInstrumentName(candidate, valid);
      if (valid != 0) {
        name = std::move(candidate);
        return S_OK;
      }
      ++m_nameCounter;
    }
    return E_FAIL;
  });
}

Status CMergeManager::SetInstrumentName(int instrument, const std::string& name) {
  INSTRUMENT_INFO* info = m_instrumentInfo.At(instrument);
  return info ? StoreText(info->name, name) : E_FAIL;
}

Status CMergeManager::GetInstrumentName(int instrument, std::string& name) const {
  const INSTRUMENT_INFO* info = m_instrumentInfo.At(instrument);
  return info ? StoreText(name, info->name) : E_FAIL;
}

Status CMergeManager::GetRoleName(int module, std::string& role) const {
  role.clear();
  const int instrument = FindInstrument(module);
  if (instrument < 0) return E_FAIL;
  if (CountOf(m_instrumentInfo.At(instrument)) == 1) return S_OK;
  return GuardAllocation([&] {
    const int place = module - ModulesBefore(instrument);
    role = place == 0 ? "Master" : FormatText("Slave%d", {place});
    return S_OK;
  });
}

Status CMergeManager::SetCurrentInst(int instrument) {
  m_currentInstrument = instrument;
  return S_OK;
}

Status CMergeManager::GetCurrentInst(int& instrument) const {
  instrument = m_currentInstrument;
  return S_OK;
}

// --- queries -------------------------------------------------------------------------------------

// The instrument that holds the module, or -1.
int CMergeManager::FindInstrument(int module) const {
  if (!HoldsModule(module)) return -1;
  int end = 0;
  for (int i = 0; i < m_instrumentInfo.Count(); ++i) {
    end += CountOf(m_instrumentInfo.At(i));
    if (module < end) return i;
  }
  return -1;
}

// The first entry from `from` on, in steps of `step`, that is not empty, or -1.
int CMergeManager::FindFilled(int from, int step) const {
  int i = from;
  while (m_instrumentInfo.Holds(i) && !m_instrumentInfo.At(i)) i += step;
  return m_instrumentInfo.Holds(i) ? i : -1;
}

int CMergeManager::ModulesBefore(int instrument) const {
  int count = 0;
  for (int i = 0; i < instrument; ++i) count += CountOf(m_instrumentInfo.At(i));
  return count;
}

Status CMergeManager::GetNoOfExpansions(int& count) const {
  count = m_expansions;
  return S_OK;
}

Status CMergeManager::GetNoOfModules(int& count) const {
  count = m_moduleInfo.Count();
  return S_OK;
}

Status CMergeManager::GetModuleCount(int instrument, int& count) const {
  const INSTRUMENT_INFO* info = m_instrumentInfo.At(instrument);
  return Answer(count, info ? CountOf(info) : -1);
}

Status CMergeManager::GetNoOfInstruments(int& count) const {
  count = m_instrumentInfo.Count();
  return S_OK;
}

Status CMergeManager::GetModuleAt(int module, MODULE_INFO** info) const {
  if (!info) return E_FAIL;
  *info = m_moduleInfo.At(module);
  return *info ? S_OK : E_FAIL;
}

Status CMergeManager::GetInstrumentAt(int instrument, INSTRUMENT_INFO** info) const {
  if (!info) return E_FAIL;
  *info = m_instrumentInfo.At(instrument);
  return *info ? S_OK : E_FAIL;
}

Status CMergeManager::GetModuleId(const MODULE_INFO* info, int& module) const {
  return Answer(module, m_moduleInfo.PositionOf(info));
}

Status CMergeManager::GetInstrumentId(const INSTRUMENT_INFO* info, int& instrument) const {
  return Answer(instrument, m_instrumentInfo.PositionOf(info));
}

Status CMergeManager::GetInstrumentId(int module, int& instrument) const {
  return Answer(instrument, FindInstrument(module));
}

Status CMergeManager::GetFirstInstrumentId(int& instrument) const {
  return Answer(instrument, FindFilled(0, 1));
}

Status CMergeManager::GetLastInstrumentId(int& instrument) const {
  return Answer(instrument, FindFilled(m_instrumentInfo.Count() - 1, -1));
}

Status CMergeManager::GetPrevInstrumentId(int instrument, int& previous) const {
  return Answer(previous, m_instrumentInfo.Holds(instrument) ? FindFilled(instrument - 1, -1) : -1);
}

Status CMergeManager::GetNextInstrumentId(int instrument, int& next) const {
  return Answer(next, m_instrumentInfo.Holds(instrument) ? FindFilled(instrument + 1, 1) : -1);
}

Status CMergeManager::GetFirstModuleId(int instrument, int& module) const {
  const bool any = CountOf(m_instrumentInfo.At(instrument)) > 0;
  return Answer(module, any ? ModulesBefore(instrument) : -1);
}

Status CMergeManager::GetLastModuleId(int instrument, int& module) const {
  const int count = CountOf(m_instrumentInfo.At(instrument));
  return Answer(module, count > 0 ? ModulesBefore(instrument) + count - 1 : -1);
}

Status CMergeManager::GetPrevModuleId(int module, int& previous) const {
  return Answer(previous, HoldsModule(module) ? module - 1 : -1);
}

Status CMergeManager::GetNextModuleId(int module, int& next) const {
  return Answer(next, HoldsModule(module) && HoldsModule(module + 1) ? module + 1 : -1);
}

Status CMergeManager::GetNoOfModulesToTheLeft(int instrument, int& count) const {
  return Answer(count, m_instrumentInfo.Holds(instrument) ? ModulesBefore(instrument) : -1);
}

Status CMergeManager::IsModuleMerged(int module, int& merged) const {
  const int instrument = FindInstrument(module);
  if (instrument < 0) return Answer(merged, -1);
  return Answer(merged, CountOf(m_instrumentInfo.At(instrument)) > 1 ? 1 : 0);
}

Status CMergeManager::GetMemoryDepth(int instrument, long& vectors) const {
  vectors = -1;
  const int count = CountOf(m_instrumentInfo.At(instrument));
  const int first = count > 0 ? ModulesBefore(instrument) : 0;
  if (count == 0 || !m_moduleInfo.HoldsRange(first, count)) return E_FAIL;
  vectors = m_moduleInfo.At(first)->memoryDepth;
  for (int i = 1; i < count; ++i) {
    vectors = std::min(vectors, m_moduleInfo.At(first + i)->memoryDepth);
  }
  return S_OK;
}

Status CMergeManager::GetMaxClockSpeed(int instrument, int& megahertz) const {
  if (!m_instrumentInfo.At(instrument)) return Answer(megahertz, -1);
  return GuardAllocation([&] {
    megahertz = FULL_LIMITS.maxClockSpeed;
    const CInstrument* live = LiveWith(ModulesOf(instrument));
    return live ? live->GetMaxClockSpeed(megahertz) : S_OK;
  });
}

Status CMergeManager::GetMaxChannelsPerModule(int instrument, int& channels) const {
  if (!m_instrumentInfo.At(instrument)) return Answer(channels, -1);
  return GuardAllocation([&] {
    channels = FULL_LIMITS.ChannelsPerModule();
    const CInstrument* live = LiveWith(ModulesOf(instrument));
    return live ? live->GetMaxChannelsPerModule(channels) : S_OK;
  });
}

Status CMergeManager::GetInstrumentInfo(const COrderedList<INSTRUMENT_INFO>** list) const {
  if (!list) return E_FAIL;
  *list = &m_instrumentInfo;
  return S_OK;
}

Status CMergeManager::GetModuleInfo(const COrderedList<MODULE_INFO>** list) const {
  if (!list) return E_FAIL;
  *list = &m_moduleInfo;
  return S_OK;
}

}  // namespace quillpg
