#include "exchange/vcd_text.h"

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

std::string VcdIdentifier(int index) {
  constexpr int kCharacters = '~' - '!' + 1;
  std::string id;
  for (++index; index > 0; index = (index - 1) / kCharacters) {
    id += static_cast<char>('!' + (index - 1) % kCharacters);
  }
  return id;
}

}  // namespace quillpg
