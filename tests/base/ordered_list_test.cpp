#include "base/ordered_list.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <tuple>

namespace quillpg {
namespace {

// An object that knows its name.
struct ITEM {
  explicit ITEM(std::string text) : name(std::move(text)) {}
  ITEM(const ITEM& other) : name(other.name) {}
  ITEM& operator=(const ITEM&) = delete;
  void Rename(const std::string& text) {
    name = text;
    revision.Touch();
  }
  void ReportTo(CRevision* list) { revision.ReportTo(list); }

  std::string name;
  CRevision revision;
};

using LIST = COrderedList<ITEM>;

void Fill(LIST& list, std::string_view names) {
  for (const char name : names) (void)list.Append(std::make_unique<ITEM>(std::string(1, name)));
}

// The names in order, "-" for an empty slot.
std::string Show(const LIST& list) {
  std::string text;
  for (int i = 0; i < list.Count(); ++i) text += list.At(i) ? list.At(i)->name : "-";
  return text;
}

TEST(OrderedList, InsertsWherePossibleAndElseLeavesTheObjectToTheCaller) {
  const std::tuple<int, Status, const char*> rows[] = {
      {0, S_OK, "xab"},   {1, S_OK, "axb"},
      {2, S_OK, "abx"},   {4, S_OK, "ab--x"},  // empty slots fill the gap
      {5, E_FAIL, "ab"},                       // one beyond the limit of five
      {-1, E_FAIL, "ab"}, {INT_MAX, E_FAIL, "ab"}};
  for (const auto& [position, status, shown] : rows) {
    SCOPED_TRACE(position);
    LIST list(5);
    Fill(list, "ab");
    auto item = std::make_unique<ITEM>("x");
    EXPECT_EQ(list.Insert(position, std::move(item)), status);
    EXPECT_EQ(Show(list), shown);
    EXPECT_EQ(item != nullptr, Failed(status));  // NOLINT(bugprone-use-after-move): meant
    Fill(list, "cdefg");
    EXPECT_EQ(list.Count(), 5);  // empty slots count, too
    EXPECT_EQ(list.Insert(0, nullptr), E_FAIL);
  }
}

TEST(OrderedList, RemovesAndMovesWithinTheListOnly) {
  const struct {
    const char* what;
    Status (*edit)(LIST&);
    Status status;
    const char* shown;
  } rows[] = {{"middle", [](LIST& l) { return l.Remove(1, 2); }, S_OK, "ad"},
              {"one too many", [](LIST& l) { return l.Remove(3, 2); }, E_FAIL, "abcd"},
              {"negative count", [](LIST& l) { return l.Remove(1, -1); }, E_FAIL, "abcd"},
              {"overflow", [](LIST& l) { return l.Remove(2, INT_MAX); }, E_FAIL, "abcd"},
              {"up from the top", [](LIST& l) { return l.MoveUp(0); }, E_FAIL, "abcd"},
              {"down from nowhere", [](LIST& l) { return l.MoveDown(INT_MAX); }, E_FAIL, "abcd"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    LIST list;
    Fill(list, "abcd");
    EXPECT_EQ(row.edit(list), row.status);
    EXPECT_EQ(Show(list), row.shown);
  }
}

// A front end that is told of a deletion may delete and clear in the same list.
TEST(OrderedList, SurvivesChangesWhileItRemovesOneByOne) {
  const struct {
    void (*change)(LIST&);
    const char* visited;
    const char* left;
  } rows[] = {{[](LIST&) {}, "1b2c3d", "ae"},
              {[](LIST& l) { l.Release(2).reset(); }, "1b3d", "ae"},
              {[](LIST& l) { (void)l.Remove(0); }, "1b2c3d", "e"},
              {[](LIST& l) { (void)l.Remove(1, 2); }, "1b3d", "ae"},
              {[](LIST& l) { l.Clear(); }, "1b", ""},
              {[](LIST& l) {  // the new one may come to lie where the old one was
                 l.Take(1).reset();
                 (void)l.Insert(1, std::make_unique<ITEM>("n"));
               },
               "1b2c3d", "ane"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.visited);
    LIST list;
    Fill(list, "abcde");
    std::string visited;
    const auto visit = [&](int position, const ITEM* item, const auto& destroy) {
      visited += std::to_string(position) + item->name;
      if (visited.size() == 2) row.change(list);
      destroy();
      return S_OK;
    };
    const Status status = list.RemoveEach(1, 3, visit);
    EXPECT_EQ(status, S_OK);
    EXPECT_EQ(visited, row.visited);
    EXPECT_EQ(Show(list), row.left);
  }
  LIST gapped;
  Fill(gapped, "ab");
  (void)gapped.Insert(3, std::make_unique<ITEM>("c"));
  (void)gapped.RemoveEach(0, 1, [](int, const ITEM*, const auto& destroy) {
    destroy();
    return S_OK;
  });
  EXPECT_EQ(Show(gapped), "b-c");  // a gap of the user's own stays
}

// Indexes over names rely on it: a change that is not counted is a wrong look-up later.
TEST(OrderedList, CountsEveryChangeOfTheListAndItsObjects) {
  LIST list;
  CRevision owner;
  list.ReportTo(&owner);
  auto changed = [&owner, last = owner.Count()]() mutable {
    return std::exchange(last, owner.Count()) != owner.Count();
  };
  Fill(list, "abcd");
  EXPECT_TRUE(changed());
  (void)list.MoveUp(1);
  EXPECT_TRUE(changed());
  list.At(0)->Rename("x");
  EXPECT_TRUE(changed());
  const auto taken = list.Take(0);
  EXPECT_TRUE(changed());
  LIST copy;
  (void)copy.CopyFrom(list);
  taken->Rename("y");  // no longer the list's
  copy.At(0)->Rename("z");
  EXPECT_FALSE(changed());
  EXPECT_EQ(Show(list), "acd");
  list.Clear();
  EXPECT_TRUE(changed());
}

}  // namespace
}  // namespace quillpg
