#pragma once

#include "command_line.h"

namespace quillpg::tool {

// What each command does. Every one gives the tool's exit status; what is wrong is on standard
// error then.

/// Checks, downloads and plays the file; writes the pins and the calls where asked.
int RunCommand(const RUN_OPTIONS& options);

/// Compiles the file and prints the lines of the output window.
int RunCommand(const CHECK_OPTIONS& options);

/// Prints one row for each module that was discovered.
int RunCommand(const MODULES_OPTIONS& options);

/// Prints what a setup file holds.
int RunCommand(const INFO_OPTIONS& options);

/// Prints every field of a setup file with its offset.
int RunCommand(const DUMP_OPTIONS& options);

/// Loads a capture or a setup file and saves it as a setup file.
int RunCommand(const CONVERT_OPTIONS& options);

/// Merges modules of a setup file into one instrument.
int RunCommand(const MERGE_OPTIONS& options);

/// Saves a generated test program as a setup file.
int RunCommand(const TEST_DATA_OPTIONS& options);

/// Writes the simulation configuration file for a setup file.
int RunCommand(const SIM_CONFIG_OPTIONS& options);

}  // namespace quillpg::tool
