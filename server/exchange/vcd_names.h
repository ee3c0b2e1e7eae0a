#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>

namespace quillpg {

/// Makes names for a dump: without blanks, never empty, no two alike.
class CVcdNames {
 public:
  /// `wanted`, changed as little as possible, and remembered.
  std::string Claim(std::string_view wanted);

 private:
  std::set<std::string> m_taken;
  std::map<std::string, int> m_lastNumber;  // behind the name, by what was wanted
};

/// The name with every blank and unprintable byte replaced by "_"; a name that a reader would take
/// for a keyword ("$end") or for nothing gets a "_" in front.
std::string MakeVcdName(std::string_view wanted);

}  // namespace quillpg
