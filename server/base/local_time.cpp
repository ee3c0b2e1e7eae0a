#include "base/local_time.h"

#include <cstddef>
#include <cstdio>

namespace quillpg {

namespace {

bool ToLocalTime(std::time_t time, std::tm& local) {
#if defined(_WIN32)
  return localtime_s(&local, &time) == 0;
#else
  return localtime_r(&time, &local) != nullptr;
#endif
}

// "%m/%d/%y %I:%M %p", written out so that no locale takes part.
std::string FormatTime(const std::tm& time) {
  const int hour = time.tm_hour % 12;
  char buffer[96];
  const int length = std::snprintf(
      buffer, sizeof buffer, "%02d/%02d/%02d %02d:%02d %s", time.tm_mon + 1, time.tm_mday,
      time.tm_year % 100, hour == 0 ? 12 : hour, time.tm_min, time.tm_hour < 12 ? "AM" : "PM");
  return {buffer, static_cast<std::size_t>(length)};
}

}  // namespace

std::string LocalTimeText(std::time_t time) {
  std::tm local{};
  return ToLocalTime(time, local) ? FormatTime(local) : std::string();
}

}  // namespace quillpg
