#pragma once

#include "quillpg/api.h"

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <system_error>
#include <variant>

// Text rules that the whole engine shares. Nothing here depends on the locale.

namespace quillpg {

/// The text without white space at both ends.
QUILLPG_API std::string_view Trim(std::string_view text);

/// Blank, tab, LF, VT, FF and CR.
constexpr bool IsWhiteSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

/// ASCII letters in lower case, every other byte as it is, so that multi-byte text stays whole.
constexpr char FoldCase(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
QUILLPG_API std::string FoldCase(std::string_view text);

/// Whole-string comparison without regard to the case of ASCII letters.
QUILLPG_API bool EqualNoCase(std::string_view a, std::string_view b);

/// One typed argument of FormatText.
class CFormatArg {
 public:
  CFormatArg(std::string_view text) : m_value(text) {}
  CFormatArg(const std::string& text) : m_value(std::string_view(text)) {}
  CFormatArg(const char* text) : m_value(std::string_view(text)) {}
  CFormatArg(char c) : m_value(c) {}
  CFormatArg(int number) : m_value(std::int64_t{number}) {}
  CFormatArg(long number) : m_value(std::int64_t{number}) {}
  CFormatArg(long long number) : m_value(std::int64_t{number}) {}
  CFormatArg(unsigned number) : m_value(std::int64_t{number}) {}

  /// Appends the argument as the conversion asks for: "s", "c", "d", "ld" or "hd" (signed 16 bits).
  void AppendTo(std::string& out, std::string_view conversion) const;

 private:
  std::variant<std::string_view, char, std::int64_t> m_value;
};

/// Fills %s, %c, %d, %ld and %hd of `format` in order with `args`; %% is a percent sign. Missing
/// arguments give empty text, other conversions are copied as they stand. Catalogue texts and texts
/// of the front end pass through here and never reach printf as a format.
QUILLPG_API std::string FormatText(std::string_view format, std::initializer_list<CFormatArg> args);

/// Reads a decimal number that fits its type; false, with `number` untouched, unless the whole text
/// is that number. Neither a plus sign nor blanks are taken.
template <typename Number>
bool ParseNumber(std::string_view text, Number& number) {
  Number read{};
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, read);
  if (error != std::errc() || stop != end) return false;
  number = read;
  return true;
}

/// Appends a decimal number.
QUILLPG_API void AppendNumber(std::string& out, std::int64_t number);

/// The shortest decimal text that reads back as the same number.
QUILLPG_API std::string ShortestDecimal(double number);
QUILLPG_API std::string ShortestDecimal(float number);

/// The number with `decimals` digits after the point (as "%.3f" in the C locale); any size.
QUILLPG_API std::string FixedDecimal(double number, int decimals);

}  // namespace quillpg
