#include "setup_file.h"

#include "app/version_info.h"
#include "base/text.h"
#include "exit_status.h"
#include "hardware/simulation/simulated_mainframe.h"
#include "input_text.h"
#include "quillpg/app_server.h"
#include "quillpg/limits.h"
#include "report.h"
#include "server_session.h"

#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>
#include <vector>

namespace quillpg::tool {
namespace {

std::string PodKeywords(const std::array<PodType, NUM_PODS>& pods) {
  std::string keywords;
  for (const PodType pod : pods) {
    // The module names the type as the engine parses it; the two differ in one word.
    const std::string_view keyword =
        pod == PodType::V3Cmos ? std::string_view("V3_CMOS") : GetDisplayText(pod);
    keywords.append(keywords.empty() ? "" : ",").append(keyword.empty() ? "None" : keyword);
  }
  return keywords;
}

// The modules that the file was saved with.
std::vector<SIMULATED_MODULE> DescribeModules(const SETUP_FILE_CONTENTS& contents) {
  std::vector<SIMULATED_MODULE> modules;
  for (const std::int32_t depth : contents.fixedSection.memoryDepths) {
    SIMULATED_MODULE& module = modules.emplace_back();
    module.slot = SIMULATED_FIRST_SLOT + 2 * (static_cast<int>(modules.size()) - 1);
    module.option = depth > DEFAULT_MEMORY_DEPTH;
  }
  std::size_t at = 0;
  for (const SETUP_FILE_INSTRUMENT& instrument : contents.instruments) {
    for (const auto& pods : instrument.pods) {
      if (at < modules.size()) modules[at++].pods = PodKeywords(pods);
    }
  }
  return modules;
}

// What is taken from a pipe is gone: only a capture may come through one.
bool IsRegular(const std::string& path) {
  std::error_code error;
  return std::filesystem::is_regular_file(path, error);
}

std::string PlaceText(std::string_view field, std::uint64_t offset) {
  return "field '" + std::string(field) + "' at byte " + Grouped(static_cast<std::int64_t>(offset));
}

}  // namespace

bool CSetupFile::IsSetupFile(const std::string& path) {
  if (!IsRegular(path)) return false;
  constexpr std::string_view product = PRODUCT_NAME;
  std::string start(product.size() + 1, 'x');
  std::ifstream file(path, std::ios::binary);
  file.read(start.data(), static_cast<std::streamsize>(start.size()));
  return file && start.back() == '\0' && EqualNoCase(product, start.substr(0, product.size()));
}

int CSetupFile::Read(const std::string& path) {
  m_path = path;
  std::string fault;
  if (IsReadable(path, fault) && !IsRegular(path)) return RefuseFile(PG_E_FILE_NOT_OPENED);
  if (!ReadInputText(path, m_bytes, fault)) return Refuse(fault);
  const auto* bytes = reinterpret_cast<const std::uint8_t*>(m_bytes.data());
  m_walked = WalkSetupFile({bytes, m_bytes.size()}, {}, m_contents);
  if (m_walked == PG_E_NOT_SETUP_FILE) return RefuseFile(m_walked);
  return STATUS_GOOD;
}

int CSetupFile::Read(const INPUT_OPTIONS& options) {
  if (options.period.empty()) return Read(options.file);
  return Refuse("--period is for captures: " + options.file + " holds its own clock");
}

std::string CSetupFile::Damage() const {
  return Failed(m_walked) ? PlaceText(m_contents.failedField, m_contents.failedOffset) : "";
}

int CSetupFile::RefuseFile(Status status, const READ_FAULT& fault) const {
  std::string place = Damage();
  if (place.empty() && fault.field) place = PlaceText(fault.field, fault.offset);
  return Refuse(m_path + ": " + StatusText(status) + (place.empty() ? "" : " (" + place + ")"));
}

int CSetupFile::LoadInto(CServerSession& session) const {
  CFileManager* files = nullptr;
  (void)session.Server()->GetFileManager(&files);
  if (!files) return STATUS_UNUSABLE;
  // A module file is no system file, yet it loads as a system of its one instrument.
  if (m_contents.fixedSection.fileType != FileType::Module) {
    const Status fits = files->CanLoadSystemFile(m_path);
    if (Failed(fits)) return RefuseFile(fits);
  }
  const Status status = session.Server()->LoadSystem(m_path);
  if (Failed(status)) return RefuseFile(status, files->Fault());
  if (Failed(m_walked)) ReportNotice(m_path + ": loaded up to " + Damage());
  return STATUS_GOOD;
}

int CSetupFile::LoadForPlay(CServerSession& session) const {
  if (Failed(session.Simulation().SetModules(0)) || !session.Server()) {
    return STATUS_UNUSABLE;
  }
  CFileManager* files = nullptr;
  (void)session.Server()->GetFileManager(&files);
  if (!files) return STATUS_UNUSABLE;
  // Without a path the modules are brought up and no configuration file is written.
  (void)session.Server()->InitializeVisaStubFile("");
  const Status opened = files->IsPGFile(m_path);
  if (Failed(opened)) return RefuseFile(opened);
  (void)files->GenerateVisaStub();
  return LoadInto(session);
}

int CSetupFile::LoadForEditing(CServerSession& session) const {
  if (Failed(session.Simulation().SetModules(DescribeModules(m_contents)))) {
    return RefuseFile(PG_E_MODULE_COUNT);
  }
  return session.Server() ? LoadInto(session) : STATUS_UNUSABLE;
}

}  // namespace quillpg::tool
