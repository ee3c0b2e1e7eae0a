#include "program/subsequence_manager.h"

#include <gtest/gtest.h>

namespace quillpg {
namespace {

using MANAGER = CSubSequenceManager;

// Subsequences Read (two lines that play a and b) and Write (none), nothing modified.
class SubSequenceManager : public testing::Test {
 protected:
  SubSequenceManager() {
    (void)m_manager.AddSubSequence(" Read ");
    (void)m_manager.AddSubSequence("Write");
    for (const char* block : {"a", "b"}) {
      auto line = std::make_unique<SUBSEQUENCE_LINE>();
      EXPECT_EQ(line->GetRepeatCount(), -1);
      (void)line->SetOutput(block);
      (void)At(0).AddSubSequenceLine(std::move(line));
    }
    (void)m_manager.SetModified(0);
  }
  SUBSEQUENCE& At(int index) {
    SUBSEQUENCE* subsequence = nullptr;
    (void)m_manager.GetSubSequence(index, &subsequence);
    return *subsequence;
  }
  SUBSEQUENCE_LINE& Line(int subsequence, int index) {
    SUBSEQUENCE_LINE* line = nullptr;
    EXPECT_EQ(At(subsequence).GetSubSequenceLine(index, &line), S_OK);
    return *line;
  }
  CSubSequenceManager m_manager;
};

TEST_F(SubSequenceManager, SeesChangesOnEveryLevel) {
  struct Row {
    const char* what;
    Status (*change)(MANAGER&, SUBSEQUENCE&, SUBSEQUENCE_LINE&);
    int modified;
  };
  using SUB = SUBSEQUENCE;
  using LINE = SUBSEQUENCE_LINE;
  const Row rows[] = {
      {"add", [](MANAGER& m, SUB&, LINE&) { return m.AddSubSequence(""); }, 1},
      {"set", [](MANAGER& m, SUB& s, LINE&) { return m.SetSubSequence(1, &s); }, 1},
      {"set nowhere", [](MANAGER& m, SUB& s, LINE&) { return m.SetSubSequence(9, &s); }, 0},
      {"delete none", [](MANAGER& m, SUB&, LINE&) { return m.DeleteSubSequence(3, 1); }, 0},
      {"move", [](MANAGER& m, SUB&, LINE&) { return m.MoveUp(2); }, 1},
      {"delete", [](MANAGER& m, SUB&, LINE&) { return m.DeleteSubSequence(1, 1); }, 1},
      {"move a line", [](MANAGER&, SUB& s, LINE&) { return s.MoveUp(1); }, 1},
      {"set a line", [](MANAGER&, SUB& s, LINE& l) { return s.SetSubSequenceLine(0, &l); }, 1},
      {"no line", [](MANAGER&, SUB& s, LINE& l) { return s.SetSubSequenceLine(2, &l); }, 0},
      {"repeat", [](MANAGER&, SUB&, LINE& l) { return l.SetRepeatCount(2); }, 1},
      {"delete all", [](MANAGER& m, SUB&, LINE&) { return m.DeleteAll(); }, 1}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    (void)m_manager.SetModified(0);
    EXPECT_EQ(m_manager.IsModified(), 0);
    (void)row.change(m_manager, At(0), Line(0, 0));
    EXPECT_EQ(m_manager.IsModified(), row.modified);
  }
}

TEST_F(SubSequenceManager, AnswersBadPositionsInTwoWays) {
  EXPECT_EQ(At(0).GetSubSequenceName(), "Read");  // trimmed
  EXPECT_EQ(At(0).GetSize(), 4u + 9u + 2 * 10u);
  SUBSEQUENCE* subsequence = &At(0);
  EXPECT_EQ(m_manager.GetSubSequence(2, &subsequence), S_OK);
  EXPECT_EQ(subsequence, nullptr);
  SUBSEQUENCE_LINE* line = nullptr;
  EXPECT_EQ(At(0).GetSubSequenceLine(2, &line), E_FAIL);
  EXPECT_EQ(m_manager.SetSubSequence(0, nullptr), E_FAIL);
}

TEST_F(SubSequenceManager, DuplicatesLinesOnAssignment) {
  (void)At(1).AddSubSequenceLine(std::make_unique<SUBSEQUENCE_LINE>());
  EXPECT_EQ(m_manager.SetSubSequence(1, &At(0)), S_OK);
  const std::uint64_t before = m_manager.Revision();
  (void)Line(0, 0).SetOutput("changed");
  EXPECT_NE(m_manager.Revision(), before);  // counted down to the lines
  At(1) = static_cast<const SUBSEQUENCE&>(At(1));
  EXPECT_EQ(At(1).GetSubSequenceName(), "Read");
  ASSERT_EQ(At(1).GetNoOfSubSequenceLines(), 2);
  EXPECT_EQ(Line(1, 0).GetOutput(), "a");
  EXPECT_FALSE(Line(1, 0).IsModified());  // copied with its flag
  EXPECT_TRUE(At(1).IsModified());
}

}  // namespace
}  // namespace quillpg
