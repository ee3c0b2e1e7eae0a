#include "program/group_manager.h"

#include "instrument/instrument.h"
#include "program/block_manager.h"
#include "support/instrument_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpg {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// An instrument of one module with the groups Data and Bus.
class GroupManager : public testing::Test, public CInstrumentFixture {
 protected:
  GroupManager() {
    (void)Groups().DeleteAll();
    (void)Groups().AddGroup("Data");
    (void)Groups().AddGroup("Bus");
  }
  std::vector<std::string> Names() {
    std::vector<std::string> names;
    EXPECT_EQ(Groups().GetGroupNames(names), S_OK);
    return names;
  }
  GROUP& Group(int index) {
    GROUP* group = nullptr;
    EXPECT_EQ(Groups().GetGroup(index, &group), S_OK);
    return *group;
  }
  int Find(const char* name) {
    int index = -7;
    const Status status = Groups().FindGroup(name, index);
    EXPECT_EQ(status, index < 0 ? E_FAIL : S_OK);
    return index;
  }
  // Names of the group states of the first block.
  std::vector<std::string> StateNames() {
    BLOCK* block = nullptr;
    (void)Blocks().GetBlock(0, &block);
    std::vector<std::string> names;
    GROUP_STATE* state = nullptr;
    for (int i = 0; block->GetGroupState(i, &state); ++i) names.push_back(state->GetGroupName());
    return names;
  }
};

TEST_F(GroupManager, AddingAndInsertingDifferInWhatTheyRefuse) {
  struct Row {
    const char* name;
    Status added;
    Status inserted;
  };
  const Row rows[] = {{" \tNew ", S_OK, S_OK},
                      {" DATA ", PG_E_NAME_USED, E_FAIL},
                      {"  ", E_FAIL, S_OK},
                      {"Data2", S_OK, S_OK}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(Groups().AddGroup(row.name), row.added);
    if (!Failed(row.added)) (void)Groups().DeleteGroup(2);
    EXPECT_EQ(Groups().InsertGroup(0, row.name), row.inserted);
    if (!Failed(row.inserted)) (void)Groups().DeleteGroup(0);
    EXPECT_THAT(Names(), ElementsAre("Data", "Bus"));
  }
}

// Look-ups go through an index; whatever changes a name must reach it.
TEST_F(GroupManager, FindsByTheNamesThatTheGroupsHaveNow) {
  EXPECT_EQ(Find("Bus"), 1);
  (void)Group(0).SetGroupName("Bus");  // behind the manager's back, and now the first of the name
  EXPECT_EQ(Find("Bus"), 0);
  EXPECT_EQ(Find("Data"), -1);
  (void)Group(0).Initialize();
  EXPECT_EQ(Find("bus"), 1);
  EXPECT_EQ(Find(" "), 0);
  (void)Groups().AddGroup("Third");
  EXPECT_EQ(Find("THIRD"), 2);
  (void)Groups().DeleteGroup(0);
  EXPECT_EQ(Find("THIRD"), 1);
}

TEST_F(GroupManager, RenamesTheGroupAndItsStates) {
  EXPECT_EQ(Groups().SetGroupName(0, " "), E_FAIL);
  EXPECT_EQ(Groups().SetGroupName(0, "data"), PG_E_NAME_USED);  // a mere change of case
  EXPECT_EQ(Groups().SetGroupName(9, "bus"), PG_E_NAME_USED);   // looked at before the index
  EXPECT_EQ(Groups().SetGroupName(9, "Free"), E_FAIL);
  EXPECT_EQ(Groups().SetGroupName(0, " Address "), S_OK);
  EXPECT_THAT(Handler().Take(), ElementsAre("OnGroupRenamed(Data,Address)"));
  EXPECT_THAT(Names(), ElementsAre("Address", "Bus"));
  EXPECT_THAT(StateNames(), ElementsAre("Address", "Bus"));
}

TEST_F(GroupManager, DeletesAfterTelling) {
  Handler().onAny = [this] { EXPECT_THAT(Names(), ElementsAre("Data", "Bus")); };
  EXPECT_EQ(Groups().DeleteGroup(0), S_OK);
  EXPECT_THAT(StateNames(), ElementsAre("Bus"));
  EXPECT_EQ(Groups().DeleteGroup(1), E_FAIL);
  Handler().onAny = [this] { (void)Groups().DeleteAll(); };  // the front end is faster
  EXPECT_EQ(Groups().DeleteGroup(0), S_OK);
  EXPECT_THAT(Names(), IsEmpty());
}

TEST_F(GroupManager, CopyingEmptiesTheTarget) {
  CGroupManager other;
  ASSERT_EQ(other.AddGroup("Mine"), S_OK);
  other = Groups();
  int count = -1;
  (void)other.GetNoOfGroups(count);
  EXPECT_EQ(count, 0);
  EXPECT_THAT(Names(), ElementsAre("Data", "Bus"));
}

TEST_F(GroupManager, CreatesTheGroupsOfAnImport) {
  struct Row {
    std::vector<std::string> names;
    std::vector<std::string> sizes;
    std::vector<int> counts;  // channels of the groups that are there afterwards
  };
  const Row rows[] = {{{"a", "b", "c"}, {"2", "3"}, {2, 3, 0}},
                      {{"a", "b", "c"}, {"0", "-4", " x"}, {0, 0, 0}},  // no sizes
                      {{"a", "b", "c"}, {"62", "3", "1"}, {62, 2}},     // 64 channels are there
                      {{"a", "b", "c"}, {"64", "1", "1"}, {64, 0}},
                      {{"a", "b"}, {"99999999999999999999", "1"}, {64}},
                      {{"a", "A ", "b"}, {"1", "1", "1"}, {1, 0}}};  // by position: meant
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::PrintToString(row.sizes));
    EXPECT_EQ(Groups().CreateGroups(row.names, row.sizes), S_OK);
    std::vector<int> counts;
    for (std::size_t i = 0; i < Names().size(); ++i) {
      counts.push_back(Group(static_cast<int>(i)).GetNoOfChannels());
    }
    EXPECT_EQ(counts, row.counts);
  }
}

TEST_F(GroupManager, AsksBeforeItReplacesGroups) {
  (void)Instrument().SetChannelName(0, "clock");
  (void)Handler().Take();
  Host().answers = {ANSWER_NO, ANSWER_YES};
  EXPECT_EQ(Groups().CreateGroups({"a"}, {"2"}), PG_E_ABORTED);
  EXPECT_THAT(Names(), ElementsAre("Data", "Bus"));
  EXPECT_EQ(Groups().CreateGroups({"a", "b"}, {"2", "1"}), S_OK);
  EXPECT_THAT(Handler().Take(), ElementsAre("OnGroupDeleted(Data)", "OnGroupDeleted(Bus)"));
  EXPECT_EQ(Group(0).GetChannelNames(), "A0(1),clock");
  EXPECT_EQ(Group(0).Channels(), (std::vector{1, 0}));
  EXPECT_EQ(Group(1).Channels(), std::vector{2});
  EXPECT_EQ(Groups().CreateGroups({"A"}, {"2"}), S_OK);  // they match now: no question
  EXPECT_EQ(Host().boxes.size(), 2u);
}

}  // namespace
}  // namespace quillpg
