#pragma once

#include "base/ordered_list.h"
#include "program/group_state.h"

#include <memory>

namespace quillpg {

/// A free-standing list of group states for the front end; group names are unique without regard to
/// case.
class QUILLPG_API CListingStateManager {
 public:
  CListingStateManager() = default;
  CListingStateManager(const CListingStateManager& other);
  CListingStateManager& operator=(const CListingStateManager& other);
  virtual ~CListingStateManager() = default;

  /// Nothing to do; S_OK.
  Status Initialize();
  Status GetNoOfStates(int& count) const;
  /// The state stays the manager's; null and E_FAIL for a bad index.
  Status GetListingState(int index, GROUP_STATE** state) const;
  /// First state of that group name (untrimmed); -1 and E_FAIL without one.
  Status FindListingState(const std::string& name, int& index) const;

  /// Both take the state over on success only; E_FAIL for null, a group name that is present
  /// already or a position outside 0 to 65535.
  Status AddListingState(std::unique_ptr<GROUP_STATE>&& state);
  Status InsertListingState(int position, std::unique_ptr<GROUP_STATE>&& state);
  /// Copies the five fields; E_FAIL when another state has the group name.
  Status SetListingState(int index, const GROUP_STATE* state);
  Status DeleteListingState(int first, int count);
  Status DeleteAll();

  /// Replaces the content by duplicates of the other's states; copying itself does nothing.
  Status Copy(const CListingStateManager& other);

 private:
  COrderedList<GROUP_STATE> m_states;
};

}  // namespace quillpg
