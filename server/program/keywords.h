#pragma once

#include "base/text.h"

#include <string_view>

namespace quillpg {

// Words with a meaning of their own in sequence lines; no object may bear one as its name. Compared
// without regard to case.
inline constexpr std::string_view KEYWORD_NONE = "None";  ///< wait for: do not wait
inline constexpr std::string_view KEYWORD_ALWAYS =
    "Always";                                               ///< jump if: whenever the line is done
inline constexpr std::string_view KEYWORD_NEVER = "Never";  ///< jump if: not at all

inline bool IsKeyword(std::string_view name) {
  return EqualNoCase(name, KEYWORD_NONE) || EqualNoCase(name, KEYWORD_ALWAYS) ||
         EqualNoCase(name, KEYWORD_NEVER);
}

}  // namespace quillpg
