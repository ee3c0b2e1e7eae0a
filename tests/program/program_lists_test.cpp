#include "program/listing_state_manager.h"
#include "support/instrument_fixture.h"

#include <gtest/gtest.h>

#include <typeinfo>

// What the lists of a program have in common, and where their rules differ.

namespace quillpg {
namespace {

using ADD = std::function<Status(const std::string& name)>;

// Looks up in a list that `add` fills; `trims` says whether blanks around the asked name count.
template <typename T>
using LOOK_UP = Status (T::*)(const std::string& name, int& value) const;
template <typename T>
void ExpectLookUps(const T& list, const ADD& add, LOOK_UP<T> find, LOOK_UP<T> count, bool trims) {
  SCOPED_TRACE(typeid(T).name());
  for (const char* name : {"a", "", "b", "B"}) EXPECT_EQ(add(name), S_OK);
  const std::tuple<const char*, int, int, Status> rows[] = {
      {"B", 2, 2, S_OK},
      {"\tb ", trims ? 2 : -1, trims ? 2 : 0, S_OK},
      {" ", -1, 0, trims ? E_FAIL : S_OK},
      {"", -1, 0, E_FAIL}};
  for (const auto& [name, found, total, counted] : rows) {
    SCOPED_TRACE(name);
    int value = -7;
    EXPECT_EQ((list.*find)(name, value), found < 0 ? E_FAIL : S_OK);
    EXPECT_EQ(value, found);
    EXPECT_EQ((list.*count)(name, value), counted);
    EXPECT_EQ(value, total);
  }
}

TEST(ProgramLists, AreAskedByTheirOwnRulesAndHoldTheirLimits) {
  CInstrumentFixture f;
  (void)f.Blocks().DeleteAll();
  (void)f.Sequence().DeleteAll();
  const ADD addBlock = [&](auto& name) { return f.Blocks().AddBlock(name, 40); };
  const ADD addLine = [&](auto& name) { return f.Sequence().AddSequenceLine(name); };
  const ADD addSub = [&](auto& name) { return f.SubSequences().AddSubSequence(name); };
  const ADD addEvent = [&](auto& name) { return f.Events().AddEvent(name); };
  using SEQUENCE = CSequenceManager;
  using SUBS = CSubSequenceManager;
  ExpectLookUps(f.Blocks(), addBlock, &CBlockManager::FindBlock, &CBlockManager::CountBlocks,
                false);
  ExpectLookUps(f.Sequence(), addLine, &SEQUENCE::FindSequenceLine, &SEQUENCE::CountSequenceLines,
                false);
  ExpectLookUps(f.SubSequences(), addSub, &SUBS::FindSubSequence, &SUBS::CountSubSequences, true);
  ExpectLookUps(f.Events(), addEvent, &CEventManager::FindEvent, &CEventManager::CountEvents, true);

  SUBSEQUENCE sub;
  EVENT event;
  const struct {
    int left;  // how many more there may be
    ADD add;
  } rows[] = {
      {4000 - 4, addBlock},
      {4000 - 4, addLine},
      {50 - 4, addSub},
      {8 - 4, addEvent},
      {256, [&](auto&) { return sub.AddSubSequenceLine(std::make_unique<SUBSEQUENCE_LINE>()); }},
      {256, [&](auto&) { return event.AddEventDefinition(std::make_unique<EVENT_DEFINITION>()); }}};
  for (const auto& row : rows) {
    SCOPED_TRACE(&row - rows);
    for (int i = 0; i < row.left; ++i) ASSERT_EQ(row.add("n"), S_OK);
    EXPECT_EQ(row.add("n"), E_FAIL);
  }
  EXPECT_EQ(f.Sequence().InsertSequenceLine(0, "n"), E_FAIL);
}

TEST(ProgramLists, ASubsequenceTakesDuplicatesAndSeesTheirChanges) {
  CSubSequenceManager subs;
  SUBSEQUENCE given;
  (void)given.AddSubSequenceLine(std::make_unique<SUBSEQUENCE_LINE>());
  (void)subs.AddSubSequence("s");
  EXPECT_EQ(subs.SetSubSequence(0, &given), S_OK);
  (void)subs.SetModified(0);
  const std::uint64_t before = subs.Revision();
  SUBSEQUENCE* held = Find(subs, &CSubSequenceManager::GetSubSequence, 0);
  (void)Find(*held, &SUBSEQUENCE::GetSubSequenceLine, 0)->SetOutput("changed");
  EXPECT_NE(subs.Revision(), before);  // counted down to the lines
  EXPECT_EQ(subs.IsModified(), 1);
  EXPECT_EQ(Find(given, &SUBSEQUENCE::GetSubSequenceLine, 0)->GetOutput(), "");
}

TEST(ProgramLists, TheListingHasOneStateForAGroup) {
  CListingStateManager states;
  auto state = std::make_unique<GROUP_STATE>();
  (void)state->SetGroupName("Data");
  (void)states.AddListingState(std::make_unique<GROUP_STATE>(*state));
  EXPECT_EQ(states.AddListingState(std::move(state)), E_FAIL);
  EXPECT_EQ(states.InsertListingState(0, std::move(state)), E_FAIL);
  EXPECT_EQ(states.SetListingState(0, state.get()), S_OK);  // NOLINT(bugprone-use-after-move)
}

}  // namespace
}  // namespace quillpg
