#include "base/byte_stream.h"
#include "base/setup_file_reader.h"
#include "quillpg/limits.h"
#include "support/instrument_fixture.h"

#include <gtest/gtest.h>

#include <sstream>

// Records of program objects in a setup file, where whole files do not reach.

namespace quillpg {
namespace {

// A block record without states and rows; `data` bytes of 0xA5.
void PutBlock(CByteWriter& writer, int size, int width, std::uint64_t data) {
  writer.Field("size", size);
  writer.Field("width", width);
  writer.Field("name", std::string(" Name "));
  for (std::uint64_t i = 0; i < data; ++i) {
    const std::uint8_t byte = 0xA5;
    writer.Bytes("data", {&byte, 1});
  }
  for (int i = 0; i < 4; ++i) writer.Field("references, counts", i < 2 ? 9 : 0);
}

TEST(BlockRecord, SizeAndWidthHaveTheLimitsOfTheFormat) {
  const struct {
    int size, width;
    std::uint64_t data;  // bytes that the file holds
    Status status;
    std::size_t held;  // bytes that the block takes
  } rows[] = {
      {39, 64, 312, PG_E_INSTRUMENT_RECORD, 0},
      {40, 64, 320, S_OK, 320},
      {2097144, 0, 0, S_OK, 0},  // no data bytes, no buffer
      {2097145, 0, 0, PG_E_INSTRUMENT_RECORD, 0},
      {40, 320, 1600, S_OK, 1600},
      {40, 321, 1605, PG_E_INSTRUMENT_RECORD, 0},
      {40, -8, 0, PG_E_INSTRUMENT_RECORD, 0},
      {41, 13, 66, S_OK, 41},  // 533 bits: all are consumed, whole bytes a vector are kept
      {40, 64, 300, PG_E_INSTRUMENT_RECORD, 0},
      {2097144, 320, 16, PG_E_INSTRUMENT_RECORD, 0},
      {-2147483647 - 1, 64, 0, PG_E_INSTRUMENT_RECORD, 0},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(std::to_string(row.size) + " x " + std::to_string(row.width));
    CByteWriter writer;
    PutBlock(writer, row.size, row.width, row.data);
    CSetupFileReader reader(writer.Written());
    BLOCK block;
    EXPECT_EQ(row.status, block.Read(reader));
    if (row.status != S_OK) continue;
    EXPECT_EQ(0U, reader.Remaining());
    EXPECT_EQ(" Name ", block.GetBlockName()) << "as read, untrimmed";
    EXPECT_EQ(row.size, block.GetBlockSize());
    EXPECT_TRUE(block.IsChanged());
    EXPECT_EQ(row.held > 0, block.Data() != nullptr);
    for (std::size_t i = 0; i < row.held; ++i) ASSERT_EQ(0xA5, block.Data()[i]);
  }
}

TEST(GroupRecords, AFailureKeepsPlaceholdersAndFailsTheStream) {
  CInstrumentFixture fixture;
  CByteWriter writer;
  writer.Field("count", 3);
  writer.Field("name", std::string("First"));
  writer.Field("channels", 1);
  writer.Field("text", std::string("T"));
  writer.Field("channel", -5);
  writer.Field("name", std::string("Second"));
  writer.Field("channels", 1000);
  std::istringstream stream(
      std::string(reinterpret_cast<const char*>(writer.Written().data()), writer.Written().size()));
  EXPECT_EQ(PG_E_INSTRUMENT_RECORD, fixture.Groups().Read(stream));
  EXPECT_TRUE(stream.fail());
  EXPECT_EQ((std::vector<std::string>{"First", "Second", "UserGrp2"}),
            Ask(fixture.Groups(), &CGroupManager::GetGroupNames));
  EXPECT_TRUE(fixture.Handler().events.empty()) << "nothing is announced";
}

}  // namespace
}  // namespace quillpg
