#pragma once

#include "program/program_list.h"
#include "program/subsequence.h"

#include <cstddef>

namespace quillpg {

class CByteWriter;
class CSetupFileReader;

/// The subsequences of an instrument, at most MAX_SUBSEQUENCES slots. Names need neither be given
/// nor unique. The handler is stored and never told anything.
class QUILLPG_API CSubSequenceManager : public CProgramList<SUBSEQUENCE> {
 public:
  CSubSequenceManager();
  ~CSubSequenceManager() override;

  Status GetNoOfSubSequences(int& count) const;
  /// Appends an empty subsequence of that name, trimmed; E_FAIL for a full list.
  Status AddSubSequence(const std::string& name);
  Status InsertSubSequence(int position, const std::string& name);
  /// Takes the subsequence over on success only; E_FAIL for null, a full list or a bad position.
  Status InsertSubSequence(int position, std::unique_ptr<SUBSEQUENCE>&& subsequence);
  Status InsertSubSequence(int position, std::nullptr_t) {
    return InsertSubSequence(position, std::unique_ptr<SUBSEQUENCE>());
  }
  Status DeleteSubSequence(int first, int count);
  Status DeleteAll();

  /// First subsequence of that name, which is trimmed; -1 and E_FAIL without one.
  Status FindSubSequence(const std::string& name, int& index) const;
  /// Subsequences of that name, which is trimmed (deliberate: other managers' counts do not trim);
  /// 0 and E_FAIL for an empty one.
  Status CountSubSequences(const std::string& name, int& count) const;
  /// The subsequence stays the manager's; a bad index gives null with S_OK.
  Status GetSubSequence(int index, SUBSEQUENCE** subsequence) const;
  /// Assigns. E_FAIL for null; a bad index is S_OK and changes nothing.
  Status SetSubSequence(int index, const SUBSEQUENCE* subsequence);
  Status MoveUp(int index);
  Status MoveDown(int index);

  Status Read(std::istream& stream);
  Status Read(CSetupFileReader& reader);
  Status Write(std::ostream& stream) const;
  Status Write(CByteWriter& writer) const;
};

}  // namespace quillpg
