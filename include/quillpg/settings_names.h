#pragma once

// Names under which a front end keeps its user settings. The engine neither reads nor writes any of
// them; they are published so that every front end uses the same ones. The texts are fixed, small
// letters included ("Color Scheme(Program window)").

namespace quillpg::Settings {

inline constexpr char KEY[] = "Software\\Quillmark\\Quillmark Pattern Generator";
inline constexpr char SECTION_COLORS[] = "Color Schemes";
inline constexpr char SECTION_DEFAULTS[] = "Defaults";

inline constexpr char RADIX[] = "Radix";
inline constexpr char DEFAULT_CHANNEL_VALUE[] = "Default Channel Value";
inline constexpr char SHOW_STATUS_MONITOR[] = "Show Status Monitor on Run";
inline constexpr char FONT_SIZE_LISTING[] = "Font Size(Listing Window)";
inline constexpr char FONT_SIZE_PROGRAM[] = "Font Size(Program Window)";
inline constexpr char FONT_SIZE_WAVEFORM[] = "Font Size(WaveForm Window)";
inline constexpr char BACKGROUND_COLOR_LISTING[] = "Background Color(Listing Window)";
inline constexpr char BACKGROUND_COLOR_PROGRAM[] = "Background Color(Program Window)";
inline constexpr char TEXT_COLOR_LISTING[] = "Text Color(Listing Window)";
inline constexpr char TEXT_COLOR_PROGRAM[] = "Text Color(Program Window)";
inline constexpr char REFERENCE_ONE_COLOR_LISTING[] = "Reference One Color(Listing Window)";
inline constexpr char REFERENCE_TWO_COLOR_LISTING[] = "Reference Two Color(Listing Window)";
inline constexpr char COLOR_SCHEME_SETUP[] = "Color Scheme(Setup Window)";
inline constexpr char COLOR_SCHEME_LISTING[] = "Color Scheme(Listing Window)";
inline constexpr char COLOR_SCHEME_PROGRAM[] = "Color Scheme(Program window)";
inline constexpr char COLOR_SCHEME_WAVEFORM[] = "Color Scheme(WaveForm Window)";

inline constexpr char PATH_SEPARATOR[] = "\\";
inline constexpr char LOCK_FAILURE[] =
    "Instrument lock failure: exit the application holding the lock or cycle power.";
inline constexpr char UNLOCK_FAILURE[] = "Instrument unlock failure: cycle power.";

}  // namespace quillpg::Settings
