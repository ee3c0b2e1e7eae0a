#include "program/sequence_manager.h"

#include "support/instrument_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpg {
namespace {

SEQUENCE_LINE* Line(const CSequenceManager& sequence, int index) {
  SEQUENCE_LINE* line = nullptr;
  EXPECT_EQ(sequence.GetSequenceLine(index, &line), S_OK);  // also where there is none
  return line;
}

// Two lines a and b, nothing modified.
void Fill(CSequenceManager& sequence) {
  (void)sequence.AddSequenceLine("a");
  (void)sequence.AddSequenceLine("b");
  (void)sequence.SetModified(0);
}

TEST(SequenceManager, DefaultsToOneEndlessLine) {
  CInstrumentFixture fixture;
  CSequenceManager& sequence = fixture.Sequence();
  ASSERT_EQ(sequence.Default(), S_OK);
  const SEQUENCE_LINE& line = *Line(sequence, 0);
  EXPECT_EQ(line.GetLabel(), "Line");
  EXPECT_EQ(line.GetOutput(), "Block");
  EXPECT_EQ(line.GetRepeatCount(), 0);
  EXPECT_EQ(line.GetSignalValue(), SignalValue::High);
  EXPECT_EQ(line.GetWaitFor() + line.GetJumpIf() + line.GetJumpTo(), "");
  EXPECT_EQ(sequence.IsModified(), 1);
  EXPECT_EQ(Line(sequence, 1), nullptr);
  EXPECT_THAT(fixture.Handler().Take(), testing::IsEmpty());
}

// Which operation raises the manager's own flag, seen after the lines' flags were cleared one by
// one.
TEST(SequenceManager, RaisesItsOwnFlagOnlyWhereMeant) {
  struct Row {
    const char* what;
    Status (*change)(CSequenceManager&);
    Status status;
    bool raised;
  };
  const Row rows[] = {
      {"add", [](CSequenceManager& s) { return s.AddSequenceLine("c"); }, S_OK, false},
      {"insert", [](CSequenceManager& s) { return s.InsertSequenceLine(0, "c"); }, S_OK, true},
      {"insert line",
       [](CSequenceManager& s) { return s.InsertLine(5, std::make_unique<SEQUENCE_LINE>()); }, S_OK,
       true},
      {"insert null", [](CSequenceManager& s) { return s.InsertLine(0, nullptr); }, E_FAIL, false},
      {"insert at -1", [](CSequenceManager& s) { return s.InsertSequenceLine(-1, "c"); }, E_FAIL,
       false},
      {"set",
       [](CSequenceManager& s) {
         const SEQUENCE_LINE line;
         return s.SetSequenceLine(0, &line);
       },
       S_OK, false},
      {"set null", [](CSequenceManager& s) { return s.SetSequenceLine(0, nullptr); }, E_FAIL,
       false},
      {"delete", [](CSequenceManager& s) { return s.DeleteSequenceLine(0, 1); }, S_OK, true},
      {"delete none", [](CSequenceManager& s) { return s.DeleteSequenceLine(2, 0); }, S_OK, true},
      {"delete too many", [](CSequenceManager& s) { return s.DeleteSequenceLine(1, 2); }, E_FAIL,
       false},
      {"delete all", [](CSequenceManager& s) { return s.DeleteAll(); }, S_OK, false},
      {"move up", [](CSequenceManager& s) { return s.MoveUp(1); }, S_OK, true},
      {"move down", [](CSequenceManager& s) { return s.MoveDown(1); }, E_FAIL, false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    CSequenceManager sequence;
    Fill(sequence);
    EXPECT_EQ(row.change(sequence), row.status);
    int count = 0;
    (void)sequence.GetNoOfSequenceLines(count);
    for (int i = 0; i < count; ++i) {
      if (SEQUENCE_LINE* line = Line(sequence, i)) (void)line->SetModified(0);
    }
    EXPECT_EQ(sequence.IsModified(), row.raised ? 1 : 0);
  }
}

TEST(SequenceManager, SeesEverySetterOfEveryLine) {
  using SETTER = Status (*)(SEQUENCE_LINE&);
  const SETTER setters[] = {
      [](SEQUENCE_LINE& line) { return line.SetRepeatCount(-5); },
      [](SEQUENCE_LINE& line) { return line.SetSignalValue(static_cast<SignalValue>(77)); },
      [](SEQUENCE_LINE& line) { return line.SetLabel(" x "); },
      [](SEQUENCE_LINE& line) { return line.SetWaitFor(""); },
      [](SEQUENCE_LINE& line) { return line.SetOutput("x"); },
      [](SEQUENCE_LINE& line) { return line.SetJumpIf("x"); },
      [](SEQUENCE_LINE& line) { return line.SetJumpTo("x"); },
  };
  CSequenceManager sequence;
  Fill(sequence);
  for (const SETTER& set : setters) {
    SCOPED_TRACE(&set - setters);
    EXPECT_EQ(sequence.IsModified(), 0);
    EXPECT_EQ(set(*Line(sequence, 1)), S_OK);
    EXPECT_EQ(sequence.IsModified(), 1);
    (void)sequence.SetModified(1);
    (void)sequence.SetModified(0);
  }
  EXPECT_EQ(Line(sequence, 1)->GetLabel(), " x ");  // stored as given
}

TEST(SequenceManager, CopiesALineWithItsFlag) {
  CSequenceManager sequence;
  Fill(sequence);
  SEQUENCE_LINE given;
  (void)given.SetLabel("copy");
  (void)given.SetModified(0);
  (void)Line(sequence, 0)->SetModified(1);
  EXPECT_EQ(sequence.SetSequenceLine(0, &given), S_OK);
  EXPECT_EQ(Line(sequence, 0)->GetLabel(), "copy");
  EXPECT_EQ(sequence.IsModified(), 0);
  EXPECT_EQ(sequence.SetSequenceLine(2, &given), E_FAIL);
  const std::uint64_t before = sequence.Revision();
  EXPECT_EQ(sequence.SetSequenceLine(1, &given), S_OK);
  EXPECT_NE(sequence.Revision(), before);
}

TEST(SequenceManager, LooksLabelsUpUntrimmed) {
  CSequenceManager sequence;
  Fill(sequence);
  ASSERT_EQ(sequence.AddSequenceLine("B"), S_OK);
  ASSERT_EQ(sequence.InsertSequenceLine(5, ""), S_OK);  // beyond the end, past empty slots
  int index = 0;
  int count = 0;
  EXPECT_EQ(sequence.FindSequenceLine("B", index), S_OK);
  EXPECT_EQ(index, 1);
  EXPECT_EQ(sequence.CountSequenceLines("b", count), S_OK);
  EXPECT_EQ(count, 2);
  EXPECT_EQ(sequence.FindSequenceLine("b ", index), E_FAIL);
  EXPECT_EQ(sequence.FindSequenceLine("", index), E_FAIL);
  EXPECT_EQ(index, -1);
  EXPECT_EQ(sequence.CountSequenceLines("", count), E_FAIL);
  std::uint64_t size = 0;
  (void)sequence.GetSize(size);
  EXPECT_EQ(size, 4u + 4 * 33u + 3u);
}

TEST(SequenceManager, HoldsFourThousandLines) {
  CSequenceManager sequence;
  for (int i = 0; i < MAX_SEQUENCE_LINES; ++i) ASSERT_EQ(sequence.AddSequenceLine(""), S_OK);
  EXPECT_EQ(sequence.AddSequenceLine(""), E_FAIL);
  EXPECT_EQ(sequence.InsertSequenceLine(0, ""), E_FAIL);
}

TEST(SequenceLine, IsEmptyWithoutTexts) {
  SEQUENCE_LINE line;
  (void)line.SetRepeatCount(5);
  (void)line.SetSignalValue(SignalValue::Low);
  EXPECT_TRUE(line.IsEmpty());
  (void)line.SetJumpTo(" ");
  EXPECT_FALSE(line.IsEmpty());
}

}  // namespace
}  // namespace quillpg
