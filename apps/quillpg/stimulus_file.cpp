#include "stimulus_file.h"

#include "base/text.h"
#include "input_text.h"
#include "quillpg/limits.h"

#include <string_view>

namespace quillpg::tool {
namespace {

/// What is wrong with the line, or null with `result` filled.
const char* ParseLine(std::string_view line, STIMULUS_LINE& result) {
  const std::size_t tab = line.find('\t');
  if (tab == std::string_view::npos) return "no tab between vector and levels";
  if (!ParseNumber(line.substr(0, tab), result.vector) || result.vector < 0) {
    return "the vector is not a number from 0 on";
  }
  result.levels = line.substr(tab + 1);
  if (result.levels.size() != EVENT_INPUTS ||
      result.levels.find_first_not_of("01") != std::string::npos) {
    return "the levels are not nine characters 0 or 1 (signal, E7 to E0)";
  }
  return nullptr;
}

}  // namespace

bool ReadStimulusFile(const std::string& path, std::vector<STIMULUS_LINE>& lines,
                      std::string& error) {
  std::string text;
  if (!ReadInputText(path, text, error)) return false;

  std::string_view rest = text;
  for (int number = 1; !rest.empty(); ++number) {
    const std::size_t newline = rest.find('\n');
    std::string_view line = rest.substr(0, newline);
    rest.remove_prefix(newline == std::string_view::npos ? rest.size() : newline + 1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (Trim(line).empty() || line.front() == '#') continue;

    STIMULUS_LINE parsed{};
    const char* fault = ParseLine(line, parsed);
    if (!fault && !lines.empty() && parsed.vector <= lines.back().vector) {
      fault = "the vectors do not rise";
    }
    if (fault) {
      error = path + ":" + std::to_string(number) + ": " + fault;
      return false;
    }
    lines.push_back(std::move(parsed));
  }
  return true;
}

}  // namespace quillpg::tool
