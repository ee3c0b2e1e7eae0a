#include "base/byte_stream.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <utility>

namespace quillpg {
namespace {

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

TEST(ByteReader, TakesCountedTextsAsTheyAre) {
  const struct {
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
  for (const auto& row : rows) {
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

TEST(ByteReader, CountsMustFitIntoWhatIsLeft) {
  const std::pair<std::int32_t, bool> rows[] = {
      {0, true}, {2, true}, {3, false}, {-1, false}, {0x7FFFFFFF, false}};  // of 8 bytes each
  for (const auto& [stored, good] : rows) {
    CByteWriter writer;
    writer.Field("count", stored);
    writer.Zeros("records", 16);
    CByteReader reader(writer.Written());
    int count = 99;
    reader.Count("count", 8, count);
    EXPECT_EQ(good ? stored : 0, count);
    EXPECT_EQ(good, reader.Good());
  }
}

}  // namespace
}  // namespace quillpg
