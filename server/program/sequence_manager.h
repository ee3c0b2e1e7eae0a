#pragma once

#include "program/program_list.h"
#include "program/sequence_line.h"

namespace quillpg {

class CByteWriter;
class CSetupFileReader;

/// The lines of an instrument's main program, at most MAX_SEQUENCE_LINES slots. The handler is
/// stored and never told anything.
class QUILLPG_API CSequenceManager : public CProgramList<SEQUENCE_LINE> {
 public:
  CSequenceManager();
  ~CSequenceManager() override;

  Status GetNoOfSequenceLines(int& count) const;
  /// One line "Line" that plays "Block" with repeat count 0 (deliberate).
  Status Default();

  /// Appends a default line with that label as it stands. Leaves the manager's flag alone: the new
  /// line's own flag carries the change (deliberate). E_FAIL for a full list.
  Status AddSequenceLine(const std::string& label);
  Status InsertSequenceLine(int position, const std::string& label);
  /// Takes the line over on success only; a position beyond the end leaves empty slots. E_FAIL for
  /// null, a full list or a bad position.
  Status InsertLine(int position, std::unique_ptr<SEQUENCE_LINE>&& line);
  Status DeleteSequenceLine(int first, int count);
  /// Leaves the manager's flag as it is (deliberate).
  Status DeleteAll();

  /// First line of that label (untrimmed); -1 and E_FAIL without one.
  Status FindSequenceLine(const std::string& label, int& index) const;
  /// Lines of that label (untrimmed); 0 and E_FAIL for an empty one.
  Status CountSequenceLines(const std::string& label, int& count) const;
  /// The line stays the manager's; a bad index gives null with S_OK.
  Status GetSequenceLine(int index, SEQUENCE_LINE** line) const;
  /// Copies every field, the modified flag included, and leaves the manager's flag alone
  /// (deliberate). E_FAIL for null or a bad index.
  Status SetSequenceLine(int index, const SEQUENCE_LINE* line);
  Status MoveUp(int index);
  Status MoveDown(int index);

  Status Read(std::istream& stream);
  Status Read(CSetupFileReader& reader);
  Status Write(std::ostream& stream) const;
  Status Write(CByteWriter& writer) const;

 private:
  Status Insert(int position, const std::string& label);
};

}  // namespace quillpg
