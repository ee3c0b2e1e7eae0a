#pragma once

#include <ctime>
#include <string>

namespace quillpg {

/// Local time as "%m/%d/%y %I:%M %p", whatever the locale; empty for a time outside the calendar.
std::string LocalTimeText(std::time_t time);

}  // namespace quillpg
