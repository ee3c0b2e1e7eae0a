#pragma once

#include "quillpg/api.h"

#include <cstdint>
#include <string_view>

namespace quillpg {

/// Result of every operation: a signed 32-bit status. All failures are negative, but compare with
/// S_OK rather than with "< 0" alone: S_FALSE is 1, a success with a negative answer.
using Status = std::int32_t;

// The five codes that platforms define too: taken from there where they are macros.
#ifndef S_OK
inline constexpr Status S_OK = 0;
#endif
#ifndef S_FALSE
inline constexpr Status S_FALSE = 1;
#endif
#ifndef E_FAIL
inline constexpr Status E_FAIL = static_cast<Status>(0x80004005u);
#endif
#ifndef E_OUTOFMEMORY
inline constexpr Status E_OUTOFMEMORY = static_cast<Status>(0x8007000Eu);
#endif
#ifndef E_UNEXPECTED
inline constexpr Status E_UNEXPECTED = static_cast<Status>(0x8000FFFFu);
#endif

#define QUILLPG_RESULT_CODE(name, value, text) \
  inline constexpr Status name = static_cast<Status>(value);
#include "quillpg/result_codes.def"
#undef QUILLPG_RESULT_CODE

/// True for every failing status; S_FALSE is a success.
constexpr bool Failed(Status status) { return status < 0; }

/// The constant's name ("PG_E_ABORTED"), or an empty text for a status that is not in the list.
QUILLPG_API std::string_view GetResultName(Status status);

/// What the status says, in words for a person; empty for a status that is not in the list.
QUILLPG_API std::string_view GetResultText(Status status);

}  // namespace quillpg
