#pragma once

#include "quillpg/api.h"

#include <cstdint>
#include <string>
#include <string_view>

// Texts that reader and writer of value change dumps share.

namespace quillpg {

/// Ticks of a dump: 10^exponent seconds.
inline constexpr int VCD_FINEST_TICK = -15;
inline constexpr int VCD_COARSEST_TICK = 2;

/// "100 ps" for -10; the exponent is one of the above range.
QUILLPG_API std::string FormatTimescale(int exponent);

/// A word of the file for a message: in quotes, unprintable bytes as ?, cut to a readable length.
QUILLPG_API std::string QuoteVcdWord(std::string_view word);

/// The indices behind a vector's name: "[7:0]" is 7 and 0, "[3]" is 3 and 3.
struct VCD_RANGE {
  std::int64_t first = 0;  ///< of the most significant bit
  std::int64_t last = 0;

  std::int64_t Width() const { return (first < last ? last - first : first - last) + 1; }
};

/// False, with `range` untouched, for any other text and for indices beyond 30 bits.
QUILLPG_API bool ParseVcdRange(std::string_view text, VCD_RANGE& range);

/// The identifier of signal `index`: one character for the first 94, then two, and so on.
QUILLPG_API std::string VcdIdentifier(int index);

}  // namespace quillpg
