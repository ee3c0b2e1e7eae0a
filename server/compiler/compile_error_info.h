#pragma once

#include "quillpg/api.h"
#include "quillpg/engine_types.h"

#include <string>

namespace quillpg {

/// One finding of the compiler: what is wrong and where the front end finds it.
struct QUILLPG_API CompileErrorInfo {
  /// From 1, in the list that was checked. For sequence lines the index plus 2 (deliberate: the
  /// front end's sequence grid has one more heading row); the printed line is the index plus 1.
  int line = -1;
  /// Column of the front end's grid that holds the faulty field.
  int column = -1;
  /// Position in the instrument list.
  int instrumentIndex = -1;
  /// Subsequence or event whose definition is at fault; -1 for a finding of the list itself.
  int itemIndex = -1;
  std::string instrumentName;
  /// The faulty name or value as it stands in the program; may be empty.
  std::string text;
  Section section = Section::BlockList;
  ErrorType errorType = ErrorType::None;
  CompileError error = CompileError::IllegalValue;
};

}  // namespace quillpg
