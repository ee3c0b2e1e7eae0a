#pragma once

#include "command_line.h"

namespace quillpg::tool {

/// Checks, downloads and plays the file; writes the pins and the calls where asked. Gives the exit
/// status.
int RunRunCommand(const RUN_OPTIONS& options);

}  // namespace quillpg::tool
