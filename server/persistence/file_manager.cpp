#include "persistence/file_manager.h"

namespace quillpg {

Status CFileManager::Initialize(CAppServer* server, CInstrumentManager* instruments) {
  m_server = server;
  m_instruments = instruments;
  return S_OK;
}

Status CFileManager::SetMessageRouter(CMessageRouter* router) {
  m_router = router;
  return S_OK;
}

Status CFileManager::SaveSystem(const std::string& /*fileName*/, const std::string& /*comment*/,
                                int /*flag*/) {
  return E_FAIL;  // Not built yet.
}

Status CFileManager::LoadSystem(const std::string& /*fileName*/, int /*loadFlag*/) {
  return E_FAIL;  // Not built yet.
}

Status CFileManager::SaveModule(const std::string& /*fileName*/, const std::string& /*comment*/,
                                int /*position*/, CInstrument* /*instrument*/, int /*flag*/) {
  return E_FAIL;  // Not built yet.
}

Status CFileManager::LoadModule(const std::string& /*fileName*/,
                                const std::string& /*instrumentName*/, CInstrument* /*target*/) {
  return E_FAIL;  // Not built yet.
}

Status CFileManager::LoadDataWindow(const std::string& /*fileName*/,
                                    const std::string& /*instrumentName*/) {
  return E_FAIL;  // Not built yet.
}

Status CFileManager::SaveInstrument(CInstrument* /*instrument*/) {
  return E_FAIL;  // Not built yet.
}

Status CFileManager::LoadInstrument(CInstrument* /*instrument*/) {
  return E_FAIL;  // Not built yet.
}

Status CFileManager::CreateInstruments(CModuleManager* /*modules*/,
                                       CInstrumentManager* /*instruments*/) {
  return E_FAIL;  // Not built yet.
}

Status CFileManager::CanLoadSystemFile(const std::string& /*fileName*/) {
  return E_FAIL;  // Not built yet.
}

Status CFileManager::CanLoadModuleFile(const std::string& /*fileName*/,
                                       const std::string& /*instrumentName*/,
                                       CInstrument* /*instrument*/) {
  return E_FAIL;  // Not built yet.
}

Status CFileManager::IsPGFile(const std::string& /*fileName*/) {
  return E_FAIL;  // Not built yet.
}

Status CFileManager::GetFileVersion(std::string& /*version*/) const {
  return E_FAIL;  // Not built yet.
}

Status CFileManager::Preview(const std::string& /*fileName*/, PREVIEW_INFO& /*info*/) {
  return E_FAIL;  // Not built yet.
}

Status CFileManager::GetModuleList(const std::string& /*fileName*/,
                                   std::vector<std::string>& /*names*/, int& /*modules*/) {
  return E_FAIL;  // Not built yet.
}

int CFileManager::IsProgramDataSaved() const {
  return 0;  // Not built yet.
}

int CFileManager::IsLoadModuleEnabled() {
  return 0;  // Not built yet.
}

Status CFileManager::GetSize(unsigned long& /*size*/, int /*flag*/, int /*position*/) const {
  return E_FAIL;  // Not built yet.
}

Status CFileManager::GetSystemSize(unsigned long& /*size*/, int /*flag*/) const {
  return E_FAIL;  // Not built yet.
}

Status CFileManager::GetCurrentInstSize(unsigned long& /*size*/, int /*flag*/) const {
  return E_FAIL;  // Not built yet.
}

Status CFileManager::SetProgressBarMessage(int /*percent*/) {
  return E_FAIL;  // Not built yet.
}

Status CFileManager::GenerateVisaStub() {
  return E_FAIL;  // Not built yet.
}

}  // namespace quillpg
