#include "exchange/vcd_reader.h"

#include <gtest/gtest.h>

#include <sstream>
#include <tuple>

namespace quillpg {
namespace {

constexpr char kHead[] =
    "$timescale 1 us $end\n$var wire 1 ! D $end\n$var wire 4 # BUS [3:0] $end\n"
    "$enddefinitions $end\n";

// What the reader says of a text; empty when it took it.
std::string ReadText(const std::string& text, CAPTURE& capture, Status expected = S_OK) {
  std::istringstream stream(text);
  CVcdReader reader;
  EXPECT_EQ(reader.Read(stream, "x.vcd", 0, capture), expected);
  return reader.GetErrorText();
}

// "stamp:row" of every change point, rows in hexadecimal, then the end.
std::string Points(const CAPTURE& capture) {
  std::ostringstream out;
  for (std::size_t i = 0; i < capture.stamps.size(); ++i) {
    out << capture.stamps[i] << ':' << std::hex << *capture.Row(i) << std::dec << ' ';
  }
  out << "end " << capture.end;
  return out.str();
}

TEST(VcdReader, TakesEveryWayOfWritingChanges) {
  const std::tuple<const char*, const char*, const char*> rows[] = {
      {"one a line", "#0\n0!\nb1010 #\n#5\n1!\n#9\n", "0:14 5:15 end 9"},
      {"many a line", "#0 0! b1010 # #5 1! #9", "0:14 5:15 end 9"},
      {"CRLF and tabs", "#0\r\n0!\r\nb1010\t#\r\n#5\r\n1!\r\n#9\r\n", "0:14 5:15 end 9"},
      {"blank before the identifier", "#0 0 ! B1010 # #5 1 ! #9", "0:14 5:15 end 9"},
      {"dumpvars, comment", "#0 $dumpvars 0! b1010 # $end #5 $comment #7 1! $end 1! #9",
       "0:14 5:15 end 9"},
      {"values ahead of the first stamp", "0! b1010 # #3 #5 1! #9", "3:14 5:15 end 9"},
      {"an empty first stamp", "#0 #3 0! b1010 # #5 1! #9", "3:14 5:15 end 9"},
      {"the same stamp again", "#0 0! #0 b1010 # #5 1! #9", "0:14 5:15 end 9"},
      {"short vectors, surplus zeros", "#0 0! b1 # #1 b0010 # #2 b000001111 #",
       "0:2 1:4 2:1e end 2"},
      {"unknown levels are 0", "#0 z! b1x1z # #1 1! bx #", "0:14 1:1 end 1"},
      {"no stamp at all", "1!", "0:1 end 0"},
  };
  for (const auto& [what, changes, points] : rows) {
    SCOPED_TRACE(what);
    CAPTURE capture;
    EXPECT_EQ(ReadText(std::string(kHead) + changes, capture), "");
    EXPECT_EQ(Points(capture), points);
  }
}

TEST(VcdReader, RefusesWithFileAndLine) {
  struct Row {
    std::string text;
    const char* error;
    Status status = E_FAIL;
  };
  const std::string head = kHead;
  const Row rows[] = {
      {"", "x.vcd:1: the file ends before $enddefinitions"},
      {"hello", "x.vcd:1: no value change dump: a keyword is missing where 'hello' stands"},
      {"$timescale 3 us $end", "x.vcd:1: unknown timescale '3us'"},
      {"$var wire 0 ! D $end", "x.vcd:1: a variable is '0' bits wide"},
      {"$var wire 99999999999999999999 ! D $end",
       "x.vcd:1: a variable is '99999999999999999999' bits wide"},
      {"$var wire 320 ! D $end $var wire 1 # E $end\n$enddefinitions $end",
       "x.vcd:2: the signals need 321 channels, 6 modules; an instrument has at most 5 modules "
       "with 320 channels",
       PG_E_LIMIT},
      {"$var real 64 ! V $end\n$enddefinitions $end r1.5 !",
       "x.vcd:2: the file declares no signal that can be played"},
      {head + "#0", "x.vcd:5: the file holds no value of a signal that is played"},
      {head + "#5 0!\n#4", "x.vcd:6: time runs back to '4'"},
      {head + "#9223372036854775808",
       "x.vcd:5: no time that fits into 63 bits: '9223372036854775808'"},
      {head + "#0 1%", "x.vcd:5: undeclared identifier '%'"},
      {head + "#0 b10101 #", "x.vcd:5: a vector of 5 digits for a signal of 4 bits"},
      {head + "#0 b #", "x.vcd:5: a vector without digits"},
      {head + "#0 b01q1 #", "x.vcd:5: no binary vector: 'b01q1'"},
      {head + "#0 r1.5 !", "x.vcd:5: no level: 'r1.5'"},
      {head + "#0 pD 6 6 !", "x.vcd:5: neither a time nor a value: 'pD'"},
      {head + "#0 \x01" + std::string(100000, 'y'),
       "x.vcd:5: a word is longer than any value change dump has"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.error);
    CAPTURE capture;
    EXPECT_EQ(ReadText(row.text, capture, row.status), row.error);
    EXPECT_TRUE(capture.signals.empty());  // untouched
  }
}

TEST(VcdReader, ReadsNamesRangesAndIdentifiers) {
  CAPTURE capture;
  const std::string error = ReadText(
      "$comment Acquisition with 3/8 channels at 24 MHz $end $timescale\n100ps\n$end "
      "$scope module top $end $var wire 1 # D+ $end $var wire 1 $ Recv TX $end\n"
      "$var reg 2 ab BUS[5:4] $end $var wire 1 b [3] $end $var wire 1 c D [3] $end\n"
      "$var wire 2 ab alias [1:0] $end $var wire 1 d $end $upscope $end\n"
      "$enddefinitions $end\n#0 1# 0$ b10 ab 0b 1c 1d #1",
      capture);
  ASSERT_EQ(error, "");
  std::string names;
  for (const CAPTURE_SIGNAL& signal : capture.signals) {
    names += signal.name + signal.range + "@" + std::to_string(signal.firstBit) + " ";
  }
  // Two variables of one identifier are one net and share its channels.
  EXPECT_EQ(names, "D+@0 Recv TX@1 BUS[5:4]@2 [3]@4 D[3]@5 alias[1:0]@2 @6 ");
  EXPECT_EQ(capture.bits, 7);
  EXPECT_EQ(*capture.Row(0), 0b1101001u);
  EXPECT_EQ(capture.tickExponent, -10);
  EXPECT_EQ(capture.statedRate, (RATIO{24000000, 1}));
}

TEST(VcdReader, TellsWhatItLeavesOut) {
  CAPTURE capture;
  ReadText(
      "$var real 64 r V $end $var wire 1 a A $end $var wire 1 b B $end\n"
      "$var wire 1 c C $end $enddefinitions $end\n#0 r1.5 r 0a xb\n#5 zb 1c s! r\n#7",
      capture);
  const std::vector<std::string> expected = {
      "signal 'V' is of type real and is left out",
      "the file states no timescale: 1 ns is taken",
      "signal 'B' has no level from line 3 on: x and z are played as 0",
      "signal 'C' has no level from line 4 on: x and z are played as 0",
  };
  EXPECT_EQ(capture.notices, expected);
}

}  // namespace
}  // namespace quillpg
