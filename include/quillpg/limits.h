#pragma once

namespace quillpg {

// Limits of a pattern program. The managers refuse to grow past them; the compiler reports them.
inline constexpr int MAX_BLOCKS = 4000;
inline constexpr int MAX_SEQUENCE_LINES = 4000;  ///< also after subsequences are expanded
inline constexpr int MAX_SUBSEQUENCES = 50;
inline constexpr int MAX_SUBSEQUENCE_LINES = 256;
inline constexpr int MAX_EVENTS = 8;
inline constexpr int MAX_EVENT_DEFINITIONS = 256;
inline constexpr int MAX_REPEAT_COUNT = 65536;
inline constexpr int MAX_NAME_LENGTH = 32;

// Shape of the hardware.
inline constexpr int MAX_INSTRUMENT_MODULES = 5;
inline constexpr int NUM_PODS = 4;    ///< pods A to D of a module
inline constexpr int POD_NAMES = 16;  ///< channel names kept for each pod
inline constexpr int NUM_VARIABLE_CHANNELS = 4;
inline constexpr int EVENT_INPUTS = 9;                ///< signal input, then E7 to E0
inline constexpr long DEFAULT_MEMORY_DEPTH = 262140;  ///< vectors, FULL mode, no option
inline constexpr long OPTION_MEMORY_DEPTH = 1048572;  ///< vectors, FULL mode, memory option

/// Positions at or above this one are refused by lists that have no limit of their own.
inline constexpr int MAX_LIST_POSITIONS = 65536;

}  // namespace quillpg
