#include "quillpg/host_services.h"

#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <utility>

namespace quillpg {
namespace {

namespace fs = std::filesystem;

TEST(HostServices, HeadlessDefaultNeverBlocks) {
  CHostServices::Set(nullptr);
  CHostServices& host = CHostServices::Get();
  testing::internal::CaptureStderr();
  EXPECT_EQ(host.ShowBox("50% lost", BOX_YESNO, -1, ANSWER_NO), ANSWER_NO);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "50% lost\n");
}

TEST(HostServices, ModifiedTimeIsTwelveHourLocalTime) {
  const std::pair<int, const char*> rows[] = {{5 * 60, "02/29/24 12:05 AM"},
                                              {12 * 3600, "02/29/24 12:00 PM"},
                                              {13 * 3600 + 7 * 60 + 59, "02/29/24 01:07 PM"}};
  (void)setenv("TZ", "UTC0", 1);
  tzset();
  const CTemporaryFolder folder;
  const fs::path file = folder.Write("file", "x");
  const auto midnight = std::chrono::sys_days(std::chrono::year(2024) / 2 / 29);
  std::string text;
  for (const auto& [seconds, expected] : rows) {
    const auto time = midnight + std::chrono::seconds(seconds);
    fs::last_write_time(file, fs::file_time_type::clock::from_sys(time));
    CHostServices().GetFileModifiedTime(file.string(), text);
    EXPECT_EQ(text, expected);
  }
  (void)fs::remove(file);
  CHostServices().GetFileModifiedTime(file.string(), text);
  EXPECT_EQ(text, "");
  (void)unsetenv("TZ");
  tzset();
}

}  // namespace
}  // namespace quillpg
