#pragma once

#include "quillpg/api.h"

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

/// The identifier of signal `index`: one character for the first 94, then two, and so on.
QUILLPG_API std::string VcdIdentifier(int index);

}  // namespace quillpg
