#pragma once

namespace quillpg::tool {

// What the tool's exit status says; docs/command_line.md tells the user.
inline constexpr int STATUS_GOOD = 0;
inline constexpr int STATUS_PROGRAM_ERRORS = 1;  ///< the program does not compile
inline constexpr int STATUS_UNUSABLE = 2;        ///< bad usage, unusable input or output
inline constexpr int STATUS_WAITS_FOR_GOOD = 3;  ///< a wait that no later stimulus can satisfy
inline constexpr int STATUS_SIGNAL = 128;        ///< plus the signal that interrupted: Ctrl-C 130

}  // namespace quillpg::tool
