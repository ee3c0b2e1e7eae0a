#include "base/byte_stream.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>
#include <vector>

namespace quillpg {
namespace {

std::string Text(const CByteWriter& writer) {
  const auto bytes = writer.Written();
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::span<const std::uint8_t> Bytes(const std::string& text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

// A buffer that cannot seek, as a pipe.
class CPipeBuffer : public std::stringbuf {
 public:
  using std::stringbuf::stringbuf;

 protected:
  pos_type seekoff(off_type, std::ios::seekdir, std::ios::openmode) override { return -1; }
  pos_type seekpos(pos_type, std::ios::openmode) override { return -1; }
};

TEST(ByteStream, LaysFieldsOutLittleEndian) {
  CByteWriter writer;
  writer.Field("integer", 0x01020384);
  writer.Field("negative", -2);
  writer.Field("float", 1.5F);
  writer.Field("double", -2.0);
  writer.Field("text", std::string("ab"));
  writer.Field("empty", std::string());
  writer.Truth("truth", 7);
  const std::string expected(
      "\x84\x03\x02\x01"
      "\xFE\xFF\xFF\xFF"
      "\0\0\xC0\x3F"
      "\0\0\0\0\0\0\0\xC0"
      "\x03\0\0\0ab\0"
      "\x01\0\0\0\0"
      "\x01\0\0\0",
      36);
  EXPECT_EQ(expected, Text(writer));
  EXPECT_EQ(36U, writer.Offset());
}

TEST(ByteReader, TakesCountedTextsAsTheyAre) {
  const struct Row {
    const char* what;
    std::string bytes;
    bool good;
    std::string text;
    std::uint64_t offset;  // after the field, or of what failed
  } rows[] = {
      {"ends at its first zero", std::string("\x04\0\0\0a\0b\0", 8), true, "a", 8},
      {"without a zero", std::string("\x02\0\0\0ab", 6), true, "ab", 6},
      {"count 0", std::string("\0\0\0\0", 4), true, "", 4},
      {"count of 1", std::string("\x01\0\0\0\0", 5), true, "", 5},
      {"one byte short", std::string("\x03\0\0\0ab", 6), false, "held", 0},
      {"negative count", std::string("\xFF\xFF\xFF\xFF", 4) + "ab", false, "held", 0},
      {"count cut off", std::string("\x01\0\0", 3), false, "held", 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    CByteReader memory(Bytes(row.bytes));
    std::istringstream file(row.bytes);
    CByteReader stream(file);
    CPipeBuffer pipe(row.bytes);
    std::istream endless(&pipe);
    CByteReader unknown(endless);
    EXPECT_EQ(CByteReader::UNKNOWN, unknown.Remaining());
    for (CByteReader* reader : {&memory, &stream, &unknown}) {
      std::string text = "held";
      reader->Field("name", text);
      EXPECT_EQ(row.good, reader->Good());
      EXPECT_EQ(row.text, text);
      EXPECT_EQ(row.offset, row.good ? reader->Offset() : reader->FailedOffset());
      EXPECT_STREQ(row.good ? nullptr : "name", reader->FailedField());
    }
  }
}

TEST(ByteReader, TheFirstFailureSticks) {
  const std::string bytes(10, '\x01');
  CByteReader reader(Bytes(bytes));
  std::int32_t number = 5;
  double real = 7;
  reader.Field("first", number);
  reader.Field("second", real);  // six bytes are left
  reader.Field("third", number);
  EXPECT_STREQ("second", reader.FailedField());
  EXPECT_EQ(4U, reader.FailedOffset());
  EXPECT_EQ(0x01010101, number);
  EXPECT_EQ(7, real);
  EXPECT_EQ(PG_E_INSTRUMENT_RECORD, reader.GetStatus());
  EXPECT_EQ(0U, reader.Remaining());
}

TEST(ByteReader, CountsMustFitIntoWhatIsLeft) {
  const struct Row {
    std::int32_t stored;
    int leastBytes;
    int count;
    bool good;
  } rows[] = {{0, 8, 0, true},   {2, 8, 2, true},           {3, 8, 0, false},
              {-1, 8, 0, false}, {0x7FFFFFFF, 4, 0, false}, {4, 4, 4, true}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.stored);
    CByteWriter writer;
    writer.Field("count", row.stored);
    writer.Zeros("records", 16);
    CByteReader reader(writer.Written());
    int count = 99;
    reader.Count("count", row.leastBytes, count);
    EXPECT_EQ(row.count, count);
    EXPECT_EQ(row.good, reader.Good());
  }
}

TEST(ByteReader, AStreamStandsRightBehindWhatWasRead) {
  std::istringstream stream(std::string("\x01\0\0\0\x02\0\0\0rest", 12));
  CByteReader reader(stream);
  std::int32_t number = 0;
  reader.Field("first", number);
  reader.Skip("second", 4);
  EXPECT_TRUE(reader.Good());
  EXPECT_EQ(8, stream.tellg());
  EXPECT_EQ(4U, reader.Remaining());
  EXPECT_EQ(8U, reader.Offset());
  reader.Skip("beyond", 5);
  EXPECT_STREQ("beyond", reader.FailedField());
}

// Hands pieces over until it is told to refuse.
class CRefusingSink : public CByteSink {
 public:
  explicit CRefusingSink(std::size_t room) : m_room(room) {}
  bool Put(std::span<const std::uint8_t> bytes) override {
    if (taken.size() + bytes.size() > m_room) return false;
    taken.insert(taken.end(), bytes.begin(), bytes.end());
    return true;
  }
  std::vector<std::uint8_t> taken;

 private:
  std::size_t m_room;
};

TEST(ByteWriter, HandsASinkEverythingInOrder) {
  CByteWriter plain;
  CRefusingSink sink(1 << 20);
  CRefusingSink small(100'000);
  CByteWriter piecewise(sink);
  CByteWriter refused(small);
  const std::vector<std::uint8_t> large(70'000, 0x5A);
  for (CByteWriter* writer : {&plain, &piecewise, &refused}) {
    for (int i = 0; i < 30'000; ++i) writer->Field("number", i);
    writer->Bytes("large", large);
    writer->Field("text", std::string(66'000, 'x'));
    writer->Flush();
  }
  EXPECT_EQ(S_OK, piecewise.GetStatus());
  EXPECT_TRUE(std::ranges::equal(plain.Written(), sink.taken));
  EXPECT_EQ(plain.Offset(), piecewise.Offset());
  EXPECT_EQ(E_FAIL, refused.GetStatus());
}

}  // namespace
}  // namespace quillpg
