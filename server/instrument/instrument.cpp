#include "instrument/instrument.h"

#include "app/message_catalogue.h"
#include "app/message_service.h"
#include "base/guard.h"
#include "hardware/hardware_library.h"
#include "hardware/module.h"
#include "program/block_manager.h"
#include "program/event_manager.h"
#include "program/group_manager.h"
#include "program/sequence_manager.h"
#include "program/subsequence_manager.h"
#include "quillpg/app_server.h"
#include "quillpg/event_handler.h"

#include <cstddef>

namespace quillpg {

namespace {

// What is handed out stays the owner's.
template <typename T>
Status HandOut(T* object, T** result) {
  if (!result) return E_FAIL;
  *result = object;
  return S_OK;
}

}  // namespace

CInstrument::CInstrument()
    : m_groupManager(std::make_unique<CGroupManager>()),
      m_blockManager(std::make_unique<CBlockManager>()),
      m_eventManager(std::make_unique<CEventManager>()),
      m_sequenceManager(std::make_unique<CSequenceManager>()),
      m_subSequenceManager(std::make_unique<CSubSequenceManager>()) {}

CInstrument::~CInstrument() = default;

// --- life cycle ---

Status CInstrument::Initialize() {
  m_inhibitControls.clear();
  m_inhibitControlNames.clear();
  m_modules.clear();
  m_name.clear();
  m_comment.clear();
  m_fileName.clear();
  CAppServer* server = nullptr;
  (void)CAppServer::GetServer(&server);  // a server whose start-up failed is one all the same
  Status first = S_OK;
  const auto initialize = [&](CProgramManager& manager) {
    const Status status = manager.Initialize(server, this);
    if (first == S_OK) first = status;
  };
  initialize(*m_groupManager);
  initialize(*m_blockManager);
  initialize(*m_eventManager);
  initialize(*m_sequenceManager);
  initialize(*m_subSequenceManager);
  return first;
}

Status CInstrument::AnnounceReset() {
  (void)SetEventHandler(m_frontEnd.Handler());
  return Tell([](CEventHandler& handler) { handler.OnInstrumentReset(); });
}

Status CInstrument::Default() {
  const Status told = AnnounceReset();
  if (Failed(told)) return told;
  for (CModule* module : m_modules) (void)module->Initialize();
  m_enabled = 1;
  m_modified.Set();
  m_comment.clear();
  m_fileName.clear();
  ApplySettings(SETTINGS{});
  (void)m_groupManager->DeleteAll();
  (void)m_blockManager->DeleteAll();
  (void)m_sequenceManager->DeleteAll();
  (void)m_eventManager->DeleteAll();
  (void)m_subSequenceManager->DeleteAll();
  m_inhibitControls.clear();
  m_inhibitControlNames.clear();
  Status status = m_groupManager->Default();
  if (!Failed(status)) status = m_blockManager->Default();
  if (!Failed(status)) status = m_sequenceManager->Default();
  (void)UpdateInhibitControlList();
  return status;
}

Status CInstrument::ResetInstrument() {
  const Status told = AnnounceReset();
  if (Failed(told)) return told;
  for (CModule* module : m_modules) (void)module->UpdateModuleParams();
  ApplySettings(SETTINGS(m_settings));
  return UpdateInhibitControlList();
}

Status CInstrument::SetEventHandler(CEventHandler* handler) {
  m_frontEnd.SetHandler(handler);
  (void)m_groupManager->SetEventHandler(handler);
  (void)m_blockManager->SetEventHandler(handler);
  (void)m_eventManager->SetEventHandler(handler);
  (void)m_sequenceManager->SetEventHandler(handler);
  (void)m_subSequenceManager->SetEventHandler(handler);
  return S_OK;
}

Status CInstrument::GetEventHandler(CEventHandler** handler) const {
  return HandOut(m_frontEnd.Handler(), handler);
}

Status CInstrument::GetInstView(CEventHandler** view) const {
  return HandOut(m_frontEnd.Handler(), view);
}

// --- modules ---

CModule* CInstrument::ModuleAt(int position) const {
  return position >= 0 && position < static_cast<int>(m_modules.size())
             ? m_modules[static_cast<std::size_t>(position)]
             : nullptr;
}

CSorrelModule* CInstrument::HardwareAt(int position) const {
  CSorrelModule* hardware = nullptr;
  (void)GetSorrelModuleAt(position, &hardware);  // null without a module
  return hardware;
}

std::array<CSorrelModule*, MAX_INSTRUMENT_MODULES> CInstrument::Hardware() const {
  std::array<CSorrelModule*, MAX_INSTRUMENT_MODULES> hardware{};
  for (std::size_t i = 0; i < hardware.size(); ++i) hardware[i] = HardwareAt(static_cast<int>(i));
  return hardware;
}

Status CInstrument::AddModule(CModule* module) {
  if (!module) return E_FAIL;
  if (m_modules.size() >= MAX_INSTRUMENT_MODULES) {
    CMessageService::Notice(MSG_INTERNAL_ERROR);
    return E_FAIL;
  }
  m_modules.push_back(module);
  (void)UpdateInhibitControlList();
  return S_OK;
}

Status CInstrument::RemoveModuleAt(int position) {
  if (!ModuleAt(position)) return E_FAIL;
  m_modules.erase(m_modules.begin() + position);
  (void)UpdateInhibitControlList();
  return S_OK;
}

Status CInstrument::GetModuleAt(int position, CModule** module) const {
  if (!module) return E_FAIL;
  *module = ModuleAt(position);
  return *module ? S_OK : E_FAIL;
}

Status CInstrument::GetSorrelModuleAt(int position, CSorrelModule** module) const {
  if (!module) return E_FAIL;
  *module = nullptr;
  const CModule* holder = ModuleAt(position);
  return holder ? holder->GetSorrelModule(module) : E_FAIL;
}

Status CInstrument::GetNoOfModules(int& count) const {
  count = static_cast<int>(m_modules.size());
  return S_OK;
}

Status CInstrument::GetFrameNo(int& frame) const {
  CSorrelModule* master = HardwareAt(0);
  return master ? master->GetFrameNo(frame) : E_FAIL;
}

// --- program ---

Status CInstrument::GetGroupManager(CGroupManager** manager) const {
  return HandOut(m_groupManager.get(), manager);
}

Status CInstrument::GetBlockManager(CBlockManager** manager) const {
  return HandOut(m_blockManager.get(), manager);
}

Status CInstrument::GetSequenceManager(CSequenceManager** manager) const {
  return HandOut(m_sequenceManager.get(), manager);
}

Status CInstrument::GetSubSequenceManager(CSubSequenceManager** manager) const {
  return HandOut(m_subSequenceManager.get(), manager);
}

Status CInstrument::GetEventManager(CEventManager** manager) const {
  return HandOut(m_eventManager.get(), manager);
}

// --- identity and flags ---

Status CInstrument::GetInstrumentName(std::string& name) const { return StoreText(name, m_name); }

Status CInstrument::SetInstrumentName(const std::string& name) {
  if (name == m_name) return S_OK;
  const Status status = StoreText(m_name, name);
  if (Failed(status)) return status;
  return Tell([](CEventHandler& handler) { handler.OnInstrumentRenamed(); });
}

Status CInstrument::RestoreInstrumentName(const std::string& name) {
  return StoreText(m_name, name);
}

Status CInstrument::GetComment(std::string& comment) const { return StoreText(comment, m_comment); }
Status CInstrument::SetComment(const std::string& comment) { return StoreText(m_comment, comment); }
Status CInstrument::GetFileName(std::string& name) const { return StoreText(name, m_fileName); }
Status CInstrument::SetFileName(const std::string& name) { return StoreText(m_fileName, name); }

Status CInstrument::SetModified(int flag) {
  m_modified.Store(flag);
  return S_OK;
}

Status CInstrument::IsModified(int& modified) const {
  modified = m_modified.IsSet() ? 1 : 0;
  return S_OK;
}

Status CInstrument::EnableInstrument(int enable) {
  m_enabled = enable;
  return S_OK;
}

Status CInstrument::IsInstrumentEnabled(int& enabled) const {
  enabled = m_enabled;
  return S_OK;
}

}  // namespace quillpg
