#include "instrument/instrument_manager.h"

#include "app/message_catalogue.h"
#include "app/message_service.h"
#include "base/guard.h"
#include "base/text.h"
#include "hardware/hardware_library.h"
#include "hardware/module_manager.h"
#include "instrument/instrument.h"
#include "program/clipboard_info.h"
#include "quillpg/app_server.h"
#include "quillpg/grid_window.h"
#include "quillpg/host_services.h"
#include "quillpg/limits.h"

#include <algorithm>
#include <limits>
#include <memory>

namespace quillpg {

namespace {

constexpr int kSlotsPerModule = 2;

std::string NameOf(const CInstrument& instrument) {
  std::string name;
  (void)instrument.GetInstrumentName(name);  // a stored value, never fails
  return name;
}

int ModuleCount(const CInstrument* instrument) {
  int count = 0;
  if (instrument) (void)instrument->GetNoOfModules(count);  // a stored value, never fails
  return count;
}

// Null without module or hardware object.
CSorrelModule* HardwareOf(const CInstrument* instrument, int module) {
  CSorrelModule* hardware = nullptr;
  if (instrument) (void)instrument->GetSorrelModuleAt(module, &hardware);  // null tells it
  return hardware;
}

CSystem* HardwareSystem() {
  CHardwareManager* manager = nullptr;
  CSystem* system = nullptr;
  if (CHardwareManager::GetHardwareManager(&manager) != S_OK || !manager) return nullptr;
  return manager->GetSystem(&system) == S_OK ? system : nullptr;
}

bool ShowsInstrument(CSorrelGridWnd* window, const CInstrument* instrument) {
  CInstrument* shown = nullptr;
  if (window) window->GetInstrument(&shown);
  return shown == instrument;
}

// The clipboard must never refer to a destroyed instrument.
void ForgetInClipboard(CAppServer* server, const CInstrument* instrument) {
  CClipboardInfo* clipboard = nullptr;
  if (!server || server->GetClipboardInfo(&clipboard) != S_OK || !clipboard) return;
  if (ShowsInstrument(clipboard->GetSourceWnd(), instrument)) {
    clipboard->contentType = ContentType::None;
    clipboard->SetSourceWnd(nullptr);
  }
  if (ShowsInstrument(clipboard->GetTargetWnd(), instrument)) {
    clipboard->contentType = ContentType::None;
    clipboard->SetTargetWnd(nullptr);
  }
}

}  // namespace

CInstrumentManager::~CInstrumentManager() { (void)DeleteAll(); }

Status CInstrumentManager::Initialize() { return Default(); }

Status CInstrumentManager::Initialize(CModuleManager* modules) {
  m_moduleManager = modules;
  return S_OK;
}

Status CInstrumentManager::GetModuleManager(CModuleManager** modules) const {
  if (!modules) return E_FAIL;
  *modules = m_moduleManager;
  return S_OK;
}

Status CInstrumentManager::Default() {
  if (m_busy) return E_FAIL;
  const CWaitCursor cursor;
  (void)DeleteAll();
  int modules = 0;
  if (m_moduleManager) (void)m_moduleManager->GetNoOfModules(modules);  // 0 when it fails
  for (int i = 0; i < modules; ++i) {
    const Status status = GuardAllocation([&] { return AddDefaultInstrument(i); });
    if (Failed(status)) return status;
  }
  if (modules > 0) m_currentInstrument = 0;
  m_comment.clear();
  m_fileName.clear();
  return S_OK;
}

Status CInstrumentManager::AddDefaultInstrument(int module) {
  CModule* part = nullptr;
  (void)m_moduleManager->GetModuleAt(module, &part);  // a null module is refused below
  auto instrument = std::make_unique<CInstrument>();
  (void)instrument->Initialize();  // wires the managers, never fails
  (void)instrument->SetInstrumentName(
      FormatText(CMessageService::Text(MSG_INSTRUMENT_NAME), {module + 1}));
  (void)instrument->AddModule(part);
  (void)instrument->Default();  // an unwilling setting does not keep an instrument out
  const Status status = AddInstrument(instrument.get());
  if (status == S_OK) (void)instrument.release();
  return status;
}

Status CInstrumentManager::ReInitialize() {
  for (int i = 0; i < Count();) {
    CInstrument* instrument = At(i);
    if (instrument) (void)instrument->ResetInstrument();  // what the hardware refuses stays
    if (At(i) == instrument) ++i;                         // else its handler changed the list
  }
  return S_OK;
}

// --- look-ups ------------------------------------------------------------------------------------

bool CInstrumentManager::InList(int position) const { return position >= 0 && position < Count(); }

CInstrument* CInstrumentManager::At(int position) const {
  return InList(position) ? m_instruments[static_cast<std::size_t>(position)] : nullptr;
}

int CInstrumentManager::FindName(const std::string& name) const {
  const auto found = std::ranges::find_if(m_instruments, [&](const CInstrument* instrument) {
    return instrument && EqualNoCase(NameOf(*instrument), name);
  });
  return found == m_instruments.end() ? -1 : static_cast<int>(found - m_instruments.begin());
}

bool CInstrumentManager::Holds(const CInstrument* instrument) const {
  return instrument && std::ranges::find(m_instruments, instrument) != m_instruments.end();
}

Status CInstrumentManager::GetNoOfInstruments(int& count) const {
  count = Count();
  return S_OK;
}

Status CInstrumentManager::GetNoOfInstruments(int frame, int& count) const {
  count = static_cast<int>(std::ranges::count_if(m_instruments, [&](const CInstrument* instrument) {
    CSorrelModule* master = HardwareOf(instrument, 0);
    int itsFrame = -1;
    return master && master->GetFrameNo(itsFrame) == S_OK && itsFrame == frame;
  }));
  return S_OK;
}

Status CInstrumentManager::GetInstrument(const std::string& name, CInstrument** instrument) const {
  if (!instrument) return E_FAIL;
  *instrument = At(FindName(name));
  return *instrument ? S_OK : E_FAIL;
}

Status CInstrumentManager::GetInstrumentAt(int position, CInstrument** instrument) const {
  if (!instrument) return E_FAIL;
  *instrument = At(position);
  return S_OK;
}

Status CInstrumentManager::GetInstrumentPos(const std::string& name, int& position) const {
  position = FindName(name);
  return position < 0 ? E_FAIL : S_OK;
}

Status CInstrumentManager::GetInstrumentPos(const CInstrument* instrument, int& position) const {
  const auto found = std::ranges::find(m_instruments, instrument);
  const bool held = instrument && found != m_instruments.end();
  position = held ? static_cast<int>(found - m_instruments.begin()) : -1;
  return held ? S_OK : E_FAIL;
}

Status CInstrumentManager::GetInstrumentPos(int slot, int& position) const {
  for (int i = 0; i < Count(); ++i) {
    CSorrelModule* master = HardwareOf(At(i), 0);
    int first = 0;
    if (!master || master->GetSlotNo(first) != S_OK) continue;
    if (slot >= first && slot < first + kSlotsPerModule * ModuleCount(At(i))) {
      position = i;
      return S_OK;
    }
  }
  position = -1;
  return PG_E_SLOT_EMPTY;
}

Status CInstrumentManager::GetModulePos(int slot, int& position) const {
  for (const CInstrument* instrument : m_instruments) {
    for (int i = 0; i < ModuleCount(instrument); ++i) {
      CSorrelModule* hardware = HardwareOf(instrument, i);
      int itsSlot = 0;
      if (hardware && hardware->GetSlotNo(itsSlot) == S_OK && itsSlot == slot) {
        position = i;
        return S_OK;
      }
    }
  }
  position = -1;
  return E_FAIL;
}

Status CInstrumentManager::GetInstrumentNames(std::vector<std::string>& names) const {
  names.clear();
  return GuardAllocation([&] {
    for (const CInstrument* instrument : m_instruments) {
      if (instrument) names.push_back(NameOf(*instrument));
    }
    return S_OK;
  });
}

Status CInstrumentManager::SetCurrentInst(int position) {
  m_currentInstrument = position;
  return S_OK;
}

Status CInstrumentManager::GetCurrentInst(int& position) const {
  position = m_currentInstrument;
  return S_OK;
}

Status CInstrumentManager::GetCurrentInstrument(CInstrument** instrument) const {
  return GetInstrumentAt(m_currentInstrument, instrument);
}

// --- changes of the list -------------------------------------------------------------------------

Status CInstrumentManager::AddInstrument(CInstrument* instrument) {
  return AddInstrumentAt(Count(), instrument);
}

Status CInstrumentManager::AddInstrumentAt(int position, CInstrument* instrument) {
  if (!instrument || position < 0 || std::max(position, Count()) >= MAX_LIST_POSITIONS)
    return E_FAIL;
  return GuardAllocation([&] {
    m_instruments.reserve(m_instruments.size() + 1);
    if (position > Count()) m_instruments.resize(static_cast<std::size_t>(position));
    m_instruments.insert(m_instruments.begin() + position, instrument);
    ++m_revision;
    return S_OK;
  });
}

Status CInstrumentManager::DeleteInstrument(const std::string& name) {
  return DeleteInstrumentAt(FindName(name));
}

Status CInstrumentManager::DeleteInstrumentAt(int position) {
  if (m_kept || !InList(position)) return E_FAIL;
  DestroyAt(position);
  m_instruments.erase(m_instruments.begin() + position);
  return S_OK;
}

Status CInstrumentManager::DeleteAll() {
  if (m_kept) return E_FAIL;
  for (int i = 0; i < Count(); ++i) DestroyAt(i);
  m_instruments.clear();
  ++m_revision;
  m_currentInstrument = -1;
  return S_OK;
}

// Empties every entry that holds the object before it goes, so that it is destroyed once and no
// look-up finds it while it is being destroyed. Sees an existing server only: it may be the server
// that is being destroyed, and none must be made here.
void CInstrumentManager::DestroyAt(int position) {
  const std::unique_ptr<CInstrument> doomed(At(position));
  ++m_revision;
  if (!doomed) return;
  ForgetInClipboard(CAppServer::m_pServer, doomed.get());
  std::ranges::replace(m_instruments, doomed.get(), static_cast<CInstrument*>(nullptr));
}

// --- properties of the system --------------------------------------------------------------------

Status CInstrumentManager::GetFileName(std::string& name) const {
  return StoreText(name, m_fileName);
}

Status CInstrumentManager::SetFileName(const std::string& name) {
  return StoreText(m_fileName, name);
}

Status CInstrumentManager::GetComment(std::string& comment) const {
  return StoreText(comment, m_comment);
}

Status CInstrumentManager::SetComment(const std::string& comment) {
  return StoreText(m_comment, comment);
}

Status CInstrumentManager::GetNoOfExpansions(int& count) const {
  count = 0;
  CSystem* system = HardwareSystem();
  CSystemInfo* info = nullptr;
  if (!system || system->GetSystemInfo(&info) != S_OK || !info) return E_FAIL;
  return info->GetNoOfExpansions(count);
}

Status CInstrumentManager::GetFirstModuleId(int position, int& id) const {
  id = -1;
  if (ModuleCount(At(position)) == 0) return E_FAIL;
  id = 0;
  for (int i = 0; i < position; ++i) id += ModuleCount(At(i));
  return S_OK;
}

Status CInstrumentManager::GetLastModuleId(int position, int& id) const {
  const Status status = GetFirstModuleId(position, id);
  if (status == S_OK) id += ModuleCount(At(position)) - 1;
  return status;
}

Status CInstrumentManager::GetModuleProperties(int slot, std::string& text) const {
  int position = -1;
  int module = -1;
  if (GetInstrumentPos(slot, position) != S_OK || GetModulePos(slot, module) != S_OK)
    return PG_E_SLOT_EMPTY;
  const CInstrument* instrument = At(position);
  return instrument ? instrument->GetModuleProperties(module, text) : E_FAIL;
}

Status CInstrumentManager::GetControllerProperties(int controller, std::string& text) const {
  CSystem* system = HardwareSystem();
  return system ? system->GetControllerProperties(controller, text) : E_FAIL;
}

Status CInstrumentManager::GetSize(unsigned long& size, int flag, int position) const {
  size = 0;
  if (position != -1) {
    if (!InList(position)) return E_FAIL;
    return At(position) ? At(position)->GetSize(size, flag) : S_OK;
  }
  std::uint64_t bytes = 0;
  for (const CInstrument* instrument : m_instruments) {
    unsigned long part = 0;
    if (!instrument) continue;
    const Status status = instrument->GetSize(part, flag);
    if (Failed(status)) return status;
    bytes += part;
  }
  size = static_cast<unsigned long>(
      std::min<std::uint64_t>(bytes, std::numeric_limits<std::uint32_t>::max()));
  return S_OK;
}

}  // namespace quillpg
