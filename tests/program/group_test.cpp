#include "program/group.h"

#include "program/group_plan.h"

#include <gtest/gtest.h>

#include <climits>
#include <utility>

namespace quillpg {
namespace {

TEST(Group, PutsChannelsWhereAsked) {
  const std::pair<int, std::vector<int>> rows[] = {{-1, {7, 8, 5}},      {INT_MIN, {7, 8, 5}},
                                                   {0, {5, 7, 8}},       {2, {7, 8, 5}},
                                                   {4, {7, 8, 0, 0, 5}},  // the gap is channel 0
                                                   {65536, {7, 8}},      {INT_MAX, {7, 8}}};
  for (const auto& [position, channels] : rows) {
    SCOPED_TRACE(position);
    GROUP group;
    (void)group.AddChannel(7, -1);
    (void)group.AddChannel(8, -1);
    EXPECT_EQ(group.AddChannel(5, position), S_OK);
    EXPECT_EQ(group.Channels(), channels);
  }
}

TEST(Group, DeletesChannelNumbersNotPositions) {
  GROUP group;
  for (const int channel : {0, 7, 1, 7}) (void)group.AddChannel(channel, -1);
  EXPECT_EQ(group.Plan().Bits(), 4);
  EXPECT_EQ(group.DeleteChannel(7), S_OK);  // the first of two
  EXPECT_EQ(group.Channels(), (std::vector{0, 1, 7}));
  EXPECT_EQ(group.Plan().Bits(), 3);  // planned anew
  EXPECT_EQ(group.DeleteChannel(2), E_FAIL);
}

TEST(Group, AssignmentKeepsTheTargetsTextAndNothingElseOfIt) {
  GROUP source;
  (void)source.SetGroupName("Data");
  (void)source.SetChannelNames("A0(0)");
  (void)source.AddChannel(3, -1);
  GROUP target;
  (void)target.SetChannelNames("B0(7-0)");
  (void)target.AddChannel(9, -1);
  target = source;
  EXPECT_EQ(target.GetGroupName() + target.GetChannelNames(), "DataB0(7-0)");
  EXPECT_EQ(target.GetNoOfChannels(), 0);
  EXPECT_EQ(source.GetSize(), 4u + 5u + 4u + 14u);
}

}  // namespace
}  // namespace quillpg
