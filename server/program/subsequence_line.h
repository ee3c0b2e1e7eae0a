#pragma once

#include "base/modified_flag.h"
#include "base/revision.h"
#include "quillpg/api.h"
#include "quillpg/result_codes.h"

#include <cstdint>
#include <iosfwd>
#include <string>

namespace quillpg {

class CByteWriter;
class CSetupFileReader;

/// One line of a subsequence: a block and how often it is played. Both setters mark it modified.
struct QUILLPG_API SUBSEQUENCE_LINE {
  SUBSEQUENCE_LINE() = default;

  /// Restores the defaults: repeat count -1 (not given yet, deliberate), no output, modified.
  Status Initialize();

  int GetRepeatCount() const { return m_repeatCount; }
  const std::string& GetOutput() const { return m_output; }  ///< name of the block played
  Status SetRepeatCount(int count);
  Status SetOutput(const std::string& blockName);

  bool IsModified() const { return m_modified.IsSet(); }
  Status SetModified(int flag);
  bool IsValid() const { return true; }

  /// `list` counts the changes of the line from now on; null takes it away.
  void ReportTo(CRevision* list) { m_revision.ReportTo(list); }

  /// Bytes in a setup file.
  std::uint64_t GetSize() const;
  Status Read(std::istream& stream);
  Status Read(CSetupFileReader& reader);
  Status Write(std::ostream& stream) const;
  Status Write(CByteWriter& writer) const;

 private:
  CModifiedFlag m_modified{true};
  int m_repeatCount = -1;
  std::string m_output;
  CRevision m_revision;
};

}  // namespace quillpg
