#include "program/group_manager.h"

#include "base/setup_file_reader.h"
#include "support/instrument_fixture.h"

#include <gmock/gmock.h>

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
  std::vector<std::string> Names() { return Ask(Groups(), &CGroupManager::GetGroupNames); }
  GROUP& Group(int index) { return *Find(Groups(), &CGroupManager::GetGroup, index); }
  int IndexOf(const char* name) {
    int index = -7;
    const Status status = Groups().FindGroup(name, index);
    EXPECT_EQ(status, index < 0 ? E_FAIL : S_OK);
    return index;
  }
  // Names of the group states of the first block.
  std::vector<std::string> StateNames() {
    std::vector<std::string> names;
    BlockAt(0).GetListingState().groupStates.ForEach(
        [&](const GROUP_STATE& state) { names.push_back(state.GetGroupName()); });
    return names;
  }
};

TEST_F(GroupManager, AddingAndInsertingDifferInWhatTheyRefuse) {
  const std::tuple<const char*, Status, Status> rows[] = {{" \tNew ", S_OK, S_OK},
                                                          {" DATA ", PG_E_NAME_USED, E_FAIL},
                                                          {"  ", E_FAIL, S_OK},
                                                          {"Data2", S_OK, S_OK}};
  for (const auto& [name, added, inserted] : rows) {
    SCOPED_TRACE(name);
    EXPECT_EQ(Groups().AddGroup(name), added);
    if (!Failed(added)) (void)Groups().DeleteGroup(2);
    EXPECT_EQ(Groups().InsertGroup(0, name), inserted);
    if (!Failed(inserted)) (void)Groups().DeleteGroup(0);
    EXPECT_THAT(Names(), ElementsAre("Data", "Bus"));
  }
}

// Look-ups go through an index; whatever changes a name must reach it.
TEST_F(GroupManager, FindsByTheNamesThatTheGroupsHaveNow) {
  EXPECT_EQ(IndexOf("Bus"), 1);
  (void)Group(0).SetGroupName("Bus");  // behind the manager's back, and now the first of the name
  EXPECT_EQ(IndexOf("Bus"), 0);
  EXPECT_EQ(IndexOf("Data"), -1);
  (void)Group(0).Initialize();
  EXPECT_EQ(IndexOf("bus"), 1);
  EXPECT_EQ(IndexOf(" "), 0);
  (void)Groups().AddGroup("Third");
  EXPECT_EQ(IndexOf("THIRD"), 2);
  (void)Groups().DeleteGroup(0);
  EXPECT_EQ(IndexOf("THIRD"), 1);
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
  GROUP_STATE* state = nullptr;
  ASSERT_TRUE(BlockAt(0).GetGroupState("Bus", &state));
  (void)state->SetRadix(Radix::Octal);
  Handler().onAny = [this, told = false]() mutable {  // the state goes with the group all the same
    if (std::exchange(told, true)) return;
    (void)Groups().AddGroup("More");
    (void)Groups().SetGroupName(1, "Last");
  };
  EXPECT_EQ(Groups().SetGroupName(1, "New"), S_OK);
  EXPECT_THAT(StateNames(), ElementsAre("Address", "Last", "More"));
  ASSERT_TRUE(BlockAt(0).GetGroupState("Last", &state));
  EXPECT_EQ(state->GetRadix(), Radix::Octal);
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
  EXPECT_EQ(Ask(other, &CGroupManager::GetNoOfGroups), 0);
  EXPECT_THAT(Names(), ElementsAre("Data", "Bus"));
}

// One long name for many channel numbers would fill the memory.
TEST_F(GroupManager, OldFilesMakeNoTextsWithoutEnd) {
  for (const int channels : {100, 20'000}) {
    CByteWriter writer;
    writer.Count("", 0, 1);
    writer.Field("", std::string("Old"));
    writer.Count("", 0, channels);
    for (int i = 0; i < channels; ++i) writer.Field("", 0);
    (void)Instrument().SetChannelName(0, std::string(1000, 'x'));
    CSetupFileReader reader(writer.Written(), {.hasNamesAndRows = false, .rebuildsNames = true});
    EXPECT_EQ(channels == 100 ? S_OK : PG_E_INSTRUMENT_RECORD, Groups().Read(reader));
  }
}

TEST_F(GroupManager, CreatesTheGroupsOfAnImport) {
  const struct {
    std::vector<std::string> names, sizes;
    std::vector<int> counts;  // channels of the groups that are there afterwards
  } rows[] = {{{"a", "b", "c"}, {"2", "3"}, {2, 3, 0}},
              {{"a", "b", "c"}, {"0", "-4", " x"}, {0, 0, 0}},  // no sizes
              {{"a", "b", "c"}, {"62", "3", "1"}, {62, 2}},     // 64 channels are there
              {{"a", "b", "c"}, {"64", "1", "1"}, {64, 0}},
              {{"a", "b"}, {"99999999999999999999", "1"}, {64}},
              {{"a", "A ", "b"}, {"1", "1", "1"}, {1, 0}}};  // by position: meant
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::PrintToString(row.sizes));
    EXPECT_EQ(Groups().CreateGroups(row.names, row.sizes), S_OK);
    std::vector<int> counts;
    for (std::size_t i = 0; i < Names().size(); ++i) {
      counts.push_back(Group(static_cast<int>(i)).GetNoOfChannels());
    }
    EXPECT_EQ(counts, row.counts);
  }
}

TEST_F(GroupManager, ComparesTheGroupsOfAnImportAndFindsThoseOfAChannel) {
  for (const int channel : {2, 1, 0}) (void)Instrument().AddChannelToGroup("Data", channel, -1);
  for (const int channel : {3, 2}) (void)Group(1).AddChannel(channel, -1);
  const struct {
    std::vector<std::string> names, sizes;
    Status status;
  } rows[] = {{{}, {}, S_OK},
              {{"Data", "Bus"}, {"3", "2"}, S_OK},
              {{"bus"}, {"2", "9"}, S_OK},  // in any order, sizes without a name do not count
              {{"Data", "Bus"}, {"3", "3"}, PG_E_GROUPING},
              {{"Data", "None"}, {"3", "0"}, PG_E_GROUPING},
              {{"Data", "Bus"}, {"3"}, PG_E_GROUPING}};
  for (const auto& row : rows) {
    EXPECT_EQ(Groups().CheckGrouping(row.names, row.sizes), row.status) << &row - rows;
  }
  const std::tuple<int, const char*, ChannelSelection> channels[] = {
      {0, " data ", ChannelSelection::InThisGroup}, {3, "Data", ChannelSelection::InOtherGroup},
      {2, "Bus", ChannelSelection::InOtherGroup},  // held by the earlier one, too
      {2, "Data", ChannelSelection::InThisGroup},   {0, "none", ChannelSelection::InOtherGroup},
      {4, "Data", ChannelSelection::InNoGroup},     {-1, "", ChannelSelection::InNoGroup}};
  for (const auto& [channel, name, expected] : channels) {
    auto selection = ChannelSelection::InOtherGroup;
    EXPECT_EQ(Groups().GetChannelSelectionStatus(channel, name, selection), S_OK);
    EXPECT_EQ(selection, expected) << channel << name;
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
