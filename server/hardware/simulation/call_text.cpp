#include "hardware/simulation/call_text.h"

#include "base/text.h"

#include <cmath>
#include <type_traits>

namespace quillpg {
namespace {

void AppendQuoted(std::string& out, std::string_view text) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  out += '"';
  for (const char c : text) {
    const auto code = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      out += '\\';
      out += c;
    } else if (code < 0x20) {
      out += "\\u00";
      out += kDigits[code >> 4];
      out += kDigits[code & 15];
    } else {
      out += c;
    }
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
