#include "quillpg/app_server.h"

#include "app/version_info.h"
#include "base/guard.h"
#include "compiler/compiler.h"
#include "exchange/export_manager.h"
#include "exchange/import_manager.h"
#include "hardware/hardware_library.h"
#include "hardware/module_manager.h"
#include "hardware/server2hal.h"
#include "instrument/instrument_manager.h"
#include "instrument/merge_manager.h"
#include "persistence/file_manager.h"
#include "persistence/visa_stub_gen.h"
#include "program/clipboard_info.h"
#include "quillpg/message_router.h"
#include "reporting/format_manager.h"
#include "reporting/print_manager.h"

#include <exception>

namespace quillpg {

namespace {

// Null when the object cannot be made: the engine then runs without it.
template <typename T>
std::unique_ptr<T> Create() {
  try {
    return std::make_unique<T>();
  } catch (const std::exception&) {
    return nullptr;
  }
}

template <typename T>
Status Give(T* object, T** result) {
  if (!result) return E_FAIL;
  *result = object;
  return S_OK;
}

}  // namespace

CAppServer* CAppServer::m_pServer = nullptr;

// No constructor of an owned object may ask for the server: it would create another one.
CAppServer::CAppServer() {
  m_compiler = Create<CCompiler>();
  m_server2Hal = Create<CServer2HAL>();
  m_instrumentManager = Create<CInstrumentManager>();
  m_fileManager = Create<CFileManager>();
  m_formatManager = Create<CFormatManager>();
  m_printManager = Create<CPrintManager>();
  m_mergeManager = Create<CMergeManager>();
  m_exportManager = Create<CExportManager>();
  m_importManager = Create<CImportManager>();
  m_moduleManager = Create<CModuleManager>();
  m_versionInfo = Create<CVersionInfo>();
  m_clipboardInfo = Create<CClipboardInfo>();
  m_visaStubGen = Create<CVisaStubGen>();
}

// The order is given: instruments go while clipboard and modules still stand.
CAppServer::~CAppServer() {
  m_compiler.reset();
  m_server2Hal.reset();
  m_fileManager.reset();
  m_printManager.reset();
  m_instrumentManager.reset();
  m_versionInfo.reset();
  m_clipboardInfo.reset();
  m_formatManager.reset();
  m_exportManager.reset();
  m_importManager.reset();
  m_mergeManager.reset();
  m_moduleManager.reset();
  m_visaStubGen.reset();
  if (m_pServer == this) m_pServer = nullptr;
}

Status CAppServer::GetServer(CAppServer** server) {
  if (!server) return E_FAIL;
  if (m_pServer) return Give(m_pServer, server);
  return GuardAllocation([server] {
    m_pServer = new CAppServer();  // lives until the process ends, or until a host deletes it
    *server = m_pServer;
    return m_pServer->Initialize();
  });
}

// Deliberate: only the last step's status counts.
Status CAppServer::Initialize() {
  (void)CHardwareManager::GetHardwareManager(&m_hardwareManager);
  if (m_hardwareManager) {
    (void)m_hardwareManager->Initialize();
    (void)m_hardwareManager->GetSystem(&m_system);
  }
  if (m_compiler) (void)m_compiler->Initialize(this);
  if (m_fileManager) (void)m_fileManager->Initialize(this, m_instrumentManager.get());
  if (m_printManager) (void)m_printManager->Initialize(this);
  if (m_formatManager) (void)m_formatManager->Initialize(this);
  if (m_exportManager) (void)m_exportManager->Initialize(this);
  if (m_importManager) (void)m_importManager->Initialize(this);
  if (m_versionInfo) (void)m_versionInfo->Initialize();
  if (m_moduleManager) (void)m_moduleManager->Initialize();
  return m_instrumentManager ? m_instrumentManager->Initialize(m_moduleManager.get()) : E_FAIL;
}

Status CAppServer::SetMessageRouter(CMessageRouter* router) {
  m_messageRouter = router;
  // What they answer is of no interest: reporting is optional.
  if (m_fileManager) (void)m_fileManager->SetMessageRouter(router);
  if (m_hardwareManager) (void)m_hardwareManager->SetMessageRouter(router);
  if (m_moduleManager) (void)m_moduleManager->SetMessageRouter(router);
  if (m_formatManager) (void)m_formatManager->SetMessageRouter(router);
  if (m_exportManager) (void)m_exportManager->SetMessageRouter(router);
  if (m_importManager) (void)m_importManager->SetMessageRouter(router);
  if (m_server2Hal) (void)m_server2Hal->SetMessageRouter(router);
  return S_OK;
}

Status CAppServer::GetMessageRouter(CMessageRouter** router) {
  return Give(m_messageRouter, router);
}

Status CAppServer::GetHardwareManager(CHardwareManager** manager) {
  return manager ? CHardwareManager::GetHardwareManager(manager) : E_FAIL;
}

Status CAppServer::GetSystem(CSystem** system) { return Give(m_system, system); }
Status CAppServer::GetCompiler(CCompiler** compiler) { return Give(m_compiler.get(), compiler); }
Status CAppServer::GetServer2HAL(CServer2HAL** bridge) { return Give(m_server2Hal.get(), bridge); }

Status CAppServer::GetFileManager(CFileManager** manager) {
  return Give(m_fileManager.get(), manager);
}

Status CAppServer::GetPrintManager(CPrintManager** manager) {
  return Give(m_printManager.get(), manager);
}

Status CAppServer::GetFormatManager(CFormatManager** manager) {
  return Give(m_formatManager.get(), manager);
}

Status CAppServer::GetExportManager(CExportManager** manager) {
  return Give(m_exportManager.get(), manager);
}

Status CAppServer::GetImportManager(CImportManager** manager) {
  return Give(m_importManager.get(), manager);
}

Status CAppServer::GetInstrumentManager(CInstrumentManager** manager) {
  return Give(m_instrumentManager.get(), manager);
}

Status CAppServer::GetModuleManager(CModuleManager** manager) {
  return Give(m_moduleManager.get(), manager);
}

Status CAppServer::GetVersionInfo(CVersionInfo** version) {
  return Give(m_versionInfo.get(), version);
}

Status CAppServer::GetClipboardInfo(CClipboardInfo** clipboard) {
  return Give(m_clipboardInfo.get(), clipboard);
}

Status CAppServer::GetVisaStubGenerator(CVisaStubGen** generator) {
  return Give(m_visaStubGen.get(), generator);
}

Status CAppServer::GetMergeManager(CMergeManager** manager) {
  if (!manager) return E_FAIL;
  if (m_mergeManager) (void)m_mergeManager->Initialize(m_instrumentManager.get());
  return Give(m_mergeManager.get(), manager);
}

void CAppServer::SetStatusMessage(const std::string& text) {
  if (m_messageRouter) m_messageRouter->SetStatusMessage(text);
}

Status CAppServer::SetDefaultChannelValue(char value) {
  m_defaultChannelValue = value;
  return S_OK;
}

Status CAppServer::GetDefaultChannelValue(char& value) {
  value = m_defaultChannelValue;
  return S_OK;
}

Status CAppServer::SetDefaultRadix(Radix radix) {
  m_defaultRadix = radix;
  return S_OK;
}

Status CAppServer::GetDefaultRadix(Radix& radix) {
  radix = m_defaultRadix;
  return S_OK;
}

}  // namespace quillpg
