#include "program/sequence_manager.h"

#include "support/ask.h"

#include <gtest/gtest.h>

namespace quillpg {
namespace {

using MANAGER = CSequenceManager;

SEQUENCE_LINE* Line(const CSequenceManager& sequence, int index) {
  return Find(sequence, &CSequenceManager::GetSequenceLine, index);
}

// Which operation raises the manager's own flag, apart from those of its lines.
TEST(SequenceManager, RaisesItsOwnFlagOnlyWhereMeant) {
  const struct {
    const char* what;
    Status (*change)(MANAGER&);
    Status status;
    int raised;
  } rows[] = {{"add", [](MANAGER& m) { return m.AddSequenceLine("c"); }, S_OK, 0},
              {"insert", [](MANAGER& m) { return m.InsertSequenceLine(5, "c"); }, S_OK, 1},
              {"set", [](MANAGER& m) { return m.SetSequenceLine(0, Line(m, 1)); }, S_OK, 0},
              {"delete", [](MANAGER& m) { return m.DeleteSequenceLine(0, 1); }, S_OK, 1},
              {"delete all", [](MANAGER& m) { return m.DeleteAll(); }, S_OK, 0},
              {"move up", [](MANAGER& m) { return m.MoveUp(1); }, S_OK, 1},
              {"move down", [](MANAGER& m) { return m.MoveDown(1); }, E_FAIL, 0}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    CSequenceManager sequence;
    (void)sequence.AddSequenceLine("a");
    (void)sequence.AddSequenceLine("b");
    (void)sequence.SetModified(0);
    EXPECT_EQ(row.change(sequence), row.status);
    for (int i = 0; i < Ask(sequence, &CSequenceManager::GetNoOfSequenceLines); ++i) {
      if (SEQUENCE_LINE* line = Line(sequence, i)) (void)line->SetModified(0);
    }
    EXPECT_EQ(sequence.IsModified(), row.raised);
  }
}

}  // namespace
}  // namespace quillpg
