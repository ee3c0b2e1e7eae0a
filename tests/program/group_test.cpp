#include "program/group.h"

#include "program/group_plan.h"

#include <climits>
#include <gtest/gtest.h>

namespace quillpg {
namespace {

TEST(Group, PutsChannelsWhereAsked) {
  struct Row {
    int position;
    std::vector<int> channels;
  };
  const Row rows[] = {
      {-1, {7, 8, 5}}, {-2, {7, 8, 5}},   {INT_MIN, {7, 8, 5}},
      {0, {5, 7, 8}},  {2, {7, 8, 5}},    {4, {7, 8, 0, 0, 5}},  // a gap is filled with channel 0
      {65536, {7, 8}}, {INT_MAX, {7, 8}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.position);
    GROUP group;
    (void)group.AddChannel(7, -1);
    (void)group.AddChannel(8, -1);
    EXPECT_EQ(group.AddChannel(5, row.position), S_OK);
    EXPECT_EQ(group.Channels(), row.channels);
  }
}

TEST(Group, DeletesChannelNumbersNotPositions) {
  GROUP group;
  for (const int channel : {0, 7, 1, 7}) (void)group.AddChannel(channel, -1);
  EXPECT_EQ(group.DeleteChannel(7), S_OK);  // the first of two
  EXPECT_EQ(group.Channels(), (std::vector{0, 1, 7}));
  EXPECT_EQ(group.DeleteChannel(2), E_FAIL);
  int channel = 5;
  group.GetChannelId(3, channel);
  EXPECT_EQ(channel, -1);
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
  EXPECT_EQ(target.GetGroupName(), "Data");
  EXPECT_EQ(target.GetChannelNames(), "B0(7-0)");
  EXPECT_EQ(target.GetNoOfChannels(), 0);
  EXPECT_EQ(target.GetSize(), 4u + 7u + 14u);
}

TEST(Group, TellsTheLengthOfAValue) {
  struct Row {
    int channels;
    Radix radix;
    int length;
  };
  const Row rows[] = {
      {0, Radix::Hex, 0},
      {1, Radix::Hex, 1},
      {4, Radix::Hex, 1},
      {5, Radix::Hex, 2},
      {3, Radix::Octal, 1},
      {4, Radix::Octal, 2},
      {5, Radix::Binary, 5},
      {5, Radix::Decimal, -7},  // left as it was
      {5, static_cast<Radix>(9), -7},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << row.channels << " " << static_cast<int>(row.radix));
    GROUP group;
    for (int i = 0; i < row.channels; ++i) (void)group.AddChannel(i, -1);
    int length = -7;
    EXPECT_EQ(group.GetTextLength(row.radix, length), S_OK);
    EXPECT_EQ(length, row.length);
  }
}

TEST(Group, PlansAnewAfterEveryChangeOfItsChannels) {
  GROUP group;
  (void)group.AddChannel(1, -1);
  EXPECT_EQ(group.Plan().Bits(), 1);
  (void)group.AddChannel(2, -1);
  EXPECT_EQ(group.Plan().Bits(), 2);
  (void)group.DeleteChannel(1);
  EXPECT_EQ(group.Plan().Bits(), 1);
  (void)group.DeleteAll();
  EXPECT_EQ(group.Plan().Bits(), 0);
}

}  // namespace
}  // namespace quillpg
