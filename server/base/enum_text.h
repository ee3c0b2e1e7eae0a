#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace quillpg {

/// One row of a display table.
template <typename Enum>
struct ENUM_TEXT {
  Enum value;
  std::string_view text;
};

/// The text beside `value`, or an empty one: no table is ever indexed with a stored value.
template <typename Enum, std::size_t N>
constexpr std::string_view FindText(const std::array<ENUM_TEXT<Enum>, N>& table, Enum value) {
  const auto row = std::ranges::find(table, value, &ENUM_TEXT<Enum>::value);
  return row == table.end() ? std::string_view() : row->text;
}

/// The number behind an enumeration value, as files and the hardware know it.
template <typename Enum>
constexpr std::int32_t ToInt(Enum value) {
  return static_cast<std::int32_t>(value);
}

}  // namespace quillpg
