#include "program/listing_state_manager.h"

#include <utility>

namespace quillpg {

CListingStateManager::CListingStateManager(const CListingStateManager& other) {
  (void)Copy(other);  // a constructor has no status; out of memory leaves fewer states
}

CListingStateManager& CListingStateManager::operator=(const CListingStateManager& other) {
  if (this != &other) (void)Copy(other);  // as above
  return *this;
}

Status CListingStateManager::Initialize() { return S_OK; }

Status CListingStateManager::GetNoOfStates(int& count) const {
  count = m_states.Count();
  return S_OK;
}

Status CListingStateManager::GetListingState(int index, GROUP_STATE** state) const {
  if (!state) return E_FAIL;
  *state = m_states.At(index);
  return *state ? S_OK : E_FAIL;
}

Status CListingStateManager::FindListingState(const std::string& name, int& index) const {
  index = m_states.Find(name);
  return index < 0 ? E_FAIL : S_OK;
}

Status CListingStateManager::AddListingState(std::unique_ptr<GROUP_STATE>&& state) {
  return InsertListingState(m_states.Count(), std::move(state));
}

Status CListingStateManager::InsertListingState(int position,
                                                std::unique_ptr<GROUP_STATE>&& state) {
  if (!state || m_states.Find(state->GetGroupName()) >= 0) return E_FAIL;
  return m_states.Insert(position, std::move(state));
}

Status CListingStateManager::SetListingState(int index, const GROUP_STATE* state) {
  GROUP_STATE* target = m_states.At(index);
  if (!state || !target || m_states.IsNamedElsewhere(state->GetGroupName(), index)) return E_FAIL;
  return GuardAllocation([&] {
    *target = *state;
    return S_OK;
  });
}

Status CListingStateManager::DeleteListingState(int first, int count) {
  return m_states.Remove(first, count);
}

Status CListingStateManager::DeleteAll() {
  m_states.Clear();
  return S_OK;
}

Status CListingStateManager::Copy(const CListingStateManager& other) {
  if (this == &other) return S_OK;
  return GuardAllocation([&] {
    m_states.Clear();
    other.m_states.ForEach([this](const GROUP_STATE& state) {
      (void)AddListingState(std::make_unique<GROUP_STATE>(state));  // a duplicate stays out
    });
    return S_OK;
  });
}

}  // namespace quillpg
