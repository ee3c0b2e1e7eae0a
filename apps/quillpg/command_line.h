#pragma once

#include "quillpg/engine_types.h"

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

namespace quillpg::tool {

/// What can be said of the file that every command reads.
struct INPUT_OPTIONS {
  std::string file;
  std::string period;  ///< "62.5ns", "1us" or seconds; empty: found in the capture
  bool quiet = false;  ///< no progress bar, no summary
};

struct RUN_OPTIONS {
  INPUT_OPTIONS input;
  std::string vcd;
  std::string trace;
  std::string stimulus;
  std::optional<std::int64_t> maxVectors;
  std::optional<int> step;  ///< play in step mode, so many vectors a step
  bool bits = false;
  bool annotate = false;
};

struct CHECK_OPTIONS {
  INPUT_OPTIONS input;
};

struct MODULES_OPTIONS {};

struct INFO_OPTIONS {
  std::string file;
};

struct DUMP_OPTIONS {
  std::string file;
};

struct CONVERT_OPTIONS {
  INPUT_OPTIONS input;
  std::string out;
  std::string instrument;  ///< not empty: a module file of this instrument
  bool noProgram = false;  ///< settings and groups alone
};

struct MERGE_OPTIONS {
  std::string file;
  int first = 0;  ///< modules of the system, from 0
  int last = 0;
  std::string out;
};

struct TEST_DATA_OPTIONS {
  TestDataType kind = TestDataType::WalkingOnes;
  std::string out;
  int modules = 1;
  bool half = false;
};

struct SIM_CONFIG_OPTIONS {
  std::string file;
  std::string out;
};

using COMMAND =
    std::variant<RUN_OPTIONS, CHECK_OPTIONS, MODULES_OPTIONS, INFO_OPTIONS, DUMP_OPTIONS,
                 CONVERT_OPTIONS, MERGE_OPTIONS, TEST_DATA_OPTIONS, SIM_CONFIG_OPTIONS>;

/// The command that the user typed. Without one (help, version, bad usage: said already) `status`
/// is the tool's exit status.
std::optional<COMMAND> ParseCommandLine(int argc, const char* const* argv, int& status);

}  // namespace quillpg::tool
