#include "program/listing_state_manager.h"

#include <gtest/gtest.h>

namespace quillpg {
namespace {

std::unique_ptr<GROUP_STATE> State(const std::string& name) {
  auto state = std::make_unique<GROUP_STATE>();
  (void)state->SetGroupName(name);
  return state;
}

std::string Names(const CListingStateManager& manager) {
  std::string names;
  GROUP_STATE* state = nullptr;
  for (int i = 0; manager.GetListingState(i, &state) == S_OK; ++i) {
    names += state->GetGroupName() + " ";
  }
  return names;
}

class ListingStateManager : public testing::Test {
 protected:
  ListingStateManager() {
    for (const char* name : {"Data", "Bus", "Clock"}) (void)m_manager.AddListingState(State(name));
  }
  CListingStateManager m_manager;
};

TEST_F(ListingStateManager, RefusesASecondStateOfAGroup) {
  auto state = State("data");
  EXPECT_EQ(m_manager.AddListingState(std::move(state)), E_FAIL);
  EXPECT_EQ(m_manager.InsertListingState(0, std::move(state)), E_FAIL);
  EXPECT_EQ(m_manager.SetListingState(1, state.get()), E_FAIL);  // NOLINT(bugprone-use-after-move)
  (void)state->SetDisplayValue1(9);
  EXPECT_EQ(m_manager.SetListingState(0, state.get()), S_OK);  // over its own state
  EXPECT_EQ(m_manager.InsertListingState(1, State("New")), S_OK);
  EXPECT_EQ(m_manager.AddListingState(nullptr), E_FAIL);
  EXPECT_EQ(m_manager.SetListingState(9, state.get()), E_FAIL);
  EXPECT_EQ(m_manager.DeleteListingState(3, 2), E_FAIL);
  EXPECT_EQ(Names(m_manager), "data New Bus Clock ");
}

TEST_F(ListingStateManager, CopiesStatesAsObjectsOfTheirOwn) {
  CListingStateManager copy;
  (void)copy.AddListingState(State("old"));
  EXPECT_EQ(copy.Copy(m_manager), S_OK);
  EXPECT_EQ(copy.Copy(copy), S_OK);
  const CListingStateManager constructed(m_manager);
  GROUP_STATE* state = nullptr;
  (void)m_manager.GetListingState(0, &state);
  (void)state->SetGroupName("changed");
  EXPECT_EQ(Names(copy), "Data Bus Clock ");
  EXPECT_EQ(Names(constructed), "Data Bus Clock ");
  int index = 0;
  EXPECT_EQ(m_manager.FindListingState("BUS", index), S_OK);
  EXPECT_EQ(index, 1);
  EXPECT_EQ(m_manager.FindListingState("Bus ", index), E_FAIL);
  EXPECT_EQ(index, -1);
}

}  // namespace
}  // namespace quillpg
