#include "program/subsequence_manager.h"

#include <gtest/gtest.h>

namespace quillpg {
namespace {

std::unique_ptr<SUBSEQUENCE_LINE> Plays(const std::string& block) {
  auto line = std::make_unique<SUBSEQUENCE_LINE>();
  (void)line->SetOutput(block);
  return line;
}

// Subsequences Read (playing a, b) and Write (empty), nothing modified.
class SubSequenceManager : public testing::Test {
 protected:
  SubSequenceManager() {
    (void)m_manager.AddSubSequence(" Read ");
    (void)m_manager.AddSubSequence("Write");
    (void)At(0)->AddSubSequenceLine(Plays("a"));
    (void)At(0)->AddSubSequenceLine(Plays("b"));
    (void)m_manager.SetModified(0);
  }
  SUBSEQUENCE* At(int index) {
    SUBSEQUENCE* subsequence = nullptr;
    EXPECT_EQ(m_manager.GetSubSequence(index, &subsequence), S_OK);  // also where there is none
    return subsequence;
  }
  CSubSequenceManager m_manager;
};

TEST_F(SubSequenceManager, TrimsTheNamesItIsAsked) {
  EXPECT_EQ(At(0)->GetSubSequenceName(), "Read");
  (void)m_manager.InsertSubSequence(0, "READ");
  int value = 0;
  EXPECT_EQ(m_manager.CountSubSequences("\tread ", value), S_OK);
  EXPECT_EQ(value, 2);
  EXPECT_EQ(m_manager.FindSubSequence(" read", value), S_OK);
  EXPECT_EQ(value, 0);
  EXPECT_EQ(m_manager.CountSubSequences("  ", value), E_FAIL);
  EXPECT_EQ(value, 0);
  EXPECT_EQ(m_manager.FindSubSequence("  ", value), E_FAIL);
  EXPECT_EQ(value, -1);
}

TEST_F(SubSequenceManager, SeesChangesOnEveryLevel) {
  struct Row {
    const char* what;
    Status (*change)(CSubSequenceManager&, SUBSEQUENCE&);
    bool modified;
  };
  const Row rows[] = {
      {"add", [](CSubSequenceManager& m, SUBSEQUENCE&) { return m.AddSubSequence(""); }, true},
      {"delete", [](CSubSequenceManager& m, SUBSEQUENCE&) { return m.DeleteSubSequence(0, 1); },
       true},
      {"delete all", [](CSubSequenceManager& m, SUBSEQUENCE&) { return m.DeleteAll(); }, true},
      {"move", [](CSubSequenceManager& m, SUBSEQUENCE&) { return m.MoveUp(1); }, true},
      {"set", [](CSubSequenceManager& m, SUBSEQUENCE& s) { return m.SetSubSequence(1, &s); }, true},
      {"set nowhere",
       [](CSubSequenceManager& m, SUBSEQUENCE& s) { return m.SetSubSequence(9, &s); }, false},
      {"insert nothing",
       [](CSubSequenceManager& m, SUBSEQUENCE&) {
         return m.InsertSubSequence(0, std::unique_ptr<SUBSEQUENCE>());
       },
       false},
      {"add line",
       [](CSubSequenceManager&, SUBSEQUENCE& s) { return s.AddSubSequenceLine(Plays("c")); }, true},
      {"delete line",
       [](CSubSequenceManager&, SUBSEQUENCE& s) { return s.DeleteSubSequenceLine(0, 1); }, true},
      {"delete too many lines",
       [](CSubSequenceManager&, SUBSEQUENCE& s) { return s.DeleteSubSequenceLine(1, 2); }, false},
      {"move line", [](CSubSequenceManager&, SUBSEQUENCE& s) { return s.MoveDown(0); }, true},
      {"set a line",
       [](CSubSequenceManager&, SUBSEQUENCE& s) {
         SUBSEQUENCE_LINE* line = nullptr;
         (void)s.GetSubSequenceLine(1, &line);
         return line->SetRepeatCount(2);
       },
       true},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    CSubSequenceManager manager;
    (void)manager.AddSubSequence("one");
    (void)manager.AddSubSequence("two");
    SUBSEQUENCE* first = nullptr;
    (void)manager.GetSubSequence(0, &first);
    (void)first->AddSubSequenceLine(Plays("a"));
    (void)first->AddSubSequenceLine(Plays("b"));
    EXPECT_EQ(manager.IsModified(), 1);
    (void)manager.SetModified(0);
    EXPECT_EQ(manager.IsModified(), 0);
    (void)row.change(manager, *first);
    EXPECT_EQ(manager.IsModified(), row.modified ? 1 : 0);
  }
}

TEST_F(SubSequenceManager, AnswersBadPositionsInTwoWays) {
  EXPECT_EQ(At(2), nullptr);  // S_OK
  SUBSEQUENCE_LINE* line = nullptr;
  EXPECT_EQ(At(0)->GetSubSequenceLine(2, &line), E_FAIL);
  EXPECT_EQ(At(0)->SetSubSequenceLine(2, Plays("x").get()), E_FAIL);
  EXPECT_EQ(At(0)->SetSubSequenceLine(0, nullptr), E_FAIL);
  EXPECT_EQ(m_manager.SetSubSequence(0, nullptr), E_FAIL);
}

TEST_F(SubSequenceManager, DuplicatesLinesOnAssignment) {
  SUBSEQUENCE& target = *At(1);
  (void)target.AddSubSequenceLine(Plays("old"));
  (void)m_manager.SetModified(0);
  SUBSEQUENCE& source = *At(0);
  EXPECT_EQ(m_manager.SetSubSequence(1, &source), S_OK);
  EXPECT_EQ(target.GetSubSequenceName(), "Read");
  ASSERT_EQ(target.GetNoOfSubSequenceLines(), 2);
  SUBSEQUENCE_LINE* line = nullptr;
  ASSERT_EQ(source.GetSubSequenceLine(0, &line), S_OK);
  (void)line->SetOutput("changed");
  ASSERT_EQ(target.GetSubSequenceLine(0, &line), S_OK);
  EXPECT_EQ(line->GetOutput(), "a");
  EXPECT_FALSE(line->IsModified());  // copied with its flag
  EXPECT_TRUE(target.IsModified());
  target = *At(1);  // itself: nothing is lost
  EXPECT_EQ(target.GetNoOfSubSequenceLines(), 2);
}

TEST_F(SubSequenceManager, HoldsItsLimits) {
  for (int i = 2; i < MAX_SUBSEQUENCES; ++i) ASSERT_EQ(m_manager.AddSubSequence(""), S_OK);
  EXPECT_EQ(m_manager.AddSubSequence(""), E_FAIL);
  SUBSEQUENCE& lines = *At(1);
  for (int i = 0; i < MAX_SUBSEQUENCE_LINES; ++i) {
    ASSERT_EQ(lines.AddSubSequenceLine(std::make_unique<SUBSEQUENCE_LINE>()), S_OK);
  }
  auto line = std::make_unique<SUBSEQUENCE_LINE>();
  EXPECT_EQ(line->GetRepeatCount(), -1);
  EXPECT_EQ(lines.InsertSubSequenceLine(0, std::move(line)), E_FAIL);
  EXPECT_NE(line, nullptr);  // NOLINT(bugprone-use-after-move): meant
  EXPECT_EQ(lines.GetSize(), 5u + 9u + 256u * 9u);
}

TEST_F(SubSequenceManager, CountsChangesDownToTheLines) {
  const std::uint64_t before = m_manager.Revision();
  SUBSEQUENCE_LINE* line = nullptr;
  (void)At(0)->GetSubSequenceLine(1, &line);
  (void)line->SetOutput("c");
  EXPECT_NE(m_manager.Revision(), before);
}

}  // namespace
}  // namespace quillpg
