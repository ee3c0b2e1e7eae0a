#pragma once

#include "hardware/simulation/call_sink.h"

#include <string>

namespace quillpg {

/// Appends a number as the shortest decimal that reads back, anything else as it stands.
void AppendPlain(std::string& out, const CALL_ARGUMENT& argument);

/// Appends the argument as JSON: letters and texts as strings, with bytes that are no UTF-8 as
/// \u00XX; numbers as the shortest decimal that reads back, null for one that JSON has no notation
/// for.
void AppendJson(std::string& out, const CALL_ARGUMENT& argument);

}  // namespace quillpg
