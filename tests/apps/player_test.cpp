#include "player.h"

#include "support/instrument_fixture.h"
#include "support/program_builder.h"

#include <gtest/gtest.h>

namespace quillpg::tool {
namespace {

// One line that plays the default block of 40 vectors, at an event that is true while E0 is.
struct ROW {
  const char* name;
  int repeat;  // 0: endlessly
  bool waits;
  std::int64_t rises;  // vector at which E0 rises; -1 never
  PLAY_LIMITS limits;
  PlayResult result;
  std::int64_t clocked;
};

using enum PlayResult;
const ROW kRows[] = {
    {"to the end", 3, false, -1, {.vectors = 1000}, Idle, 120},
    {"cut by the limit", 3, false, -1, {.vectors = 119}, Limit, 119},
    {"endless", 0, false, -1, {.vectors = 500'000}, Limit, 500'000},
    {"one vector", 0, false, -1, {.vectors = 1}, Limit, 1},
    {"waits, then plays", 1, true, 50, {.vectors = 1000}, Idle, 90},
    {"waits past limit", 1, true, 50, {.vectors = 30}, Limit, 30},
    {"holds a wait", 1, true, -1, {.vectors = 9'000, .holdWaits = true}, Limit, 9'000},
};

class CPlayerFixture : public CInstrumentFixture {
 public:
  explicit CPlayerFixture(const ROW& row) {
    CProgramBuilder(Instrument())
        .Block("Block")
        .Event("Go", {"XXXXXXXX1"})
        .Line({.output = "Block", .repeat = row.repeat, .waitFor = row.waits ? "Go" : ""});
    EXPECT_EQ(S_OK, Server().Compile());
    EXPECT_EQ(S_OK, Server().Download());
    if (row.rises >= 0) (void)Simulation().SetStimulus({{row.rises, "000000001"}});
  }
  CPlayer Player() { return {Server(), Simulation(), Router()}; }
};

TEST(Player, EndsAsTheProgramOrTheLimitSays) {
  for (const ROW& row : kRows) {
    for (const int step : {0, 1, 7, 1'000'000}) {  // 0: not in step mode
      if (step == 1 && row.clocked > 1000) continue;
      SCOPED_TRACE(std::string(row.name) + ", step " + std::to_string(step));
      CPlayerFixture fixture(row);
      CPlayer player = fixture.Player();
      EXPECT_EQ(row.result,
                step == 0 ? player.Play(row.limits) : player.PlayStepwise(row.limits, step));
      EXPECT_EQ(row.clocked, player.Clocked());
      SystemState state = SystemState::Active;
      (void)fixture.Server().GetSystemState(state);
      EXPECT_EQ(SystemState::Idle, state);
    }
  }
}

TEST(Player, AWaitForGoodEndsThePlayAtOnce) {
  const ROW row{"", 1, true, -1, {.vectors = 1000}, {}, 0};
  for (const int step : {0, 5}) {  // one step shows that it waits
    CPlayerFixture fixture(row);
    (void)fixture.Simulation().SetStimulus({{20, "100000000"}});  // not what it waits for
    CPlayer player = fixture.Player();
    EXPECT_EQ(Waiting, step == 0 ? player.Play(row.limits) : player.PlayStepwise(row.limits, step));
    EXPECT_EQ(step, player.Clocked());
  }
}

TEST(Player, HoldsAWaitThatComesLaterNoLongerThanTheLimitAndElseEndsThere) {
  CPlayerFixture fixture({"", 2, false, -1, {}, {}, 0});
  CProgramBuilder(fixture.Instrument())
      .Block("Block")
      .Event("Go", {"XXXXXXXX1"})
      .Line({.output = "Block", .repeat = 2})
      .Line({.output = "Block", .waitFor = "Go"});
  ASSERT_EQ(S_OK, fixture.Server().Compile());
  ASSERT_EQ(S_OK, fixture.Server().Download());
  CPlayer player = fixture.Player();
  EXPECT_EQ(Limit, player.Play({.vectors = 1000, .holdWaits = true}));
  EXPECT_EQ(1000, player.Clocked());
  EXPECT_EQ(Waiting, player.Play({.vectors = 1000}));
  EXPECT_EQ(80, player.Clocked());
}

}  // namespace
}  // namespace quillpg::tool
