#pragma once

#include "hardware/simulation/event_stimulus.h"

#include <string>
#include <vector>

namespace quillpg::tool {

/// Reads a stimulus file: lines "vector TAB nine levels", vectors rising; blank lines and lines
/// that begin with # are skipped. False with `error` ("FILE:LINE: what") when it cannot be used.
bool ReadStimulusFile(const std::string& path, std::vector<STIMULUS_LINE>& lines,
                      std::string& error);

}  // namespace quillpg::tool
