#include "base/ordered_list.h"

#include <climits>
#include <gtest/gtest.h>

#include <string>

namespace quillpg {
namespace {

// An object that knows nothing but its name and tells a count when it is destroyed.
struct ITEM {
  explicit ITEM(std::string text, int* counter = nullptr) : name(std::move(text)), gone(counter) {}
  ITEM(const ITEM& other) : name(other.name) {}
  ITEM& operator=(const ITEM&) = delete;
  ~ITEM() {
    if (gone) ++*gone;
  }
  void Rename(const std::string& text) {
    name = text;
    revision.Touch();
  }
  void ReportTo(CRevision* list) { revision.ReportTo(list); }

  std::string name;
  int* gone;
  CRevision revision;
};

std::string_view NameOf(const ITEM& item) { return item.name; }

using LIST = COrderedList<ITEM>;

void Fill(LIST& list, std::string_view names) {
  for (const char name : names) {
    ASSERT_EQ(list.Append(std::make_unique<ITEM>(std::string(1, name))), S_OK);
  }
}

// The names in order, "-" for an empty slot.
std::string Show(const LIST& list) {
  std::string text;
  for (int i = 0; i < list.Count(); ++i) text += list.At(i) ? list.At(i)->name : "-";
  return text;
}

TEST(OrderedList, InsertsWherePossibleAndElseLeavesTheObjectToTheCaller) {
  struct Row {
    int position;
    Status status;
    const char* shown;
  };
  const Row rows[] = {
      {0, S_OK, "xab"},   {1, S_OK, "axb"},        {2, S_OK, "abx"},
      {4, S_OK, "ab--x"},  // the gap is filled with empty slots
      {5, E_FAIL, "ab"},   // one beyond the limit of five
      {-1, E_FAIL, "ab"}, {INT_MAX, E_FAIL, "ab"}, {INT_MIN, E_FAIL, "ab"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.position);
    LIST list(5);
    Fill(list, "ab");
    auto item = std::make_unique<ITEM>("x");
    EXPECT_EQ(list.Insert(row.position, std::move(item)), row.status);
    EXPECT_EQ(Show(list), row.shown);
    EXPECT_EQ(item != nullptr, Failed(row.status));  // NOLINT(bugprone-use-after-move): meant
  }
}

TEST(OrderedList, CountsEmptySlotsAgainstItsLimit) {
  LIST list(3);
  EXPECT_EQ(list.Insert(2, std::make_unique<ITEM>("x")), S_OK);
  EXPECT_EQ(list.Append(std::make_unique<ITEM>("y")), E_FAIL);
  EXPECT_EQ(list.Append(nullptr), E_FAIL);
  EXPECT_EQ(Show(list), "--x");
}

TEST(OrderedList, RemovesRangesThatLieInTheList) {
  struct Row {
    int first;
    int count;
    Status status;
    const char* shown;
  };
  const Row rows[] = {
      {0, 4, S_OK, ""},
      {1, 2, S_OK, "ad"},
      {4, 0, S_OK, "abcd"},
      {3, 2, E_FAIL, "abcd"},
      {-1, 1, E_FAIL, "abcd"},
      {1, -1, E_FAIL, "abcd"},
      {2, INT_MAX, E_FAIL, "abcd"},  // first + count would overflow
      {INT_MAX, INT_MAX, E_FAIL, "abcd"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << row.first << "," << row.count);
    LIST list;
    Fill(list, "abcd");
    EXPECT_EQ(list.Remove(row.first, row.count), row.status);
    EXPECT_EQ(Show(list), row.shown);
  }
}

TEST(OrderedList, MovesOnlyBetweenNeighbours) {
  struct Row {
    bool up;
    int position;
    Status status;
    const char* shown;
  };
  const Row rows[] = {
      {true, 1, S_OK, "bac"},          {true, 2, S_OK, "acb"},         {true, 0, E_FAIL, "abc"},
      {true, 3, E_FAIL, "abc"},        {true, INT_MIN, E_FAIL, "abc"}, {false, 0, S_OK, "bac"},
      {false, 1, S_OK, "acb"},         {false, 2, E_FAIL, "abc"},      {false, -1, E_FAIL, "abc"},
      {false, INT_MAX, E_FAIL, "abc"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << row.up << row.position);
    LIST list;
    Fill(list, "abc");
    EXPECT_EQ(row.up ? list.MoveUp(row.position) : list.MoveDown(row.position), row.status);
    EXPECT_EQ(Show(list), row.shown);
  }
}

TEST(OrderedList, FindsTheFirstOfANameAndPassesOverEmptySlots) {
  LIST list;
  ASSERT_EQ(list.Insert(1, std::make_unique<ITEM>("Data")), S_OK);
  ASSERT_EQ(list.Append(std::make_unique<ITEM>("DATA")), S_OK);
  ASSERT_EQ(list.Append(std::make_unique<ITEM>("Data2")), S_OK);
  EXPECT_EQ(list.Find("data"), 1);
  EXPECT_EQ(list.CountNamed("data"), 2);
  EXPECT_EQ(list.Find("dat"), -1);  // no prefixes
  EXPECT_TRUE(list.IsNamedElsewhere("data", 1));
  EXPECT_FALSE(list.IsNamedElsewhere("data2", 3));
}

TEST(OrderedList, RemovesOneByOneAndClosesTheGapAtTheEnd) {
  LIST list;
  Fill(list, "abcde");
  list.Release(2).reset();  // an empty slot is visited, too
  std::string seen;
  EXPECT_EQ(list.RemoveEach(1, 3,
                            [&](int position, const ITEM* item) {
                              seen += std::to_string(position) + (item ? item->name : "-");
                              list.Destroy(item, position);
                              EXPECT_EQ(list.Count(), 5);
                            }),
            S_OK);
  EXPECT_EQ(seen, "1b2-3d");
  EXPECT_EQ(Show(list), "ae");
}

// A front end that is told of a deletion may delete, insert and clear in the same list.
TEST(OrderedList, SurvivesChangesWhileItRemovesOneByOne) {
  using CHANGE = void (*)(LIST&);
  struct Row {
    const char* what;
    CHANGE change;
    const char* shown;
  };
  const Row rows[] = {
      {"deletes one before", [](LIST& list) { (void)list.Remove(0); }, "e"},
      {"deletes the next", [](LIST& list) { (void)list.Remove(list.Find("c")); }, "ae"},
      {"clears", [](LIST& list) { list.Clear(); }, ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    LIST list;
    Fill(list, "abcde");
    bool changed = false;
    EXPECT_EQ(list.RemoveEach(1, 3,
                              [&](int position, const ITEM* item) {
                                if (!changed) row.change(list);
                                changed = true;
                                list.Destroy(item, position);
                              }),
              S_OK);
    std::string left = Show(list);
    std::erase(left, '-');  // slots that the change has moved may stay, empty
    EXPECT_EQ(left, row.shown);
  }
}

TEST(OrderedList, DestroysEachObjectOnce) {
  int gone = 0;
  {
    LIST list;
    for (int i = 0; i < 6; ++i) {
      ASSERT_EQ(list.Append(std::make_unique<ITEM>("x", &gone)), S_OK);
    }
    EXPECT_EQ(list.Remove(0), S_OK);
    list.Destroy(list.At(0), 4);  // a wrong hint
    EXPECT_EQ(gone, 2);
    list.Take(3).reset();
    EXPECT_EQ(gone, 3);
  }
  EXPECT_EQ(gone, 6);
}

TEST(OrderedList, CopiesObjectsNotPointers) {
  LIST source;
  Fill(source, "ab");
  ASSERT_EQ(source.Insert(3, std::make_unique<ITEM>("c")), S_OK);
  LIST target;
  Fill(target, "z");
  EXPECT_EQ(target.CopyFrom(source), S_OK);
  source.At(0)->Rename("changed");
  EXPECT_EQ(Show(target), "ab-c");
}

// Indexes over names rely on it: a change that is not counted is a wrong look-up later.
TEST(OrderedList, CountsEveryChangeOfTheListAndItsObjects) {
  LIST list;
  CRevision owner;
  list.ReportTo(&owner);
  auto changes = [&list, last = list.Revision()]() mutable {
    const bool changed = list.Revision() != last;
    last = list.Revision();
    return changed;
  };
  Fill(list, "abcd");
  EXPECT_TRUE(changes());
  EXPECT_EQ(list.MoveUp(1), S_OK);
  EXPECT_TRUE(changes());
  list.At(0)->Rename("x");
  EXPECT_TRUE(changes());
  const std::uint64_t before = owner.Count();
  const auto taken = list.Take(0);
  EXPECT_TRUE(changes());
  EXPECT_NE(owner.Count(), before);
  taken->Rename("y");  // no longer the list's
  EXPECT_FALSE(changes());
  LIST copy;
  ASSERT_EQ(copy.CopyFrom(list), S_OK);
  copy.At(0)->Rename("z");
  EXPECT_FALSE(changes());
  list.Clear();
  EXPECT_TRUE(changes());
}

}  // namespace
}  // namespace quillpg
