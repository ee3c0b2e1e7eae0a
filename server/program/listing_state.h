#pragma once

#include "base/ordered_list.h"
#include "program/group_state.h"

namespace quillpg {

class CByteWriter;
class CSetupFileReader;

/// How a block's listing is shown: two reference positions (vectors), two values that only the
/// front end understands, and one state for each group, in the order in which they were added.
struct QUILLPG_API LISTING_STATE {
  LISTING_STATE() = default;
  LISTING_STATE(const LISTING_STATE&) = delete;
  LISTING_STATE& operator=(const LISTING_STATE&) = delete;
  virtual ~LISTING_STATE() = default;

  /// Restores the four numbers; the group states stay.
  Status Initialize();
  /// Destroys every group state.
  Status DeleteAll();
  /// Takes over the numbers and duplicates the group states; E_FAIL, with nothing changed, when
  /// memory runs out.
  Status Assign(const LISTING_STATE& source);

  /// Bytes in a setup file.
  std::uint64_t GetSize() const;
  Status Read(std::istream& stream);
  Status Read(CSetupFileReader& reader);
  Status Write(std::ostream& stream) const;
  Status Write(CByteWriter& writer) const;

  int firstReference = -1;
  int secondReference = -1;
  int displayValue4 = 1;
  int displayValue5 = 1;
  COrderedList<GROUP_STATE> groupStates;
};

}  // namespace quillpg
