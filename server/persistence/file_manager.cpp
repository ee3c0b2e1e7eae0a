#include "persistence/file_manager.h"

#include "app/message_catalogue.h"
#include "app/message_service.h"
#include "app/version_info.h"
#include "base/atomic_file.h"
#include "base/byte_stream.h"
#include "base/guard.h"
#include "base/setup_file_reader.h"
#include "base/text.h"
#include "persistence/fixed_section.h"
#include "persistence/input_file.h"
#include "persistence/work_mark.h"
#include "quillpg/app_server.h"
#include "quillpg/host_services.h"
#include "quillpg/message_router.h"

#include <algorithm>
#include <filesystem>
#include <istream>
#include <limits>
#include <system_error>

namespace quillpg {

namespace {

// Enough for nearly every head: a look at a file reads no more of it, however large it is.
constexpr std::size_t kHeadBytes = 65536;

// Of a path that is no file: nothing there, or something that cannot be opened.
Status WhyNoFile(const std::string& path) {
  std::error_code error;
  const auto type = std::filesystem::status(path, error).type();
  return type == std::filesystem::file_type::not_found ? PG_E_FILE_MISSING : PG_E_FILE_NOT_OPENED;
}

}  // namespace

int CFileManager::m_loadModule = 0;

CFileManager::CFileManager()
    : m_fixedSection(std::make_unique<FIXED_SECTION>()),
      m_output(std::make_unique<CAtomicFile>()) {}

CFileManager::~CFileManager() = default;

Status CFileManager::Initialize(CAppServer* server, CInstrumentManager* instruments) {
  m_server = server;
  m_instruments = instruments;
  return S_OK;
}

Status CFileManager::SetMessageRouter(CMessageRouter* router) {
  m_router = router;
  return S_OK;
}

Status CFileManager::SetProgressBarMessage(int percent) {
  if (m_router) m_router->SetProgressStatus(percent);
  return S_OK;
}

// --- the surroundings ---

std::string CFileManager::ProductName() const {
  CVersionInfo* version = nullptr;
  std::string name;
  if (m_server) (void)m_server->GetVersionInfo(&version);
  if (version) (void)version->GetProductName(name);
  return name;
}

CModuleManager* CFileManager::LiveModules() const {
  CModuleManager* modules = nullptr;
  if (m_server) (void)m_server->GetModuleManager(&modules);  // null tells it
  return modules;
}

void CFileManager::SetStatusMessage(const std::string& text) const {
  if (m_server) m_server->SetStatusMessage(text);
}

void CFileManager::ShowReadingMessage(const std::string& fileName) const {
  (void)GuardAllocation([&] {  // a status line that does not fit is done without
    SetStatusMessage(FormatText(CMessageService::Text(MSG_READING_FILE), {fileName}));
    return S_OK;
  });
}

// --- opening ---

Status CFileManager::OpenForReading(const std::string& fileName) {
  CloseInput();
  m_fault = {};
  m_output->Discard();
  const Status status = GuardAllocation(
      [&] {
        if (!CHostServices::Get().FileExists(fileName)) return WhyNoFile(fileName);
        m_input = std::make_unique<CInputFile>();
        const Status opened = m_input->Open(fileName);
        return opened == S_OK ? ReadHead() : opened;
      },
      E_UNEXPECTED);
  if (status != S_OK) CloseInput();
  if (status == E_UNEXPECTED) CMessageService::Notice(CMessageService::Text(MSG_FILE_READ_ERROR));
  return status;
}

Status CFileManager::ReadHead() {
  const std::string product = ProductName();
  m_input->Fetch(kHeadBytes);
  m_reader = std::make_unique<CSetupFileReader>(m_input->Bytes());
  Status status = m_fixedSection->Read(*m_reader, product);
  if (status == E_UNEXPECTED && m_input->HasMore()) {
    m_input->FetchAll();
    m_reader = std::make_unique<CSetupFileReader>(m_input->Bytes());
    status = m_fixedSection->Read(*m_reader, product);
  }
  if (status == S_OK) m_comment = m_fixedSection->comment;
  return status;
}

// Reads the rest of the file; the reader goes on where the head ended.
void CFileManager::FetchRecords() {
  const std::uint64_t head = m_reader->Offset();
  m_input->FetchAll();
  m_reader = std::make_unique<CSetupFileReader>(m_input->Bytes());
  m_reader->Skip("fixed section", head);
}

void CFileManager::CloseInput() {
  if (m_reader) m_fault = {m_reader->FailedField(), m_reader->FailedOffset()};
  m_reader.reset();
  m_input.reset();
}

Status CFileManager::LookAt(const std::string& fileName) {
  const CWorkMark work(m_working);
  if (!work.Taken()) return E_FAIL;
  const Status status = OpenForReading(fileName);
  CloseInput();
  return status;
}

Status CFileManager::ReadFixedSection(std::istream& stream) {
  if (m_working) return E_FAIL;  // the record belongs to what is going on
  return GuardAllocation(
      [&] {
        CSetupFileReader reader(stream);
        const Status status = m_fixedSection->Read(reader, ProductName());
        if (status != S_OK) stream.setstate(std::ios::failbit);
        return status;
      },
      E_UNEXPECTED);
}

// --- looking at a file ---

Status CFileManager::IsPGFile(const std::string& fileName) { return LookAt(fileName); }

Status CFileManager::GetFileVersion(std::string& version) const {
  return StoreText(version, m_fixedSection->softwareVersion);
}

Status CFileManager::Preview(const std::string& fileName, PREVIEW_INFO& info) {
  info.comment.clear();
  if (LookAt(fileName) != S_OK) return S_OK;
  (void)GuardAllocation([&] {  // a comment that does not fit is not shown
    info.comment = Trim(m_comment);
    return S_OK;
  });
  return S_OK;
}

Status CFileManager::GetModuleList(const std::string& fileName, std::vector<std::string>& names,
                                   int& modules) {
  names.clear();
  modules = 0;
  const Status status = LookAt(fileName);
  if (status != S_OK) return status;
  modules = static_cast<int>(
      std::min<std::int64_t>(m_fixedSection->ModuleCount(), std::numeric_limits<int>::max()));
  return GuardAllocation([&] {
    for (const INSTRUMENT_ENTRY& entry : m_fixedSection->instruments) names.push_back(entry.name);
    return S_OK;
  });
}

int CFileManager::IsProgramDataSaved() const { return m_fixedSection->programDataSaved; }

int CFileManager::IsLoadModuleEnabled() { return m_loadModule; }

}  // namespace quillpg
