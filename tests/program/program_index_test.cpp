#include "program/program_index.h"

#include "support/instrument_fixture.h"
#include "support/program_builder.h"

#include <climits>
#include <gtest/gtest.h>

namespace quillpg {
namespace {

// What names refer to is tested with the compiler and the download.
TEST(ProgramIndex, PositionsThatAreNotThereReferToNothing) {
  CInstrumentFixture engine;
  CProgramBuilder(engine.Instrument()).Block("b").Line({.output = "b"}).Sub("s", {{"b", 1}});
  const CProgramView program(engine.Instrument());
  CProgramIndex index;
  EXPECT_EQ(index.SubSequenceLine(0, 0), nullptr);  // nothing attached yet
  index.Attach(program);
  EXPECT_NE(index.SequenceLine(0).block, nullptr);
  EXPECT_NE(index.SubSequenceLine(0, 0), nullptr);
  for (const int position : {-1, 1, INT_MIN, INT_MAX}) {
    EXPECT_EQ(index.SequenceLine(position).block, nullptr) << position;
    EXPECT_EQ(index.SubSequenceLine(position, 0), nullptr) << position;
    EXPECT_EQ(index.SubSequenceLine(0, position), nullptr) << position;
  }
}

}  // namespace
}  // namespace quillpg
