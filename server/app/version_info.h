#pragma once

#include "quillpg/api.h"
#include "quillpg/engine_types.h"
#include "quillpg/result_codes.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace quillpg {

struct VERSION_RESOURCE;

/// Version of the product as it goes into setup files. Not the version of the package.
inline constexpr char PRODUCT_VERSION[] = "1.1.008";
/// The same as the most and the least significant word of the version resource: 1.1.0.8.
inline constexpr std::uint32_t PRODUCT_VERSION_HIGH = 0x00010001;
inline constexpr std::uint32_t PRODUCT_VERSION_LOW = 0x00000008;
/// Names the product that wrote a setup file; a file with another one is refused. Never change it.
inline constexpr char PRODUCT_NAME[] = "Quillmark Pattern Generator";

/// What the engine's own version resource says. Read once, by the constructor; the getters answer
/// after Initialize. Missing version data leaves fields empty and shows MSG_VERSION_INFO_ERROR,
/// once for each query that failed; nothing fails.
class QUILLPG_API CVersionInfo {
 public:
  CVersionInfo();
  CVersionInfo(const CVersionInfo&) = delete;
  CVersionInfo& operator=(const CVersionInfo&) = delete;
  virtual ~CVersionInfo() = default;

  Status Initialize();

  Status GetCompanyName(std::string& text) const;
  Status GetSoftwareVersion(std::string& text) const;
  Status GetProductName(std::string& text) const;
  /// The same text as the software version.
  Status GetProductVersion(std::string& text) const;
  Status GetCopyright(std::string& text) const;
  Status GetTradeMark(std::string& text) const;
  /// Local time at which the library file was modified; empty when unknown.
  Status GetBuildDate(std::string& text) const;
  /// PRODUCT_VERSION, whatever the resource says.
  Status GetBuildVersion(std::string& text) const;

  /// `version` before its last "."; whole when there is none or only the first character is one.
  static std::string CutVersion(const std::string& version);
  /// 0 only for a file of version "1.0" and a software of another one, both after the cut; 1
  /// otherwise, also when both are "1.0".
  static int IsNewVersion(const std::string& fileVersion, const std::string& softwareVersion);

 protected:
  void SetVersionInfo();

  /// The value at that index, empty when fewer were found. A field that could not be read moves all
  /// later ones one index down: meant so.
  std::string GetVersionString(VersionString index) const;
  Status GetInternalProductVersionNo(unsigned long& high, unsigned long& low) const;
  /// Four numbers such as "1.1.0.8", each printed as a signed 16-bit one.
  Status GetInternalProductVersionNo(std::string& text) const;
  /// 1, or 0 with the results untouched unless `text` is exactly four decimal numbers.
  int ConvertStringToNumericVersionNo(const char* text, unsigned long& high,
                                      unsigned long& low) const;

 private:
  void ReadVersionResource();
  void ReadFields(const VERSION_RESOURCE& resource);

  std::string m_companyName;
  std::string m_softwareVersion;
  std::string m_productName;
  std::string m_productVersion;
  std::string m_tradeMark;
  std::string m_copyright;
  std::string m_buildDate;
  std::vector<std::string> m_fieldNames;
  std::vector<std::string> m_fieldValues;
  std::array<std::uint32_t, 13> m_fixedBlock{};
  char m_separator = '.';
};

}  // namespace quillpg
