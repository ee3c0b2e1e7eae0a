#pragma once

#include <string_view>

// Who the simulated mainframe and its modules say they are. Front ends and files keep these
// texts: never change one.

namespace quillpg {

inline constexpr std::string_view SIMULATED_MODEL_NAME = "QPG-64";
inline constexpr std::string_view SIMULATED_EXPANSION_NAME = "QXI-1";
inline constexpr std::string_view SIMULATED_SERIAL = "AA123456";
inline constexpr std::string_view SIMULATED_FIRMWARE = "0.17";
inline constexpr std::string_view SIMULATED_DIAGNOSTICS = "PASS";
inline constexpr std::string_view SIMULATED_OPTION = "OPT1S";
inline constexpr std::string_view SIMULATED_PODS = "TTL/CMOS,None,Variable,ECL";

inline constexpr int SIMULATED_MODULES = 5;  ///< as many as the widest instrument has
inline constexpr int SIMULATED_FIRST_SLOT = 3;
inline constexpr int SIMULATED_MODULE_SLOTS = 2;
inline constexpr int SIMULATED_FRAME_SLOTS = 13;
inline constexpr int SIMULATED_FIRST_CONTROLLER_SLOT = 0;
inline constexpr int SIMULATED_LAST_CONTROLLER_SLOT = 4;
inline constexpr int SIMULATED_MOST_MODULES = 256;

}  // namespace quillpg
