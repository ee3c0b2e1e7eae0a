#pragma once

#include "command_line.h"

namespace quillpg::tool {

/// Prints what a setup file holds. Gives the exit status.
int RunInfoCommand(const INFO_OPTIONS& options);

/// Prints every field of a setup file with its offset. Gives the exit status.
int RunDumpCommand(const DUMP_OPTIONS& options);

}  // namespace quillpg::tool
