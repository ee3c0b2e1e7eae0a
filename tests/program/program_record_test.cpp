#include "base/byte_stream.h"
#include "base/setup_file_reader.h"
#include "program/block_manager.h"
#include "program/group_manager.h"
#include "program/sequence_manager.h"
#include "program/waveform_manager.h"
#include "quillpg/limits.h"
#include "support/instrument_fixture.h"
#include "support/model_json.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

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
  const struct Row {
    int size;
    int width;
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
  for (const Row& row : rows) {
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

TEST(BlockRecord, LosesTheLastPartialByte) {
  BLOCK block;
  (void)block.Initialize("b", 3, 5, '\0');
  CByteWriter writer;
  EXPECT_EQ(S_OK, block.Write(writer));
  EXPECT_EQ(block.GetSize() - 1, writer.Written().size());
  EXPECT_EQ(0, writer.Written()[4 + 4 + 6]) << "one byte of 15 bits; the buffer has none";
}

TEST(BlockRecord, IsSteppedOverWithoutItsData) {
  CByteWriter writer;
  PutBlock(writer, 50, 128, 800);
  SETUP_FILE_FORM form;
  form.stepsOver = true;
  BLOCK block;
  (void)block.Initialize("old", 40, 64, '1');
  CSetupFileReader reader(writer.Written(), form);
  EXPECT_EQ(S_OK, block.Read(reader));
  EXPECT_EQ(0U, reader.Remaining());
  EXPECT_EQ(40, block.GetBlockSize());
  EXPECT_EQ(128, block.GetBlockWidth());
  EXPECT_EQ(0, block.Data()[40 * 16 - 1]) << "a buffer that fits the new width";
  EXPECT_EQ(9, block.GetListingState().firstReference);
}

TEST(BlockRecords, ShareEqualRowsUntilOneChanges) {
  CInstrumentFixture fixture;
  CBlockManager& blocks = fixture.Blocks();
  for (int i = 0; i < 3; ++i) (void)blocks.AddBlock("b", 80);
  CByteWriter writer;
  EXPECT_EQ(S_OK, blocks.Write(writer));
  (void)blocks.DeleteAll();
  CSetupFileReader reader(writer.Written());
  ASSERT_EQ(S_OK, blocks.Read(reader));
  const auto row = [&](int index) {
    BLOCK* block = nullptr;
    (void)blocks.GetBlock(index, &block);
    return std::as_const(*block->GetWaveformManager()).Row(0);
  };
  EXPECT_EQ(row(1), row(2)) << "one object";
  BLOCK* block = nullptr;
  (void)blocks.GetBlock(1, &block);
  CWaveformData* changed = nullptr;
  (void)block->GetWaveformManager()->GetWaveformData(0, &changed);
  changed->reserved = 77;
  EXPECT_EQ(77, row(1)->reserved);
  EXPECT_EQ(0, row(2)->reserved);
}

TEST(SequenceRecords, TheListsOwnLimitDoesNotHoldOnReading) {
  CSequenceManager lines;
  for (int i = 0; i < MAX_SEQUENCE_LINES; ++i) (void)lines.AddSequenceLine("L");
  CByteWriter writer;
  EXPECT_EQ(S_OK, lines.Write(writer));
  (void)lines.SetModified(0);
  CSetupFileReader reader(writer.Written());
  EXPECT_EQ(S_OK, lines.Read(reader)) << "appended";
  EXPECT_EQ(2 * MAX_SEQUENCE_LINES, Get(lines, &CSequenceManager::GetNoOfSequenceLines));
  EXPECT_EQ(1, lines.IsModified());
}

TEST(SequenceRecords, EmptySlotsAreNeitherCountedNorWritten) {
  CSequenceManager lines;
  (void)lines.InsertSequenceLine(5, "L");
  CByteWriter writer;
  EXPECT_EQ(S_OK, lines.Write(writer));
  EXPECT_EQ(1, writer.Written()[0]);
  EXPECT_EQ(4U + 33 + 1, writer.Written().size());
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
  std::vector<std::string> names;
  (void)fixture.Groups().GetGroupNames(names);
  EXPECT_EQ((std::vector<std::string>{"First", "Second", "UserGrp2"}), names);
  EXPECT_TRUE(fixture.Handler().events.empty()) << "nothing is announced";
}

// Where nobody can tell how much follows, a count that lies must not be believed.
class CEndlessCounts : public std::streambuf {
 protected:
  int_type underflow() override {
    if (m_given > 1000) return traits_type::eof();
    m_given += 4;
    setg(m_count, m_count, m_count + 4);
    return traits_type::to_int_type(m_count[0]);
  }

 private:
  char m_count[4] = {'\0', '\0', '\0', '\x7f'};
  int m_given = 0;
};

TEST(GroupRecords, AnEndlessCountMakesNoGroupsThatAreNotThere) {
  CInstrumentFixture fixture;
  CEndlessCounts pipe;
  std::istream stream(&pipe);
  EXPECT_EQ(PG_E_INSTRUMENT_RECORD, fixture.Groups().Read(stream));
  int groups = 0;
  (void)fixture.Groups().GetNoOfGroups(groups);
  EXPECT_EQ(1, groups);
}

}  // namespace
}  // namespace quillpg
