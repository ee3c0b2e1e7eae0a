#include "program/block.h"

#include "support/scripted_host.h"

#include <climits>
#include <gtest/gtest.h>

#include <algorithm>

namespace quillpg {
namespace {

// Blocks alone; boxes go to a scripted host.
class Block : public testing::Test {
 protected:
  Block() { CHostServices::Set(&m_host); }
  ~Block() override { CHostServices::Set(nullptr); }

  CScriptedHost m_host;
};

std::unique_ptr<GROUP_STATE> State(const std::string& name) {
  auto state = std::make_unique<GROUP_STATE>();
  (void)state->Initialize(Radix::Octal, 3, name);
  return state;
}

TEST_F(Block, HoldsWholeBytesOfEveryVector) {
  struct Row {
    int size;
    int width;
    char fill;
    int bytes;  // 0: no data
    int value;
    std::uint64_t fileBytes;  // rounded up, unlike the buffer
  };
  const Row rows[] = {{100, 32, '\0', 400, 0x00, 400}, {100, 12, '0', 100, 0xFF, 150},
                      {3, 12, '1', 3, 0xFF, 5},        {100, 7, '\0', 0, 0, 88},
                      {0, 32, '\0', 0, 0, 0},          {-1, 32, '\0', 0, 0, 0},
                      {100, -8, '\0', 0, 0, 0},        {INT_MIN, INT_MIN, '\0', 0, 0, 0}};
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << row.size << "x" << row.width);
    BLOCK block;
    const std::uint64_t bare = block.GetSize();
    EXPECT_EQ(block.Initialize(" Name\n", row.size, row.width, row.fill), S_OK);
    EXPECT_EQ(block.GetBlockName(), "Name");
    EXPECT_EQ(block.GetListingState().secondReference, row.size);
    EXPECT_EQ(block.GetSize() - bare, row.fileBytes + 4);
    ASSERT_EQ(block.Data() != nullptr, row.bytes > 0);
    EXPECT_EQ(std::count(block.Data(), block.Data() + row.bytes, row.value), row.bytes);
  }
  EXPECT_TRUE(m_host.boxes.empty());
}

TEST_F(Block, KeepsWhatFitsWhenResized) {
  for (const int size : {20, 4}) {
    SCOPED_TRACE(size);
    BLOCK block;
    (void)block.Initialize("b", 10, 16, '\0');
    (void)block.SetChanged(0);
    EXPECT_EQ(block.ResizeBlock(10, '1'), S_OK);
    EXPECT_FALSE(block.IsChanged());  // the same size is no change
    block.GetListingState().firstReference = 7;
    EXPECT_EQ(block.ResizeBlock(size, '1'), S_OK);
    EXPECT_TRUE(block.IsChanged());
    EXPECT_EQ(block.GetListingState().firstReference, 1);
    EXPECT_EQ(block.GetListingState().secondReference, size);
    for (int i = 0; i < 2 * size; ++i) EXPECT_EQ(block.Data()[i], i < 20 ? 0x00 : 0xFF) << i;
  }
}

TEST_F(Block, ReportsWhatMemoryCannotHold) {
  BLOCK block;
  (void)block.Initialize("b", 10, 320, '\0');
  EXPECT_EQ(block.ResizeBlock(INT_MAX, '\0'), S_OK);  // the new size without data: meant
  EXPECT_EQ(block.GetBlockSize(), INT_MAX);
  EXPECT_EQ(block.Data(), nullptr);
  EXPECT_EQ(block.GetListingState().secondReference, 10);
  EXPECT_EQ(block.AllocateBlockData('\0'), E_OUTOFMEMORY);
  BLOCK target;
  (void)target.Initialize("target", 10, 8, '\0');
  EXPECT_EQ(block.Copy(target), E_OUTOFMEMORY);
  EXPECT_EQ(target.GetBlockName(), "target");
  EXPECT_NE(target.Data(), nullptr);
  EXPECT_EQ(m_host.boxes.size(), 3u);
  EXPECT_EQ(block.ResizeBlock(4, '1'), S_OK);  // and back to something that fits
  EXPECT_EQ(block.Data()[0], 0xFF);
}

TEST_F(Block, CopiesAllButFlags) {
  BLOCK source;
  (void)source.Initialize("source", 2, 8, '1');
  (void)source.AddGroupState(State("a"));
  source.GetListingState().displayValue4 = 9;
  (void)source.SetUsed(1);
  BLOCK target;
  (void)target.Initialize("target", 9, 16, '\0');
  (void)target.AddGroupState(State("x"));
  (void)target.SetChanged(0);
  EXPECT_EQ(source.Copy(target), S_OK);
  source.Data()[1] = 0;
  EXPECT_EQ(source.Copy(source), S_OK);
  EXPECT_EQ(target.GetBlockName(), "source");
  EXPECT_EQ(target.GetBlockSize(), 2);
  EXPECT_EQ(target.RowBytes(), 1u);
  EXPECT_EQ(target.Data()[1], 0xFF);
  EXPECT_EQ(target.GetListingState().displayValue4, 9);
  EXPECT_EQ(target.IsBlockUsed(), 0);
  EXPECT_FALSE(target.IsChanged());
  int index = 0;
  EXPECT_TRUE(target.FindGroupState("A", index));
  EXPECT_FALSE(target.FindGroupState("x", index));
}

TEST_F(Block, KeepsGroupStatesInTheOrderGiven) {
  BLOCK block;
  EXPECT_EQ(block.AddGroupState(State("Data")), S_OK);
  EXPECT_EQ(block.AddGroupState(State("data")), S_OK);  // duplicates are not looked for
  EXPECT_EQ(block.InsertGroupState(0, State("Bus")), S_OK);
  EXPECT_EQ(block.AddGroupState(nullptr), E_FAIL);
  int index = 0;
  EXPECT_TRUE(block.FindGroupState("DATA", index));
  EXPECT_EQ(index, 1);
  EXPECT_FALSE(block.FindGroupState(" data", index));
  EXPECT_TRUE(block.DeleteGroupState(2, 2));  // a bad range: true, nothing happens
  EXPECT_TRUE(block.DeleteGroupState(0, 2));
  GROUP_STATE* state = nullptr;
  ASSERT_TRUE(block.GetGroupState(0, &state));
  EXPECT_EQ(state->GetGroupName(), "data");
  EXPECT_EQ(state->GetDisplayValue2(), 1);  // not touched by Initialize(radix, value, name)
  EXPECT_FALSE(block.GetGroupState(1, &state));
}

}  // namespace
}  // namespace quillpg
