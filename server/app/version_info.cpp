#include "app/version_info.h"

#include "app/message_catalogue.h"
#include "app/message_service.h"
#include "base/guard.h"
#include "base/text.h"
#include "quillpg/host_services.h"

#include <cstddef>
#include <string_view>

namespace quillpg {

namespace {

// Words of the fixed block that hold the product version.
constexpr std::size_t kProductVersionHigh = 4;
constexpr std::size_t kProductVersionLow = 5;

// The parts between the separators, empty ones included.
std::vector<std::string> Split(std::string_view text, char separator) {
  std::vector<std::string> parts;
  for (std::size_t at = 0; at != std::string_view::npos;) {
    const std::size_t end = text.find(separator, at);
    parts.emplace_back(text.substr(at, end - at));
    at = end == std::string_view::npos ? end : end + 1;
  }
  return parts;
}

constexpr std::uint32_t HighHalf(std::uint32_t word) { return word >> 16; }
constexpr std::uint32_t LowHalf(std::uint32_t word) { return word & 0xFFFF; }

// Kept to 32 bits, as version words are.
constexpr unsigned long JoinHalves(std::uint32_t high, std::uint32_t low) {
  return (high << 16) | LowHalf(low);
}

}  // namespace

CVersionInfo::CVersionInfo() { SetVersionInfo(); }

void CVersionInfo::SetVersionInfo() {
  m_fieldNames = Split(CMessageService::Text(MSG_VERSION_FIELD_NAMES), '\n');
  ReadVersionResource();

  std::string library;
  CHostServices::Get().GetLibraryPath(library);
  if (!library.empty()) CHostServices::Get().GetFileModifiedTime(library, m_buildDate);

  const std::string separator = CMessageService::Text(MSG_VERSION_SEPARATOR);
  if (!separator.empty()) m_separator = separator.front();
}

void CVersionInfo::ReadVersionResource() {
  VERSION_RESOURCE resource;
  if (!CHostServices::Get().GetVersionResource(resource) || !resource.present) {
    CMessageService::Notice(MSG_VERSION_INFO_ERROR);
    return;
  }
  if (resource.fixedBlockPresent) {
    m_fixedBlock = resource.fixedBlock;
  } else {
    CMessageService::Notice(MSG_VERSION_INFO_ERROR);
  }
  ReadFields(resource);
}

void CVersionInfo::ReadFields(const VERSION_RESOURCE& resource) {
  for (const std::string& name : m_fieldNames) {
    const auto field = resource.values.find(name);
    if (field == resource.values.end() || field->second.empty()) {
      CMessageService::Notice(MSG_VERSION_INFO_ERROR);
    } else {
      m_fieldValues.push_back(field->second);
    }
  }
}

Status CVersionInfo::Initialize() {
  return GuardAllocation([&] {
    m_companyName = GetVersionString(VersionString::CompanyName);
    m_softwareVersion = GetVersionString(VersionString::ProductVersion);
    m_productName = GetVersionString(VersionString::ProductName);
    m_productVersion = GetVersionString(VersionString::ProductVersion);
    m_copyright = GetVersionString(VersionString::LegalCopyright);
    m_tradeMark = GetVersionString(VersionString::LegalTrademarks);
    return S_OK;
  });
}

Status CVersionInfo::GetCompanyName(std::string& text) const {
  return StoreText(text, m_companyName);
}

Status CVersionInfo::GetSoftwareVersion(std::string& text) const {
  return StoreText(text, m_softwareVersion);
}

Status CVersionInfo::GetProductName(std::string& text) const {
  return StoreText(text, m_productName);
}

Status CVersionInfo::GetProductVersion(std::string& text) const {
  return StoreText(text, m_productVersion);
}

Status CVersionInfo::GetCopyright(std::string& text) const { return StoreText(text, m_copyright); }

Status CVersionInfo::GetTradeMark(std::string& text) const { return StoreText(text, m_tradeMark); }

Status CVersionInfo::GetBuildDate(std::string& text) const { return StoreText(text, m_buildDate); }

Status CVersionInfo::GetBuildVersion(std::string& text) const {
  return StoreText(text, PRODUCT_VERSION);
}

std::string CVersionInfo::CutVersion(const std::string& version) {
  const std::size_t dot = version.rfind('.');
  return dot == std::string::npos || dot == 0 ? version : version.substr(0, dot);
}

int CVersionInfo::IsNewVersion(const std::string& fileVersion, const std::string& softwareVersion) {
  constexpr std::string_view kFirstVersion = "1.0";
  const bool old =
      CutVersion(fileVersion) == kFirstVersion && CutVersion(softwareVersion) != kFirstVersion;
  return old ? 0 : 1;
}

std::string CVersionInfo::GetVersionString(VersionString index) const {
  const auto at = static_cast<std::size_t>(index);
  return at < m_fieldValues.size() ? m_fieldValues[at] : std::string();
}

Status CVersionInfo::GetInternalProductVersionNo(unsigned long& high, unsigned long& low) const {
  high = m_fixedBlock[kProductVersionHigh];
  low = m_fixedBlock[kProductVersionLow];
  return S_OK;
}

Status CVersionInfo::GetInternalProductVersionNo(std::string& text) const {
  const std::uint32_t high = m_fixedBlock[kProductVersionHigh];
  const std::uint32_t low = m_fixedBlock[kProductVersionLow];
  text = FormatText("%hd%c%hd%c%hd%c%hd", {HighHalf(high), m_separator, LowHalf(high), m_separator,
                                           HighHalf(low), m_separator, LowHalf(low)});
  return S_OK;
}

int CVersionInfo::ConvertStringToNumericVersionNo(const char* text, unsigned long& high,
                                                  unsigned long& low) const {
  if (!text) return 0;
  std::string_view rest = text;
  std::array<std::uint32_t, 4> numbers{};
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    const std::size_t end = rest.find(m_separator);
    const bool last = i + 1 == numbers.size();
    if ((end == std::string_view::npos) != last) return 0;
    if (!ParseNumber(rest.substr(0, end), numbers[i])) return 0;
    if (!last) rest.remove_prefix(end + 1);
  }
  high = JoinHalves(numbers[0], numbers[1]);
  low = JoinHalves(numbers[2], numbers[3]);
  return 1;
}

}  // namespace quillpg
