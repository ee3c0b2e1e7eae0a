#pragma once

#include "command_line.h"

namespace quillpg::tool {

/// Compiles the file and prints the lines of the output window. Gives the exit status.
int RunCheckCommand(const CHECK_OPTIONS& options);

}  // namespace quillpg::tool
