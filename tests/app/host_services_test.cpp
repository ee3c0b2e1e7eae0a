#include "quillpg/host_services.h"

#include "quillpg/settings_names.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>

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
  struct Row {
    int secondsOfDay;
    const char* text;
  };
  const Row rows[] = {
      {5 * 60, "02/29/24 12:05 AM"},
      {12 * 3600, "02/29/24 12:00 PM"},
      {13 * 3600 + 7 * 60 + 59, "02/29/24 01:07 PM"},
  };
  const char* zone = std::getenv("TZ");
  const std::string before = zone ? zone : "";
  (void)setenv("TZ", "UTC0", 1);
  tzset();
  const fs::path file = fs::temp_directory_path() / "quillpg_modified_time_test";
  std::ofstream(file) << "x";
  const auto midnight = std::chrono::sys_days(std::chrono::year(2024) / 2 / 29);
  std::string text;
  for (const Row& row : rows) {
    const auto time = midnight + std::chrono::seconds(row.secondsOfDay);
    fs::last_write_time(file, fs::file_time_type::clock::from_sys(time));
    CHostServices().GetFileModifiedTime(file.string(), text);
    EXPECT_EQ(text, row.text);
  }
  (void)fs::remove(file);
  CHostServices().GetFileModifiedTime(file.string(), text);
  EXPECT_EQ(text, "");
  (void)(zone ? setenv("TZ", before.c_str(), 1) : unsetenv("TZ"));
  tzset();
}

// Front ends of every age look their users' settings up under these.
TEST(SettingsNames, KeepTheirTexts) {
  struct Row {
    const char* name;
    const char* text;
  };
  const Row rows[] = {
      {Settings::KEY, "Software\\Quillmark\\Quillmark Pattern Generator"},
      {Settings::SECTION_COLORS, "Color Schemes"},
      {Settings::SECTION_DEFAULTS, "Defaults"},
      {Settings::RADIX, "Radix"},
      {Settings::DEFAULT_CHANNEL_VALUE, "Default Channel Value"},
      {Settings::SHOW_STATUS_MONITOR, "Show Status Monitor on Run"},
      {Settings::FONT_SIZE_LISTING, "Font Size(Listing Window)"},
      {Settings::FONT_SIZE_PROGRAM, "Font Size(Program Window)"},
      {Settings::FONT_SIZE_WAVEFORM, "Font Size(WaveForm Window)"},
      {Settings::BACKGROUND_COLOR_LISTING, "Background Color(Listing Window)"},
      {Settings::BACKGROUND_COLOR_PROGRAM, "Background Color(Program Window)"},
      {Settings::TEXT_COLOR_LISTING, "Text Color(Listing Window)"},
      {Settings::TEXT_COLOR_PROGRAM, "Text Color(Program Window)"},
      {Settings::REFERENCE_ONE_COLOR_LISTING, "Reference One Color(Listing Window)"},
      {Settings::REFERENCE_TWO_COLOR_LISTING, "Reference Two Color(Listing Window)"},
      {Settings::COLOR_SCHEME_SETUP, "Color Scheme(Setup Window)"},
      {Settings::COLOR_SCHEME_LISTING, "Color Scheme(Listing Window)"},
      {Settings::COLOR_SCHEME_PROGRAM, "Color Scheme(Program window)"},  // small w
      {Settings::COLOR_SCHEME_WAVEFORM, "Color Scheme(WaveForm Window)"},
      {Settings::PATH_SEPARATOR, "\\"},
      {Settings::LOCK_FAILURE,
       "Instrument lock failure: exit the application holding the lock or cycle power."},
      {Settings::UNLOCK_FAILURE, "Instrument unlock failure: cycle power."},
  };
  for (const Row& row : rows) EXPECT_STREQ(row.name, row.text);
}

}  // namespace
}  // namespace quillpg
