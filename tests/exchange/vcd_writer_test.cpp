#include "exchange/vcd_writer.h"

#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <functional>

namespace quillpg {
namespace {

constexpr RATIO kMicrosecond{1, 1000000};

VCD_INSTRUMENT MakeInstrument(std::vector<VCD_SIGNAL> signals, RATIO period = kMicrosecond) {
  VCD_INSTRUMENT instrument;
  instrument.name = "PG 1";
  instrument.period = period;
  instrument.signals = std::move(signals);
  return instrument;
}

void Play(CVectorSink& sink, std::vector<std::uint64_t> rows, std::int64_t repeat = 1,
          std::vector<std::uint64_t> highZ = {}, int module = 0, int modules = 1, int line = 0) {
  VECTOR_RUN run{};
  run.module = module;
  run.moduleCount = modules;
  run.count = static_cast<std::int64_t>(rows.size()) / modules;
  run.repeat = repeat;
  run.levels = rows.data();
  run.highZ = highZ.empty() ? nullptr : highZ.data();
  run.line = line;
  run.signal = 1;
  sink.OnRun(run);
}

// The dump of one instrument without its first line.
std::string Dump(const VCD_INSTRUMENT& instrument, const VCD_OPTIONS& options,
                 const std::function<void(CVectorSink&)>& play) {
  std::string text;
  CVcdWriter writer;
  EXPECT_EQ(writer.OpenText(text, instrument, options), S_OK);
  play(writer);
  EXPECT_EQ(writer.Commit(), S_OK);
  return text.substr(text.find('\n') + 1);
}

TEST(VcdWriter, WritesEveryValueAtTheStartThenChangesThenTheEnd) {
  const auto instrument = MakeInstrument({{"CLK", "", {0}}, {"D", "", {4, 3, 2, 1}}});
  const std::string header =
      "$timescale 1 us $end\n"
      "$scope module PG_1 $end\n"
      "$var wire 1 ! CLK $end\n"
      "$var wire 4 \" D [3:0] $end\n"
      "$upscope $end\n"
      "$enddefinitions $end\n";
  EXPECT_EQ(Dump(instrument, {},
                 [](CVectorSink& sink) {
                   Play(sink, {0x01, 0x01, 0x00, 0x15});
                   Play(sink, {0x14}, 1000000);  // held: nothing but time
                   Play(sink, {0x15, 0x14}, 2);
                 }),
            header +
                "#0\n1!\nb0000 \"\n#2\n0!\n#3\n1!\nb1010 \"\n#4\n0!\n#1000004\n1!\n#1000005\n0!\n"
                "#1000006\n1!\n#1000007\n0!\n#1000008\n");
}

TEST(VcdWriter, WritesScalarsReleasedPinsAndAnnotationsWhereAskedFor) {
  const auto two = MakeInstrument({{"D", "[-1:0]", {1, 0}}, {"E", "", {2, 3}}});
  const auto mixed = MakeInstrument({{"A", "", {0}}, {"B", "", {2, 1}}});
  const struct {
    const char* what;
    std::string text;
    const char* expected;
  } rows[] = {
      {"one scalar per channel",
       Dump(two, {.bits = true},
            [](CVectorSink& sink) {
              Play(sink, {0x6, 0xD});
            }),
       "$var wire 1 ! D[-1] $end\n$var wire 1 \" D[0] $end\n$var wire 1 # E[1] $end\n"
       "$var wire 1 $ E[0] $end\n$upscope $end\n$enddefinitions $end\n"
       "#0\n1!\n0\"\n1#\n0$\n#1\n1\"\n0!\n1$\n#2\n"},
      {"released pins come back to their levels",
       Dump(mixed, {},
            [](CVectorSink& sink) {
              Play(sink, {7, 7, 6, 6}, 1, {0, 3, 3, 0});
            }),
       "#0\n1!\nb11 \"\n#1\nz!\nb1z \"\n#3\n0!\nb11 \"\n#4\n"},
      {"annotated",
       Dump(MakeInstrument({{"A", "", {0}}}), {.annotate = true},
            [](CVectorSink& sink) {
              Play(sink, {0});
              Play(sink, {0}, 1, {}, 0, 1, 5);
            }),
       "#0\n0!\nb0000000000000000 \"\n1#\n#1\nb0000000000000101 \"\n1#\n#2\n"},
  };
  for (const auto& row : rows)
    EXPECT_TRUE(row.text.ends_with(row.expected)) << row.what << row.text;
}

TEST(VcdWriter, TakesTheCoarsestTimescaleThatHoldsThePeriod) {
  const struct {
    RATIO period;
    int tickExponent;
    const char* timescale;
    const char* stamps;  // of the third vector and behind it
  } rows[] = {
      {{1, 16000000}, 0, "100 ps", "#1250\n1!\n#1875"},
      {{3, 100000}, 0, "10 us", "#6\n1!\n#9"},
      {{1, 24000000}, -10, "100 ps", "#833\n1!\n#1250"},
      {{1, 24000000}, 0, "1 fs", "#83333333\n1!\n#125000000"},
      {{200, 1}, 0, "100 s", "#4\n1!\n#6"},
      {PeriodFromSeconds(1.0 / 1500), 0, "10 fs",
       "#133333333333\n1!\n#200000000000"},  // room for long plays
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.timescale);
    VCD_INSTRUMENT instrument = MakeInstrument({{"A", "", {0}}}, row.period);
    instrument.tickExponent = row.tickExponent;
    const std::string text = Dump(instrument, {}, [](CVectorSink& sink) { Play(sink, {0, 0, 1}); });
    EXPECT_NE(text.find(std::string("$timescale ") + row.timescale + " $end"), std::string::npos)
        << text;
    EXPECT_TRUE(text.ends_with(std::string(row.stamps) + "\n")) << text;
  }
}

TEST(VcdWriter, RefusesAPlayWhoseStampsRunOver) {
  std::string text;
  CVcdWriter writer;
  const RATIO odd{274'877'906'943, 1'000'000'000'000'000};
  ASSERT_EQ(writer.OpenText(text, MakeInstrument({{"A", "", {0}}}, odd), {}), S_OK);
  Play(writer, {0}, 1 << 24);
  Play(writer, {1}, 1 << 24);
  EXPECT_EQ(writer.Commit(), E_FAIL);
}

TEST(VcdWriter, TellsTwinsApartAndKeepsBlanksOut) {
  std::vector<VCD_SIGNAL> signals;
  for (const char* name : {"Recv TX", "Recv_TX", "", "$end", "0"})
    signals.push_back({name, "", {0}});
  const std::string text =
      Dump(MakeInstrument(signals), {}, [](CVectorSink& sink) { Play(sink, {0}); });
  for (const char* name :
       {" Recv_TX $end", " Recv_TX_2 $end", " _ $end", " _$end $end", " 0 $end"}) {
    EXPECT_NE(text.find(name), std::string::npos) << name << " in\n" << text;
  }
}

TEST(VcdWriterFile, MergesInstrumentsByTime) {
  VCD_INSTRUMENT slow = MakeInstrument({{"CLK", "", {0}}, {"S", "", {1}}}, {2, 1000000});
  VCD_INSTRUMENT fast = MakeInstrument({{"CLK", "", {64}}});
  fast.name = "PG 2";
  fast.module = 1;
  const CTemporaryFolder folder;
  CVcdWriter writer;
  ASSERT_EQ(writer.Open(folder.File("out.vcd"), {slow, fast}, {}), S_OK);
  Play(writer, {1, 0, 3});
  Play(writer, {0, 1, 0, 0, 0, 1}, 1, {}, 1, 2);
  ASSERT_EQ(writer.Commit(), S_OK);
  const std::string text = folder.Text("out.vcd");
  EXPECT_NE(text.find(" PG_1.CLK $end"), std::string::npos) << text;
  EXPECT_NE(text.find(" PG_2.CLK $end"), std::string::npos) << text;
  EXPECT_NE(text.find(" S $end"), std::string::npos) << text;
  EXPECT_TRUE(text.ends_with("#0\n1!\n0\"\n1#\n#1\n0#\n#2\n0!\n1#\n#3\n#4\n1!\n1\"\n#6\n")) << text;
  EXPECT_EQ(folder.Names().size(), 1u);
}

TEST(VcdWriterFile, RefusesWhatItCannotWrite) {
  const CTemporaryFolder folder;
  const std::string path = folder.File("out.vcd");
  CVcdWriter writer;
  EXPECT_EQ(writer.Open(folder.File("no/out.vcd"), {MakeInstrument({})}, {}), PG_E_FILE_NOT_OPENED);
  EXPECT_EQ(writer.Open(path, {MakeInstrument({{"A", "", {0}}}, {})}, {}), E_FAIL);
  EXPECT_EQ(writer.Open(path, {MakeInstrument({{"A", "", {320}}})}, {}), E_FAIL);
  EXPECT_EQ(writer.Open(path, {}, {}), E_FAIL);
  EXPECT_TRUE(folder.Names().empty());
}

}  // namespace
}  // namespace quillpg
