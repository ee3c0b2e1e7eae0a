#include "program/block.h"

#include "support/scripted_host.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>

namespace quillpg {
namespace {

// Blocks alone; boxes go to a scripted host.
class Block : public testing::Test {
 protected:
  Block() { CHostServices::Set(&m_host); }
  ~Block() override { CHostServices::Set(nullptr); }

  CScriptedHost m_host;
};

TEST_F(Block, HoldsWholeBytesOfEveryVector) {
  const struct {
    int size, width;
    char fill;
    int bytes;  // 0: no data
    int value;
    std::uint64_t fileBytes;  // rounded up, unlike the buffer
  } rows[] = {{100, 32, '\0', 400, 0x00, 400}, {100, 12, '0', 100, 0xFF, 150},
              {3, 12, '1', 3, 0xFF, 5},        {100, 7, '\0', 0, 0, 88},
              {0, 32, '\0', 0, 0, 0},          {-1, 32, '\0', 0, 0, 0},
              {100, -8, '\0', 0, 0, 0},        {INT_MIN, INT_MIN, '\0', 0, 0, 0}};
  for (const auto& row : rows) {
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

}  // namespace
}  // namespace quillpg
