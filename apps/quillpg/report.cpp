#include "report.h"

#include "exit_status.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace quillpg::tool {
namespace {

void Put(std::FILE* stream, std::string_view text) {
  (void)std::fwrite(text.data(), 1, text.size(), stream);
}

void PutError(std::string_view kind, std::string_view text) {
  (void)std::fflush(stdout);  // keeps the order where both go to one place
  Put(stderr, "quillpg: ");
  Put(stderr, kind);
  Put(stderr, text);
  Put(stderr, "\n");
}

}  // namespace

void ReportError(std::string_view text) { PutError("", text); }

int Refuse(std::string_view text) {
  ReportError(text);
  return STATUS_UNUSABLE;
}

void ReportNotice(std::string_view text) { PutError("notice: ", text); }

void PrintLine(std::string_view text) {
  Put(stdout, text);
  Put(stdout, "\n");
}

bool FlushOutput() {
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return true;
  ReportError(std::string("standard output: ") + std::strerror(errno));
  return false;
}

std::string StatusText(Status status) {
  const std::string_view text = GetResultText(status);
  if (!text.empty()) return std::string(text);
  std::array<char, 16> number{};
  (void)std::snprintf(number.data(), number.size(), "0x%08X", static_cast<unsigned>(status));
  return std::string("status ") + number.data();
}

std::string Counted(std::int64_t count, std::string_view noun) {
  return Grouped(count) + " " + std::string(noun) + (count == 1 ? "" : "s");
}

std::string Grouped(std::int64_t number) {
  std::string text = std::to_string(number);
  const std::size_t sign = number < 0 ? 1 : 0;
  for (std::size_t place = text.size(); place > sign + 3;) {
    place -= 3;
    text.insert(place, ",");
  }
  return text;
}

}  // namespace quillpg::tool
