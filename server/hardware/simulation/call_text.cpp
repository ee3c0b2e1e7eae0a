#include "hardware/simulation/call_text.h"

#include "base/text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace quillpg {
namespace {

// Bytes of the UTF-8 character that `text` begins with; 0 when it begins with none.
std::size_t CharacterLength(std::string_view text) {
  constexpr std::array<std::uint32_t, 5> kLeast = {0, 0, 0x80, 0x800, 0x10000};  // of each length
  const auto lead = static_cast<unsigned char>(text.front());
  const auto length = static_cast<std::size_t>(std::countl_one(lead));
  if (length == 0) return 1;
  if (length == 1 || length >= kLeast.size() || length > text.size()) return 0;
  std::uint32_t code = lead & (0xFFU >> (length + 1));
  for (const char c : text.substr(1, length - 1)) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >> 6 != 2) return 0;
    code = code << 6 | (byte & 0x3FU);
  }
  const bool surrogate = code >= 0xD800 && code < 0xE000;
  return code >= kLeast.at(length) && code <= 0x10FFFF && !surrogate ? length : 0;
}

void AppendQuoted(std::string& out, std::string_view text) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  out += '"';
  while (!text.empty()) {
    const auto code = static_cast<unsigned char>(text.front());
    const std::size_t length = CharacterLength(text);
    if (code < 0x20 || length == 0) {
      out += "\\u00";
      out += kDigits[code >> 4];
      out += kDigits[code & 15];
    } else {
      if (code == '"' || code == '\\') out += '\\';
      out += text.substr(0, length);
    }
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
  out += '"';
}

bool IsFinite(const CALL_ARGUMENT& argument) {
  const auto* real = std::get_if<double>(&argument);
  const auto* small = std::get_if<float>(&argument);
  return (!real || std::isfinite(*real)) && (!small || std::isfinite(*small));
}

}  // namespace

void AppendPlain(std::string& out, const CALL_ARGUMENT& argument) {
  std::visit(
      [&out](const auto& value) {
        using Value = std::remove_cvref_t<decltype(value)>;
        if constexpr (std::is_same_v<Value, std::int64_t>) {
          AppendNumber(out, value);
        } else if constexpr (std::is_floating_point_v<Value>) {
          out += ShortestDecimal(value);
        } else {
          out += value;
        }
      },
      argument);
}

void AppendJson(std::string& out, const CALL_ARGUMENT& argument) {
  if (const auto* letter = std::get_if<char>(&argument)) {
    AppendQuoted(out, std::string_view(letter, 1));
  } else if (const auto* text = std::get_if<std::string_view>(&argument)) {
    AppendQuoted(out, *text);
  } else if (IsFinite(argument)) {
    AppendPlain(out, argument);
  } else {
    out += "null";
  }
}

}  // namespace quillpg
