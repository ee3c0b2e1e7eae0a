#include "quillpg/host_services.h"

#include "quillpg/settings_names.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
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
  std::string path;
  host.GetLibraryPath(path);  // of a statically linked program: the program
  EXPECT_TRUE(host.FileExists(path)) << path;
  std::string directory;
  host.GetExecutableDirectory(directory);
  EXPECT_EQ(fs::path(path).parent_path(), directory);
  EXPECT_FALSE(host.FileExists(directory));  // a folder is no file
}

TEST(HostServices, ModifiedTimeIsTwelveHourLocalTime) {
  const std::pair<int, const char*> rows[] = {{5 * 60, "02/29/24 12:05 AM"},
                                              {12 * 3600, "02/29/24 12:00 PM"},
                                              {13 * 3600 + 7 * 60 + 59, "02/29/24 01:07 PM"}};
  const char* zone = std::getenv("TZ");
  const std::string before = zone ? zone : "";
  (void)setenv("TZ", "UTC0", 1);
  tzset();
  const fs::path file = fs::temp_directory_path() / "quillpg_modified_time_test";
  std::ofstream(file) << "x";
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
  (void)(zone ? setenv("TZ", before.c_str(), 1) : unsetenv("TZ"));
  tzset();
}

// Front ends of every age look their users' settings up under these.
TEST(SettingsNames, KeepTheirTexts) {
  EXPECT_STREQ(Settings::KEY, "Software\\Quillmark\\Quillmark Pattern Generator");
  EXPECT_STREQ(Settings::SHOW_STATUS_MONITOR, "Show Status Monitor on Run");
  EXPECT_STREQ(Settings::COLOR_SCHEME_PROGRAM, "Color Scheme(Program window)");  // small w
  EXPECT_STREQ(Settings::COLOR_SCHEME_WAVEFORM, "Color Scheme(WaveForm Window)");
}

}  // namespace
}  // namespace quillpg
