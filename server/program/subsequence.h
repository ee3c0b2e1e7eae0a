#pragma once

#include "base/ordered_list.h"
#include "program/subsequence_line.h"

#include <memory>
#include <string_view>

namespace quillpg {

class CByteWriter;
class CSetupFileReader;

/// A named list of at most MAX_SUBSEQUENCE_LINES lines that a sequence line plays as if it were a
/// block. Every change of the list marks it modified.
struct QUILLPG_API SUBSEQUENCE {
  SUBSEQUENCE();
  SUBSEQUENCE(const SUBSEQUENCE&) = delete;
  ~SUBSEQUENCE();

  /// Assign without its answer.
  SUBSEQUENCE& operator=(const SUBSEQUENCE& other);
  /// Takes over the name and duplicates the lines, which keep their flags; this subsequence becomes
  /// modified. E_FAIL, with nothing changed, when memory runs out.
  Status Assign(const SUBSEQUENCE& source);

  const std::string& GetSubSequenceName() const { return m_name; }
  /// Stores the name as given.
  Status SetSubSequenceName(const std::string& name);

  int GetNoOfSubSequenceLines() const { return m_lines.Count(); }
  /// The line stays the subsequence's; null and E_FAIL for a bad index.
  Status GetSubSequenceLine(int index, SUBSEQUENCE_LINE** line) const;
  /// Both take the line over on success only; E_FAIL for null, a full list or a bad position.
  Status AddSubSequenceLine(std::unique_ptr<SUBSEQUENCE_LINE>&& line);
  Status InsertSubSequenceLine(int position, std::unique_ptr<SUBSEQUENCE_LINE>&& line);
  /// Copies the three fields; E_FAIL for null or a bad index.
  Status SetSubSequenceLine(int index, const SUBSEQUENCE_LINE* line);
  /// E_FAIL for a range that does not lie in the list.
  Status DeleteSubSequenceLine(int first, int count);
  Status DeleteAll();
  /// Exchange with the neighbour; E_FAIL where there is none.
  Status MoveUp(int index);
  Status MoveDown(int index);

  /// True when its own flag or the flag of a line is set.
  bool IsModified() const;
  /// 0 also clears the flag of every line.
  Status SetModified(int flag);
  bool IsValid() const { return true; }

  /// `list` counts the changes of name and lines from now on; null takes it away.
  void ReportTo(CRevision* list) { m_revision.ReportTo(list); }

  /// Bytes in a setup file.
  std::uint64_t GetSize() const;
  Status Read(std::istream& stream);
  Status Read(CSetupFileReader& reader);
  Status Write(std::ostream& stream) const;
  Status Write(CByteWriter& writer) const;

 private:
  Status Changed(Status status);

  CModifiedFlag m_modified{true};
  std::string m_name;
  CRevision m_revision;
  COrderedList<SUBSEQUENCE_LINE> m_lines;
};

inline std::string_view NameOf(const SUBSEQUENCE& subsequence) {
  return subsequence.GetSubSequenceName();
}

}  // namespace quillpg
