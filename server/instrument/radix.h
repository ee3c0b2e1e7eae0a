#pragma once

#include "quillpg/api.h"
#include "quillpg/engine_types.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

// Group values as text. A value of n bits stands in (n + 63) / 64 words, least significant first.

namespace quillpg {

/// True for the four radixes; any other integer can arrive from a file or a front end.
QUILLPG_API bool IsRadix(Radix radix);

/// Replaces `text` by the value's digits, most significant first, upper case. Hexadecimal, octal
/// and binary always have the digits that `bits` bits need, none for 0 bits; decimal has no leading
/// zeros and is "0" at least. `value` holds no bits beyond `bits`.
QUILLPG_API void FormatValue(std::span<const std::uint64_t> value, int bits, Radix radix,
                             std::string& text);

/// Sets all of `value` from text that nobody checked: the right end is the least significant,
/// missing digits are zeros and what exceeds `bits` is dropped.
///
/// Hexadecimal, octal and binary text is cut from its right end into chunks of 8, 10 and 32
/// characters; a chunk's number ends at its first bad character, chunks to the left of it still
/// count ("12G4" is 12). In decimal text bad characters are skipped. This difference is meant.
QUILLPG_API void ParseValue(std::string_view text, int bits, Radix radix,
                            std::span<std::uint64_t> value);

/// Decimal digits of 2^bits - 1; 1 for no bits.
QUILLPG_API int MaxDecimalDigits(int bits);

}  // namespace quillpg
