#include "exchange/vcd_text.h"

#include "base/text.h"

#include <algorithm>
#include <cstddef>

namespace quillpg {

std::string FormatTimescale(int exponent) {
  constexpr std::string_view kNumbers[] = {"1 ", "10 ", "100 "};
  constexpr std::string_view kUnits[] = {"fs", "ps", "ns", "us", "ms", "s"};
  const auto steps = static_cast<std::size_t>(exponent - VCD_FINEST_TICK);
  return std::string(kNumbers[steps % 3]).append(kUnits[steps / 3]);
}

std::string QuoteVcdWord(std::string_view word) {
  constexpr std::size_t kReadable = 40;
  std::string text = "'";
  for (const char c : word.substr(0, kReadable)) text += c >= ' ' && c <= '~' ? c : '?';
  return text + (word.size() > kReadable ? "...'" : "'");
}

bool ParseVcdRange(std::string_view text, VCD_RANGE& range) {
  constexpr std::int64_t kLargest = 1 << 30;
  if (text.size() < 3 || text.front() != '[' || text.back() != ']') return false;
  text = text.substr(1, text.size() - 2);
  const std::size_t colon = text.find(':');
  VCD_RANGE read;
  if (!ParseNumber(text.substr(0, colon), read.first)) return false;
  read.last = read.first;
  if (colon != std::string_view::npos && !ParseNumber(text.substr(colon + 1), read.last)) {
    return false;
  }
  if (std::max(read.first, read.last) > kLargest || std::min(read.first, read.last) < -kLargest) {
    return false;
  }
  range = read;
  return true;
}

std::string VcdIdentifier(int index) {
  constexpr int kCharacters = '~' - '!' + 1;
  std::string id;
  for (++index; index > 0; index = (index - 1) / kCharacters) {
    id += static_cast<char>('!' + (index - 1) % kCharacters);
  }
  return id;
}

}  // namespace quillpg
