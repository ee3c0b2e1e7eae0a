#include "program/block_manager.h"

#include "support/instrument_fixture.h"

#include <gmock/gmock.h>

namespace quillpg {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// An instrument of one FULL module (40 to 262140 vectors) with the blocks a to e of 64 vectors.
class BlockManager : public testing::Test, public CInstrumentFixture {
 protected:
  BlockManager() {
    (void)Blocks().DeleteAll();
    for (const char* name : {"a", "b", "c", "d", "e"}) (void)Blocks().AddBlock(name, 64);
    (void)Blocks().SetModified(0);
    EXPECT_THAT(Handler().Take(), IsEmpty());  // adding is silent
  }
  BLOCK* Block(int index) { return Find(Blocks(), &CBlockManager::GetBlock, index); }
  std::string Names() {
    std::string names;
    for (int i = 0; i < Ask(Blocks(), &CBlockManager::GetNoOfBlocks); ++i) {
      names += Block(i) ? Block(i)->GetBlockName() : "-";
    }
    return names;
  }
};

std::unique_ptr<BLOCK> Prepared(const char* name) {
  auto block = std::make_unique<BLOCK>();
  (void)block->Initialize(name, 64, 64, '\0');
  (void)block->SetChanged(0);
  return block;
}

TEST_F(BlockManager, TakesSizesWithinTheLimitsOnly) {
  const std::pair<int, Status> rows[] = {
      {39, E_FAIL}, {40, S_OK}, {262140, S_OK}, {262141, E_FAIL}, {-1, E_FAIL}};
  for (const auto& [size, status] : rows) {
    SCOPED_TRACE(size);
    EXPECT_EQ(Blocks().AddBlock("n", size), status);
    EXPECT_EQ(Blocks().SetBlockSize(0, size), status);
  }
  EXPECT_EQ(Blocks().SetBlockSize(0, 262140), E_FAIL);  // the present size is refused: meant
}

TEST_F(BlockManager, FillsNewVectorsWithTheDefaultLevel) {
  EXPECT_EQ(Block(0)->Data()[0], 0xFF);  // the digit '0' gives ones: meant
  (void)Server().SetDefaultChannelValue('\0');
  EXPECT_EQ(Blocks().AddBlock("zero", 40), S_OK);
  EXPECT_EQ(Block(5)->Data()[40 * 8 - 1], 0x00);
  EXPECT_EQ(Blocks().SetBlockSize(0, 65), S_OK);
  EXPECT_EQ(Block(0)->Data()[64 * 8], 0x00);
}

TEST_F(BlockManager, LeavesARefusedBlockToTheCaller) {
  auto block = Prepared("p");
  EXPECT_EQ(Blocks().InsertBlock(MAX_BLOCKS, std::move(block)), E_FAIL);
  ASSERT_NE(block, nullptr);  // NOLINT(bugprone-use-after-move): meant
  EXPECT_EQ(Blocks().IsModified(), 0);
  EXPECT_EQ(Blocks().InsertBlock(6, std::move(block)), S_OK);
  EXPECT_EQ(Names(), "abcde-p");
  std::uint64_t size = 0;
  (void)Blocks().GetSize(size);  // the empty slot takes nothing
  EXPECT_EQ(size, 4 + 6 * Block(0)->GetSize());
}

TEST_F(BlockManager, AnnouncesDeletionsBeforeTheyHappen) {
  EXPECT_EQ(Blocks().DeleteBlock(3, 3), E_FAIL);
  EXPECT_EQ(Blocks().IsModified(), 0);
  std::string seen;
  Handler().onAny = [&] { seen += Names() + " "; };
  EXPECT_EQ(Blocks().DeleteBlock(2, 3), S_OK);
  EXPECT_EQ(seen, "abcde ab-de ab--e ");
  Handler().onAny = nullptr;
  EXPECT_THAT(Handler().Take(),
              ElementsAre("OnBlockListChanged(c,2,1)", "OnBlockListChanged(d,3,1)",
                          "OnBlockListChanged(e,4,1)"));
  EXPECT_EQ(Names(), "ab");
}

TEST_F(BlockManager, TellsTheNewNameAsGiven) {
  EXPECT_EQ(Blocks().SetBlockName(0, " x "), S_OK);
  EXPECT_EQ(Blocks().SetBlockName(0, Block(0)->GetBlockName()), S_OK);  // unchanged is told, too
  EXPECT_EQ(Blocks().SetBlockName(9, "y"), E_FAIL);
  EXPECT_EQ(Blocks().SetBlockInfo(1, "z", 7), S_OK);  // the size is refused
  EXPECT_EQ(Blocks().SetBlockInfo(2, "", 80), S_OK);
  EXPECT_THAT(Handler().Take(),
              ElementsAre("OnBlockRenamed(a, x ,0)", "OnBlockRenamed(x,x,0)",
                          "OnBlockRenamed(b,z,1)", "OnBlockRenamed(c,,2)", "OnBlockResized(,2)"));
  EXPECT_EQ(Names(), "xzde");
  Handler().onAny = [this, told = false]() mutable {
    if (!std::exchange(told, true)) (void)Blocks().MoveDown(0);
  };
  EXPECT_EQ(Blocks().SetBlockInfo(0, "y", 90), S_OK);  // the size follows the block
  EXPECT_EQ(Names(), "zyde");
  EXPECT_EQ(Block(1)->GetBlockSize(), 90);
}

}  // namespace
}  // namespace quillpg
