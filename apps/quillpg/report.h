#pragma once

#include "quillpg/result_codes.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace quillpg::tool {

/// "quillpg: text" on standard error.
void ReportError(std::string_view text);
/// The same, and gives STATUS_UNUSABLE for the caller to return.
int Refuse(std::string_view text);
/// "quillpg: notice: text" on standard error.
void ReportNotice(std::string_view text);

/// A line on standard output.
void PrintLine(std::string_view text);
/// False, with a word on standard error, when what was printed did not reach its file (full disk).
bool FlushOutput();

/// The status in words, or as its number.
std::string StatusText(Status status);

/// "1 vector", "2,188 vectors".
std::string Counted(std::int64_t count, std::string_view noun);
/// 1234567 as "1,234,567".
std::string Grouped(std::int64_t number);

}  // namespace quillpg::tool
