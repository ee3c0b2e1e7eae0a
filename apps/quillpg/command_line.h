#pragma once

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

using COMMAND = std::variant<RUN_OPTIONS, CHECK_OPTIONS, MODULES_OPTIONS>;

/// The command that the user typed. Without one (help, version, bad usage: said already) `status`
/// is the tool's exit status.
std::optional<COMMAND> ParseCommandLine(int argc, const char* const* argv, int& status);

}  // namespace quillpg::tool
