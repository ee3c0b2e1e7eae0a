#pragma once

#include "compiler/compile_error_info.h"
#include "quillpg/api.h"

#include <array>
#include <string>

namespace quillpg {

/// Words of the compiler's findings, loaded once from the message catalogue, and the way they make
/// an output line.
class QUILLPG_API CFindingText {
 public:
  void Load();

  /// The output line of a finding, for example
  /// "Block List [Line:3][Column:1] : error : blk1 already defined".
  std::string Format(const CompileErrorInfo& info) const;

 private:
  std::array<std::string, 3> m_types;
  std::array<std::string, 15> m_errors;
  std::array<std::string, 6> m_sections;
  std::array<std::string, 6> m_unnamedKinds;
  std::string m_emptyName;
  std::string m_is;
  std::string m_name;
};

}  // namespace quillpg
