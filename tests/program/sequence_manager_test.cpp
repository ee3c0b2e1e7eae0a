#include "program/sequence_manager.h"

#include "support/instrument_fixture.h"

#include <gtest/gtest.h>

namespace quillpg {
namespace {

using MANAGER = CSequenceManager;

SEQUENCE_LINE* Line(const CSequenceManager& sequence, int index) {
  SEQUENCE_LINE* line = nullptr;
  EXPECT_EQ(sequence.GetSequenceLine(index, &line), S_OK);  // also where there is none
  return line;
}

TEST(SequenceManager, DefaultsToOneEndlessLine) {
  CInstrumentFixture fixture;
  ASSERT_EQ(fixture.Sequence().Default(), S_OK);
  const SEQUENCE_LINE& line = *Line(fixture.Sequence(), 0);
  EXPECT_EQ(line.GetLabel() + line.GetOutput(), "LineBlock");
  EXPECT_EQ(line.GetRepeatCount(), 0);
  EXPECT_EQ(line.GetSignalValue(), SignalValue::High);
  EXPECT_EQ(fixture.Sequence().IsModified(), 1);
  EXPECT_EQ(Line(fixture.Sequence(), 1), nullptr);
}

// Which operation raises the manager's own flag, apart from those of its lines.
TEST(SequenceManager, RaisesItsOwnFlagOnlyWhereMeant) {
  struct Row {
    const char* what;
    Status (*change)(MANAGER&);
    Status status;
    int raised;
  };
  const Row rows[] = {
      {"add", [](MANAGER& m) { return m.AddSequenceLine("c"); }, S_OK, 0},
      {"insert", [](MANAGER& m) { return m.InsertSequenceLine(5, "c"); }, S_OK, 1},
      {"insert nothing", [](MANAGER& m) { return m.InsertLine(0, nullptr); }, E_FAIL, 0},
      {"insert at -1", [](MANAGER& m) { return m.InsertSequenceLine(-1, "c"); }, E_FAIL, 0},
      {"set", [](MANAGER& m) { return m.SetSequenceLine(0, Line(m, 1)); }, S_OK, 0},
      {"set nothing", [](MANAGER& m) { return m.SetSequenceLine(0, nullptr); }, E_FAIL, 0},
      {"set nowhere", [](MANAGER& m) { return m.SetSequenceLine(2, Line(m, 0)); }, E_FAIL, 0},
      {"delete", [](MANAGER& m) { return m.DeleteSequenceLine(0, 1); }, S_OK, 1},
      {"delete too many", [](MANAGER& m) { return m.DeleteSequenceLine(1, 2); }, E_FAIL, 0},
      {"delete all", [](MANAGER& m) { return m.DeleteAll(); }, S_OK, 0},
      {"move up", [](MANAGER& m) { return m.MoveUp(1); }, S_OK, 1},
      {"move down", [](MANAGER& m) { return m.MoveDown(1); }, E_FAIL, 0}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    CSequenceManager sequence;
    (void)sequence.AddSequenceLine("a");
    (void)sequence.AddSequenceLine("b");
    (void)sequence.SetModified(0);
    EXPECT_EQ(row.change(sequence), row.status);
    int count = 0;
    (void)sequence.GetNoOfSequenceLines(count);
    for (int i = 0; i < count; ++i) {
      if (SEQUENCE_LINE* line = Line(sequence, i)) (void)line->SetModified(0);
    }
    EXPECT_EQ(sequence.IsModified(), row.raised);
  }
}

TEST(SequenceManager, SeesEverySetterOfEveryLine) {
  using LINE = SEQUENCE_LINE;
  Status (*const setters[])(LINE&) = {[](LINE& line) { return line.SetRepeatCount(-5); },
                                      [](LINE& line) { return line.SetSignalValue({}); },
                                      [](LINE& line) { return line.SetLabel(" x "); },
                                      [](LINE& line) { return line.SetWaitFor(""); },
                                      [](LINE& line) { return line.SetOutput("x"); },
                                      [](LINE& line) { return line.SetJumpIf("x"); },
                                      [](LINE& line) { return line.SetJumpTo("x"); }};
  CSequenceManager sequence;
  (void)sequence.AddSequenceLine("a");
  for (const auto& set : setters) {
    SCOPED_TRACE(&set - setters);
    (void)sequence.SetModified(0);
    EXPECT_EQ(sequence.IsModified(), 0);
    EXPECT_EQ(set(*Line(sequence, 0)), S_OK);
    EXPECT_EQ(sequence.IsModified(), 1);
  }
  EXPECT_EQ(Line(sequence, 0)->GetLabel(), " x ");  // stored as given
}

TEST(SequenceLine, IsEmptyWithoutTexts) {
  SEQUENCE_LINE line;
  (void)line.SetRepeatCount(5);
  EXPECT_TRUE(line.IsEmpty());
  (void)line.SetJumpTo(" ");
  EXPECT_FALSE(line.IsEmpty());
}

}  // namespace
}  // namespace quillpg
