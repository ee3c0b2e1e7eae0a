#include "base/text.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace quillpg {

namespace {

// Length of a conversion's letters at the start of `text` ("d", "ld", "hd", "s", "c"), 0 for none.
std::size_t ConversionLength(std::string_view text) {
  constexpr std::array<std::string_view, 5> kConversions = {"d", "s", "c", "ld", "hd"};
  for (const std::string_view conversion : kConversions) {
    if (text.starts_with(conversion)) return conversion.size();
  }
  return 0;
}

// Enough for every finite double in fixed notation (1.8e308 has 309 digits).
constexpr std::size_t kNumberBuffer = 400;

template <typename... Args>
std::string ToText(Args... args) {
  std::array<char, kNumberBuffer> buffer;
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), args...);
  return {buffer.data(), result.ptr};
}

}  // namespace

std::string_view Trim(std::string_view text) {
  while (!text.empty() && IsWhiteSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsWhiteSpace(text.back())) text.remove_suffix(1);
  return text;
}

std::string FoldCase(std::string_view text) {
  std::string folded(text);
  std::ranges::transform(folded, folded.begin(), [](char c) { return FoldCase(c); });
  return folded;
}

bool EqualNoCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() &&
         std::ranges::equal(a, b, [](char x, char y) { return FoldCase(x) == FoldCase(y); });
}

void CFormatArg::AppendTo(std::string& out, std::string_view conversion) const {
  if (const auto* text = std::get_if<std::string_view>(&m_value)) {
    out += *text;
  } else if (const auto* character = std::get_if<char>(&m_value)) {
    out += *character;
  } else {
    const std::int64_t number = std::get<std::int64_t>(m_value);
    AppendNumber(out, conversion == "hd" ? static_cast<std::int16_t>(number) : number);
  }
}

std::string FormatText(std::string_view format, std::initializer_list<CFormatArg> args) {
  std::string out;
  auto arg = args.begin();
  for (std::size_t i = 0; i < format.size(); ++i) {
    if (format[i] != '%') {
      out += format[i];
      continue;
    }
    const std::string_view rest = format.substr(i + 1);
    if (rest.starts_with('%')) {
      out += '%';
      ++i;
    } else if (const std::size_t length = ConversionLength(rest); length > 0) {
      if (arg != args.end()) (arg++)->AppendTo(out, rest.substr(0, length));
      i += length;
    } else {
      out += '%';
    }
  }
  return out;
}

void AppendNumber(std::string& out, std::int64_t number) {
  std::array<char, 24> buffer;
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number);
  out.append(buffer.data(), result.ptr);
}

std::string ShortestDecimal(double number) { return ToText(number); }
std::string ShortestDecimal(float number) { return ToText(number); }

std::string FixedDecimal(double number, int decimals) {
  return ToText(number, std::chars_format::fixed, decimals);
}

}  // namespace quillpg
