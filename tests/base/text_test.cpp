#include "base/text.h"

#include <gtest/gtest.h>

namespace quillpg {
namespace {

TEST(Text, FormatsOnlyWhatItKnows) {
  struct Row {
    std::string_view format;
    std::string_view expected;
  };
  const Row rows[] = {
      {"%s has %d", "Data has -7"},
      {"%s%%complete.", "Data%complete."},
      {"%s %n %x", "Data %n %x"},  // unknown conversions are copied and consume nothing
      {"%s%d%s", "Data-7"},        // too few arguments: empty text
      {"100%", "100%"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.format);
    EXPECT_EQ(FormatText(row.format, {"Data", -7}), row.expected);
  }
  EXPECT_EQ(FormatText("%hd", {40000}), "-25536");  // halves of version words are signed
}

TEST(Text, TrimsAndFoldsAsciiOnly) {
  EXPECT_EQ(Trim(" \t\v Data\f\r\n"), "Data");
  EXPECT_EQ(Trim(" \n"), "");
  EXPECT_TRUE(EqualNoCase("BLOCK", "block"));
  EXPECT_FALSE(EqualNoCase("block", "block1"));
  EXPECT_FALSE(EqualNoCase("\xC3\x84", "\xC3\xA4"));  // bytes from 0x80 on are compared as they are
}

}  // namespace
}  // namespace quillpg
