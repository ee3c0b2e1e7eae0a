// Parses any text as a group value: nothing may lie beyond the group's bits, and the value must
// come through its own text in every radix. The first two bytes choose radix and width.

#include "instrument/radix.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using quillpg::Radix;
  if (size < 2) return 0;
  const auto radix = static_cast<Radix>(data[0] % 5);  // 4 is none of the radixes
  const int bits = data[1] * 2;
  const std::string_view text(reinterpret_cast<const char*>(data) + 2, size - 2);

  std::vector<std::uint64_t> value((static_cast<std::size_t>(bits) + 63) / 64);
  quillpg::ParseValue(text, bits, radix, value);
  if (bits % 64 != 0 && value.back() >> bits % 64 != 0) std::abort();
  for (const Radix shown : {Radix::Hex, Radix::Decimal, Radix::Octal, Radix::Binary}) {
    std::string digits;
    quillpg::FormatValue(value, bits, shown, digits);
    std::vector<std::uint64_t> again(value.size());
    quillpg::ParseValue(digits, bits, shown, again);
    if (again != value) std::abort();
  }
  return 0;
}
