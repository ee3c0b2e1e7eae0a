#pragma once

#include "command_line.h"

namespace quillpg::tool {

/// Loads a capture or a setup file and saves it as a setup file. Gives the exit status.
int RunConvertCommand(const CONVERT_OPTIONS& options);

/// Merges modules of a setup file into one instrument. Gives the exit status.
int RunMergeCommand(const MERGE_OPTIONS& options);

/// Saves a generated test program as a setup file. Gives the exit status.
int RunTestDataCommand(const TEST_DATA_OPTIONS& options);

/// Writes the simulation configuration file for a setup file. Gives the exit status.
int RunSimConfigCommand(const SIM_CONFIG_OPTIONS& options);

}  // namespace quillpg::tool
