#include "program/block_manager.h"
#include "program/event_manager.h"
#include "program/listing_state_manager.h"
#include "program/sequence_manager.h"
#include "program/subsequence_manager.h"
#include "support/instrument_fixture.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
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
  struct Row {
    const char* name;
    int found;
    int count;
    Status counted;
  };
  const Row rows[] = {{"B", 2, 2, S_OK},
                      {"\tb ", trims ? 2 : -1, trims ? 2 : 0, S_OK},
                      {" ", -1, 0, trims ? E_FAIL : S_OK},
                      {"", -1, 0, E_FAIL}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    int value = -7;
    EXPECT_EQ((list.*find)(row.name, value), row.found < 0 ? E_FAIL : S_OK);
    EXPECT_EQ(value, row.found);
    EXPECT_EQ((list.*count)(row.name, value), row.counted);
    EXPECT_EQ(value, row.count);
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
  SUBSEQUENCE* held = nullptr;
  SUBSEQUENCE_LINE* line = nullptr;
  ASSERT_EQ(subs.GetSubSequence(0, &held), S_OK);
  ASSERT_EQ(held->GetSubSequenceLine(0, &line), S_OK);
  (void)line->SetOutput("changed");
  EXPECT_NE(subs.Revision(), before);  // counted down to the lines
  EXPECT_EQ(subs.IsModified(), 1);
  ASSERT_EQ(given.GetSubSequenceLine(0, &line), S_OK);
  EXPECT_EQ(line->GetOutput(), "");
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
