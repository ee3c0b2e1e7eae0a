#include "instrument/merge_manager.h"

namespace quillpg {

Status CMergeManager::Initialize(CInstrumentManager* /*instruments*/) {
  return E_FAIL;  // Not built yet.
}

Status CMergeManager::CanMerge(int /*module*/, int& /*can*/) const {
  return E_FAIL;  // Not built yet.
}

Status CMergeManager::CanUnMerge(int /*module*/, int& /*can*/) const {
  return E_FAIL;  // Not built yet.
}

Status CMergeManager::Merge(int /*module*/) {
  return E_FAIL;  // Not built yet.
}

Status CMergeManager::UnMerge(int /*module*/) {
  return E_FAIL;  // Not built yet.
}

Status CMergeManager::Update() {
  return E_FAIL;  // Not built yet.
}

Status CMergeManager::AddInstrument(int /*frame*/, int /*position*/, int /*moduleCount*/) {
  return E_FAIL;  // Not built yet.
}

Status CMergeManager::DeleteInstrument(int /*instrument*/) {
  return E_FAIL;  // Not built yet.
}

Status CMergeManager::IsValidInstrumentName(const std::string& /*name*/, int& /*valid*/) const {
  return E_FAIL;  // Not built yet.
}

Status CMergeManager::GetUniqueInstrumentName(std::string& /*name*/) {
  return E_FAIL;  // Not built yet.
}

Status CMergeManager::SetInstrumentName(int /*instrument*/, const std::string& /*name*/) {
  return E_FAIL;  // Not built yet.
}

Status CMergeManager::GetInstrumentName(int /*instrument*/, std::string& /*name*/) const {
  return E_FAIL;  // Not built yet.
}

Status CMergeManager::GetRoleName(int /*module*/, std::string& /*role*/) const {
  return E_FAIL;  // Not built yet.
}

Status CMergeManager::SetCurrentInst(int /*instrument*/) {
  return E_FAIL;  // Not built yet.
}

Status CMergeManager::GetCurrentInst(int& /*instrument*/) const {
  return E_FAIL;  // Not built yet.
}

Status CMergeManager::GetNoOfModules(int& /*count*/) const {
  return E_FAIL;  // Not built yet.
}

Status CMergeManager::GetModuleCount(int /*instrument*/, int& /*count*/) const {
  return E_FAIL;  // Not built yet.
}

Status CMergeManager::GetNoOfInstruments(int& /*count*/) const {
  return E_FAIL;  // Not built yet.
}

Status CMergeManager::GetModuleAt(int /*module*/, MODULE_INFO** /*info*/) const {
  return E_FAIL;  // Not built yet.
}

Status CMergeManager::GetInstrumentAt(int /*instrument*/, INSTRUMENT_INFO** /*info*/) const {
  return E_FAIL;  // Not built yet.
}

Status CMergeManager::GetModuleId(const MODULE_INFO* /*info*/, int& /*module*/) const {
  return E_FAIL;  // Not built yet.
}

Status CMergeManager::GetInstrumentId(const INSTRUMENT_INFO* /*info*/, int& /*instrument*/) const {
  return E_FAIL;  // Not built yet.
}

Status CMergeManager::GetInstrumentId(int /*module*/, int& /*instrument*/) const {
  return E_FAIL;  // Not built yet.
}

Status CMergeManager::GetFirstInstrumentId(int& /*instrument*/) const {
  return E_FAIL;  // Not built yet.
}

Status CMergeManager::GetLastInstrumentId(int& /*instrument*/) const {
  return E_FAIL;  // Not built yet.
}

Status CMergeManager::GetPrevInstrumentId(int /*instrument*/, int& /*previous*/) const {
  return E_FAIL;  // Not built yet.
}

Status CMergeManager::GetNextInstrumentId(int /*instrument*/, int& /*next*/) const {
  return E_FAIL;  // Not built yet.
}

Status CMergeManager::GetFirstModuleId(int /*instrument*/, int& /*module*/) const {
  return E_FAIL;  // Not built yet.
}

Status CMergeManager::GetLastModuleId(int /*instrument*/, int& /*module*/) const {
  return E_FAIL;  // Not built yet.
}

Status CMergeManager::GetPrevModuleId(int /*module*/, int& /*previous*/) const {
  return E_FAIL;  // Not built yet.
}

Status CMergeManager::GetNextModuleId(int /*module*/, int& /*next*/) const {
  return E_FAIL;  // Not built yet.
}

Status CMergeManager::GetNoOfModulesToTheLeft(int /*instrument*/, int& /*count*/) const {
  return E_FAIL;  // Not built yet.
}

Status CMergeManager::IsModuleMerged(int /*module*/, int& /*merged*/) const {
  return E_FAIL;  // Not built yet.
}

Status CMergeManager::GetMemoryDepth(int /*instrument*/, long& /*vectors*/) const {
  return E_FAIL;  // Not built yet.
}

Status CMergeManager::GetMaxClockSpeed(int /*instrument*/, int& /*megahertz*/) const {
  return E_FAIL;  // Not built yet.
}

Status CMergeManager::GetMaxChannelsPerModule(int /*instrument*/, int& /*channels*/) const {
  return E_FAIL;  // Not built yet.
}

Status CMergeManager::GetInstrumentInfo(
    const std::vector<std::unique_ptr<INSTRUMENT_INFO>>** /*list*/) const {
  return E_FAIL;  // Not built yet.
}

Status CMergeManager::GetModuleInfo(
    const std::vector<std::unique_ptr<MODULE_INFO>>** /*list*/) const {
  return E_FAIL;  // Not built yet.
}

}  // namespace quillpg
