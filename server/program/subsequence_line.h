#pragma once

#include "program/program_row.h"
#include "quillpg/api.h"
#include "quillpg/result_codes.h"

#include <cstdint>
#include <iosfwd>
#include <string>

namespace quillpg {

class CByteWriter;
class CSetupFileReader;

/// One line of a subsequence: a block and how often it is played. Both setters mark it modified.
struct QUILLPG_API SUBSEQUENCE_LINE : CProgramRow {
  SUBSEQUENCE_LINE() : CProgramRow(true) {}

  /// Restores the defaults: repeat count -1 (not given yet, deliberate), no output, modified.
  Status Initialize();

  int GetRepeatCount() const { return m_repeatCount; }
  const std::string& GetOutput() const { return m_output; }  ///< name of the block played
  Status SetRepeatCount(int count);
  Status SetOutput(const std::string& blockName);

  /// Bytes in a setup file.
  std::uint64_t GetSize() const;
  Status Read(std::istream& stream);
  Status Read(CSetupFileReader& reader);
  Status Write(std::ostream& stream) const;
  Status Write(CByteWriter& writer) const;

 private:
  int m_repeatCount = -1;
  std::string m_output;
};

}  // namespace quillpg
