#include "instrument/radix.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <tuple>
#include <vector>

namespace quillpg {
namespace {

std::vector<std::uint64_t> Parse(const std::string& text, int bits, Radix radix) {
  // Stale words must not shine through.
  std::vector<std::uint64_t> value((static_cast<std::size_t>(bits) + 63) / 64, 0xA5A5A5A5A5A5A5A5u);
  ParseValue(text, bits, radix, value);
  return value;
}

std::string Format(const std::vector<std::uint64_t>& value, int bits, Radix radix) {
  std::string text = "stale";
  FormatValue(value, bits, radix, text);
  return text;
}

TEST(Radix, ParsesWhateverTextComes) {
  const std::tuple<const char*, int, Radix, const char*> rows[] = {
      {"", 16, Radix::Hex, "0000"},
      {"FFFFF", 16, Radix::Hex, "FFFF"},
      {"12G4", 16, Radix::Hex, "0012"},
      {" 1", 16, Radix::Hex, "0000"},                // no blanks,
      {"-1", 16, Radix::Hex, "0000"},                // no signs,
      {"0x12", 16, Radix::Hex, "0000"},              // no prefixes
      {"1G00000002", 40, Radix::Hex, "0100000002"},  // the chunk to the left counts by itself
      {"1122G34567", 40, Radix::Hex, "1100000022"},  // and the other way round
      {"7G12345678", 36, Radix::Hex, "712345678"},
      {"8", 6, Radix::Octal, "00"},
      {"77777777777", 33, Radix::Octal, "1FFFFFFFF"},  // 10 digits and one more
      {"10000000000", 31, Radix::Octal, "40000000"},
      {"10201", 8, Radix::Binary, "02"},
      {"100000000000000000000000000000002", 33, Radix::Binary, "100000000"},
      {"1023", 10, Radix::Decimal, "3FF"},
      {"1024", 10, Radix::Decimal, "000"},
      {"-1 2,3 apples", 8, Radix::Decimal, "7B"},  // what is no digit is skipped
      {"18446744073709551615", 64, Radix::Decimal, "FFFFFFFFFFFFFFFF"},
      {"18446744073709551616", 64, Radix::Decimal, "0000000000000000"},
      {"1000000000000000000000000000", 92, Radix::Decimal, "33B2E3C9FD0803CE8000000"},
  };
  for (const auto& [text, bits, radix, hex] : rows) {
    SCOPED_TRACE(text);
    EXPECT_EQ(Format(Parse(text, bits, radix), bits, Radix::Hex), hex);
  }
}

}  // namespace
}  // namespace quillpg
