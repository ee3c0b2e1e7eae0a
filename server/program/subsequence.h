#pragma once

#include "program/program_rows.h"
#include "program/subsequence_line.h"

#include <memory>
#include <string>
#include <string_view>

namespace quillpg {

/// A named list of at most MAX_SUBSEQUENCE_LINES lines that a sequence line plays as if it were a
/// block.
struct QUILLPG_API SUBSEQUENCE : CProgramRows<SUBSEQUENCE_LINE> {
  SUBSEQUENCE() : CProgramRows(MAX_SUBSEQUENCE_LINES) {}

  /// Assign without its answer.
  SUBSEQUENCE& operator=(const SUBSEQUENCE& other);
  /// Takes over the name and duplicates the lines, which keep their flags; this subsequence becomes
  /// modified. E_FAIL, with nothing changed, when memory runs out.
  Status Assign(const SUBSEQUENCE& source) { return CopyFrom(source); }

  const std::string& GetSubSequenceName() const { return m_name; }
  /// Stores the name as given and marks the subsequence modified: it is compiled anew.
  Status SetSubSequenceName(const std::string& name) {
    const Status status = SetName(name);
    if (!Failed(status)) (void)SetModified(1);
    return status;
  }

  int GetNoOfSubSequenceLines() const { return m_rows.Count(); }
  /// The line stays the subsequence's; null and E_FAIL for a bad index.
  Status GetSubSequenceLine(int index, SUBSEQUENCE_LINE** line) const;
  /// Both take the line over on success only; E_FAIL for null, a full list or a bad position.
  Status AddSubSequenceLine(std::unique_ptr<SUBSEQUENCE_LINE>&& line);
  Status InsertSubSequenceLine(int position, std::unique_ptr<SUBSEQUENCE_LINE>&& line);
  /// Copies the three fields; E_FAIL for null or a bad index.
  Status SetSubSequenceLine(int index, const SUBSEQUENCE_LINE* line);
  /// E_FAIL for a range that does not lie in the list.
  Status DeleteSubSequenceLine(int first, int count);

  Status Read(std::istream& stream);
  Status Read(CSetupFileReader& reader);
  Status Write(std::ostream& stream) const;
  Status Write(CByteWriter& writer) const;
};

inline std::string_view NameOf(const SUBSEQUENCE& subsequence) {
  return subsequence.GetSubSequenceName();
}

}  // namespace quillpg
