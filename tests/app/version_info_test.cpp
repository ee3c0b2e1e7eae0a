#include "app/version_info.h"

#include "hardware/hardware_library.h"
#include "support/scripted_host.h"

#include <gtest/gtest.h>

#include <tuple>

namespace quillpg {
namespace {

class CTestedVersionInfo : public CVersionInfo {
 public:
  using CVersionInfo::ConvertStringToNumericVersionNo;
  using CVersionInfo::GetInternalProductVersionNo;
};

class VersionInfo : public testing::Test {
 protected:
  VersionInfo() {
    GblClientConnected = 0;
    CHostServices::Set(&m_host);
  }
  ~VersionInfo() override { CHostServices::Set(nullptr); }

  // Lets the host answer with the built-in resource after `change` went over it.
  void Alter(std::function<void(VERSION_RESOURCE&)> change) {
    m_host.versionResource = [this, change](VERSION_RESOURCE& resource) {
      (void)m_host.CHostServices::GetVersionResource(resource);
      return change(resource), true;
    };
  }

  // Company, product, copyright, trademark, software version, joined by "|".
  static std::string Fields(CVersionInfo& info) {
    std::string all;
    std::string text;
    for (const auto get :
         {&CVersionInfo::GetCompanyName, &CVersionInfo::GetProductName, &CVersionInfo::GetCopyright,
          &CVersionInfo::GetTradeMark, &CVersionInfo::GetSoftwareVersion}) {
      EXPECT_EQ((info.*get)(text), S_OK);
      all += text + "|";
    }
    return all;
  }

  CScriptedHost m_host;
};

TEST_F(VersionInfo, MissingDataShiftsFieldsAndTellsOncePerQuery) {
  const struct {
    const char* missing;
    bool present, fixedBlock;
    std::size_t boxes;
    const char* fields;
  } rows[] = {
      {"", true, true, 0,
       "Quillmark|Quillmark Pattern Generator|Copyright (C) Quillmark|"
       "Quillmark is a trademark of Quillmark.|1.1.008|"},
      {"", false, true, 1, "|||||"},
      {"LegalTrademarks", true, false, 2, "Quillmark|1.1.008|Copyright (C) Quillmark|server||"},
      {"CompanyName", true, true, 1,
       "Quillmark Pattern Generator Engine|1.1.008|Quillmark is a trademark of "
       "Quillmark.|server||"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.missing);
    m_host.boxes.clear();
    Alter([&row](VERSION_RESOURCE& resource) {
      resource.present = row.present;
      resource.fixedBlockPresent = row.fixedBlock;
      resource.values[row.missing].clear();  // as good as missing
    });
    CTestedVersionInfo info;
    EXPECT_EQ(Fields(info), "|||||");
    (void)info.Initialize();
    EXPECT_EQ(Fields(info), row.fields);
    EXPECT_EQ(m_host.boxes.size(), row.boxes);
    std::string build;
    (void)info.GetBuildVersion(build);
    EXPECT_EQ(build, "1.1.008");  // whatever the resource says
  }
}

TEST_F(VersionInfo, PrintsHalvesOfTheProductVersionAsSignedNumbers) {
  Alter([](VERSION_RESOURCE& resource) {
    resource.fixedBlock = {0, 0, 9, 9, 0x00019C40, 0xFFFF0008};  // words 4 and 5 count
  });
  m_host.texts[12084] = "-.";  // its first character separates
  std::string text;
  EXPECT_EQ(CTestedVersionInfo().GetInternalProductVersionNo(text), S_OK);
  EXPECT_EQ(text, "1--25536--1-8");
  m_host.versionResource = nullptr;
  m_host.texts.clear();
  (void)CTestedVersionInfo().GetInternalProductVersionNo(text);
  EXPECT_EQ(text, "1.1.0.8");
}

TEST_F(VersionInfo, ParsesExactlyFourNumbers) {
  const std::tuple<const char*, unsigned long, unsigned long> rows[] = {
      {"1.1.0.8", 65537, 8},
      {"1.65537.2.65544", 65537, 131080},  // second and fourth modulo 65536
      {"65537.0.0.0", 65536, 0},           // kept to 32 bits
  };
  const CTestedVersionInfo info;
  unsigned long high = 99;
  unsigned long low = 99;
  for (const char* text : {"1.1.0", "1.1.0.8.", "1.1..8", "1.1.0.8a", "1.1.-1.8",
                           "1.1.0.4294967296", static_cast<const char*>(nullptr)}) {
    EXPECT_EQ(info.ConvertStringToNumericVersionNo(text, high, low), 0);
    EXPECT_EQ(high + low, 198U);  // untouched
  }
  for (const auto& [text, wantedHigh, wantedLow] : rows) {
    SCOPED_TRACE(text);
    EXPECT_EQ(info.ConvertStringToNumericVersionNo(text, high, low), 1);
    EXPECT_EQ(high, wantedHigh);
    EXPECT_EQ(low, wantedLow);
  }
}

TEST(Version, CutsTheLastPartAndComparesWithTheFirstRelease) {
  EXPECT_EQ(CVersionInfo::CutVersion("1.0.2"), "1.0");
  EXPECT_EQ(CVersionInfo::CutVersion("10"), "10");
  EXPECT_EQ(CVersionInfo::CutVersion(".5"), ".5");
  EXPECT_EQ(CVersionInfo::IsNewVersion("1.0.5", "1.2.0"), 0);
  EXPECT_EQ(CVersionInfo::IsNewVersion("1.0.5", "1.0.8"), 1);  // the same release is new, too
}

}  // namespace
}  // namespace quillpg
