// The root's work on the system as a whole: defaults, load and save, versions, modified state.

#include "app/instrument_walk.h"
#include "app/version_info.h"
#include "instrument/instrument.h"
#include "persistence/file_manager.h"
#include "persistence/visa_stub_gen.h"
#include "program/block_manager.h"
#include "quillpg/app_server.h"

namespace quillpg {

namespace {

CInstrument* CurrentInstrument(const CInstrumentManager* instruments) {
  CInstrument* instrument = nullptr;
  if (instruments) (void)instruments->GetCurrentInstrument(&instrument);  // the pointer tells
  return instrument;
}

Status SetDefaults(CInstrument* instrument) {
  if (!instrument) return E_FAIL;
  const Status status = instrument->Default();
  return Failed(status) ? status : instrument->SetFileName("");
}

}  // namespace

Status CAppServer::DefaultSystem() {
  return m_instrumentManager ? m_instrumentManager->Default() : E_FAIL;
}

Status CAppServer::DefaultModule() {
  return SetDefaults(CurrentInstrument(m_instrumentManager.get()));
}

Status CAppServer::DefaultModule(const std::string& name) {
  CInstrument* instrument = nullptr;
  if (m_instrumentManager) (void)m_instrumentManager->GetInstrument(name, &instrument);
  return SetDefaults(instrument);
}

Status CAppServer::LoadSystem(const std::string& path) {
  return m_fileManager ? m_fileManager->LoadSystem(path, 0) : E_FAIL;
}

Status CAppServer::SaveSystem(int flag) {
  if (!m_instrumentManager) return E_FAIL;
  std::string name;
  std::string comment;
  (void)m_instrumentManager->GetFileName(name);
  (void)m_instrumentManager->GetComment(comment);
  return name.empty() ? E_FAIL : SaveSystem(name, comment, flag);
}

Status CAppServer::SaveSystem(std::string& name, std::string& comment, int flag) {
  if (!m_fileManager || !m_instrumentManager) return E_FAIL;
  if (m_fileManager->SaveSystem(name, comment, flag) != S_OK) return E_FAIL;
  return m_instrumentManager->SetComment(comment);
}

Status CAppServer::LoadModule(const std::string& path, const std::string& instrument) {
  CInstrument* current = CurrentInstrument(m_instrumentManager.get());
  return m_fileManager && current ? m_fileManager->LoadModule(path, instrument, current) : E_FAIL;
}

Status CAppServer::SaveModule(std::string& name, int flag) {
  const CInstrument* current = CurrentInstrument(m_instrumentManager.get());
  if (!current) return E_FAIL;
  std::string comment;
  (void)current->GetComment(comment);
  return SaveModule(name, comment, flag);
}

Status CAppServer::SaveModule(std::string& name, std::string& comment, int flag) {
  CInstrument* current = CurrentInstrument(m_instrumentManager.get());
  if (!m_fileManager || !current) return E_FAIL;
  int position = 0;
  (void)m_instrumentManager->GetCurrentInst(position);
  if (m_fileManager->SaveModule(name, comment, position, current, flag) != S_OK) return E_FAIL;
  return current->SetComment(comment);
}

Status CAppServer::GetFileName(std::string& name) {
  return m_instrumentManager ? m_instrumentManager->GetFileName(name) : E_FAIL;
}

Status CAppServer::SetFileName(const std::string& name) {
  return m_instrumentManager ? m_instrumentManager->SetFileName(name) : E_FAIL;
}

Status CAppServer::InitializeVisaStubFile(const std::string& path) {
  return m_visaStubGen ? m_visaStubGen->Initialize(path) : E_FAIL;
}

Status CAppServer::GetFileVersion(std::string& version) {
  return m_fileManager ? m_fileManager->GetFileVersion(version) : E_FAIL;
}

Status CAppServer::GetSoftwareVersion(std::string& version) {
  return m_versionInfo ? m_versionInfo->GetSoftwareVersion(version) : E_FAIL;
}

Status CAppServer::GetFileVersion2(std::string& version) {
  const Status status = GetFileVersion(version);
  if (!Failed(status)) version = CVersionInfo::CutVersion(version);
  return status;
}

Status CAppServer::GetSoftwareVersion2(std::string& version) {
  const Status status = GetSoftwareVersion(version);
  if (!Failed(status)) version = CVersionInfo::CutVersion(version);
  return status;
}

int CAppServer::IsNewVersion() {
  std::string file;
  std::string software;
  (void)GetFileVersion(file);  // empty before a file was read: new
  (void)GetSoftwareVersion(software);
  return CVersionInfo::IsNewVersion(file, software);
}

int CAppServer::IsLoadModuleEnabled() const { return CFileManager::IsLoadModuleEnabled(); }

Status CAppServer::IsModified(int& modified) {
  bool any = false;
  ForEachInstrument(m_instrumentManager.get(), [&any](const CInstrument& instrument) {
    int own = 0;
    (void)instrument.IsModified(own);
    any = any || own != 0;
  });
  modified = any ? 1 : 0;
  return S_OK;
}

// The block managers' flags alone: IsModified reads another flag on purpose.
Status CAppServer::SetModified(int flag) {
  ForEachInstrument(m_instrumentManager.get(), [flag](const CInstrument& instrument) {
    CBlockManager* blocks = nullptr;
    (void)instrument.GetBlockManager(&blocks);
    if (blocks) (void)blocks->SetModified(flag);
  });
  return S_OK;
}

}  // namespace quillpg
