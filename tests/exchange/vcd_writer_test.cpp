#include "exchange/vcd_writer.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

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

TEST(VcdWriter, WritesOneScalarPerChannelWhereAskedFor) {
  const auto instrument = MakeInstrument({{"D", "[8:9]", {1, 0}}, {"E", "", {2, 3}}});
  const std::string text = Dump(instrument, {.bits = true}, [](CVectorSink& sink) {
    Play(sink, {0x6, 0xD});
  });
  EXPECT_NE(text.find("$var wire 1 ! D[8] $end\n$var wire 1 \" D[9] $end\n"
                      "$var wire 1 # E[1] $end\n$var wire 1 $ E[0] $end\n"),
            std::string::npos)
      << text;
  EXPECT_NE(text.find("#0\n1!\n0\"\n1#\n0$\n#1\n1\"\n0!\n1$\n#2\n"), std::string::npos) << text;
}

TEST(VcdWriter, ShowsReleasedPinsAndComesBackToLevels) {
  const auto instrument = MakeInstrument({{"A", "", {0}}, {"B", "", {2, 1}}});
  const std::string text = Dump(instrument, {}, [](CVectorSink& sink) {
    Play(sink, {0x7, 0x7, 0x6, 0x6}, 1, {0x0, 0x3, 0x3, 0x0});
  });
  EXPECT_NE(text.find("#0\n1!\nb11 \"\n#1\nz!\nb1z \"\n#3\n0!\nb11 \"\n#4\n"), std::string::npos)
      << text;
}

TEST(VcdWriter, TakesTheCoarsestTimescaleThatHoldsThePeriod) {
  struct Row {
    RATIO period;
    int tickExponent;
    const char* timescale;
    const char* end;  // stamp after three vectors
  };
  const Row rows[] = {
      {{1, 1}, 0, "1 s", "#3"},
      {{1, 16000000}, 0, "100 ps", "#1875"},
      {{3, 100000}, 0, "10 us", "#9"},
      {{1, 24000000}, -10, "100 ps", "#1250"},
      {{1, 24000000}, 0, "1 fs", "#125000000"},
      {{200, 1}, 0, "100 s", "#6"},
      {PeriodFromSeconds(1.0 / 1500), 0, "10 fs", "#200000000000"},  // room for long plays
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.timescale);
    VCD_INSTRUMENT instrument = MakeInstrument({{"A", "", {0}}}, row.period);
    instrument.tickExponent = row.tickExponent;
    const std::string text = Dump(instrument, {}, [](CVectorSink& sink) { Play(sink, {0}, 3); });
    EXPECT_NE(text.find(std::string("$timescale ") + row.timescale + " $end"), std::string::npos)
        << text;
    EXPECT_TRUE(text.ends_with(std::string(row.end) + "\n")) << text;
  }
}

TEST(VcdWriter, RefusesAPlayWhoseStampsRunOver) {
  for (const std::int64_t vectors : {std::int64_t{1} << 22, std::int64_t{1} << 25}) {
    std::string text;
    CVcdWriter writer;
    ASSERT_EQ(
        writer.OpenText(
            text, MakeInstrument({{"A", "", {0}}}, {274'877'906'943, 1'000'000'000'000'000}), {}),
        S_OK);
    Play(writer, {0}, vectors);
    Play(writer, {1}, vectors);
    EXPECT_EQ(writer.Commit(), vectors < 1 << 24 ? S_OK : E_FAIL);
  }
}

TEST(VcdWriter, RoundsStampsOfAnInexactPeriodToTheGrid) {
  VCD_INSTRUMENT instrument = MakeInstrument({{"A", "", {0}}}, {1, 24000000});
  instrument.tickExponent = -10;
  const std::string text = Dump(instrument, {}, [](CVectorSink& sink) {
    Play(sink, {0, 1, 0, 1});
  });
  EXPECT_NE(text.find("#0\n0!\n#417\n1!\n#833\n0!\n#1250\n1!\n#1667\n"), std::string::npos) << text;
}

TEST(VcdWriter, TellsTwinsApartAndKeepsBlanksOut) {
  const auto instrument = MakeInstrument({{"Recv TX", "", {0}},
                                          {"Recv_TX", "", {1}},
                                          {"", "", {2}},
                                          {"$end", "", {3}},
                                          {"0", "", {4}}});
  const std::string text = Dump(instrument, {}, [](CVectorSink& sink) { Play(sink, {0}); });
  for (const char* name :
       {" Recv_TX $end", " Recv_TX_2 $end", " _ $end", " _$end $end", " 0 $end"}) {
    EXPECT_NE(text.find(name), std::string::npos) << name << " in\n" << text;
  }
}

TEST(VcdWriter, AnnotatesLineAndSignalOnlyWhenAsked) {
  const auto instrument = MakeInstrument({{"A", "", {0}}});
  const auto play = [](CVectorSink& sink) {
    Play(sink, {0});
    Play(sink, {0}, 1, {}, 0, 1, 5);
  };
  EXPECT_EQ(Dump(instrument, {}, play).find("sequence_line"), std::string::npos);
  const std::string text = Dump(instrument, {.annotate = true}, play);
  EXPECT_NE(text.find("#0\n0!\nb0000000000000000 \"\n1#\n#1\nb0000000000000101 \"\n1#\n#2\n"),
            std::string::npos)
      << text;
}

class VcdWriterFile : public testing::Test {
 protected:
  void SetUp() override {
    m_folder =
        std::filesystem::temp_directory_path() /
        ("quillpg_vcd_writer_" + std::to_string(testing::UnitTest::GetInstance()->random_seed()));
    std::filesystem::create_directories(m_folder);
    m_path = (m_folder / "out.vcd").string();
  }
  void TearDown() override { std::filesystem::remove_all(m_folder); }

  std::size_t Files() const {
    const auto all = std::filesystem::directory_iterator(m_folder);
    return static_cast<std::size_t>(std::distance(begin(all), end(all)));
  }
  std::string Text() const {
    std::ostringstream text;
    text << std::ifstream(m_path).rdbuf();
    return text.str();
  }

  std::filesystem::path m_folder;
  std::string m_path;
};

TEST_F(VcdWriterFile, AppearsOnlyWithCommit) {
  std::ofstream(m_path) << "old";
  const auto instrument = MakeInstrument({{"A", "", {0}}});
  {
    CVcdWriter writer;
    ASSERT_EQ(writer.Open(m_path, {instrument}, {}), S_OK);
    Play(writer, {1});
    EXPECT_EQ(Text(), "old");
  }
  EXPECT_EQ(Text(), "old");  // a writer that went without Commit
  EXPECT_EQ(Files(), 1u);
  CVcdWriter writer;
  ASSERT_EQ(writer.Open(m_path, {instrument}, {}), S_OK);
  Play(writer, {1});
  EXPECT_EQ(writer.Commit(), S_OK);
  EXPECT_TRUE(Text().ends_with("#0\n1!\n#1\n"));
  EXPECT_EQ(Files(), 1u);
  EXPECT_EQ(writer.Commit(), E_FAIL);
}

TEST_F(VcdWriterFile, MergesInstrumentsByTime) {
  VCD_INSTRUMENT slow = MakeInstrument({{"CLK", "", {0}}, {"S", "", {1}}}, {2, 1000000});
  VCD_INSTRUMENT fast = MakeInstrument({{"CLK", "", {64}}});
  fast.name = "PG 2";
  fast.module = 1;
  CVcdWriter writer;
  ASSERT_EQ(writer.Open(m_path, {slow, fast}, {}), S_OK);
  Play(writer, {1, 0, 3});
  Play(writer, {0, 1, 0, 0, 0, 1}, 1, {}, 1, 2);
  ASSERT_EQ(writer.Commit(), S_OK);
  const std::string text = Text();
  EXPECT_NE(text.find(" PG_1.CLK $end"), std::string::npos) << text;
  EXPECT_NE(text.find(" PG_2.CLK $end"), std::string::npos) << text;
  EXPECT_NE(text.find(" S $end"), std::string::npos) << text;
  EXPECT_TRUE(text.ends_with("#0\n1!\n0\"\n1#\n#1\n0#\n#2\n0!\n1#\n#3\n#4\n1!\n1\"\n#6\n")) << text;
  EXPECT_EQ(Files(), 1u);
}

TEST_F(VcdWriterFile, RefusesWhatItCannotWrite) {
  CVcdWriter writer;
  EXPECT_EQ(writer.Open((m_folder / "no" / "out.vcd").string(), {MakeInstrument({})}, {}),
            PG_E_FILE_NOT_OPENED);
  EXPECT_FALSE(writer.GetErrorText().empty());
  EXPECT_EQ(writer.Open(m_path, {MakeInstrument({{"A", "", {0}}}, {})}, {}), E_FAIL);
  EXPECT_EQ(writer.Open(m_path, {MakeInstrument({{"A", "", {320}}})}, {}), E_FAIL);
  EXPECT_EQ(writer.Open(m_path, {}, {}), E_FAIL);
  EXPECT_EQ(Files(), 0u);
  if (std::filesystem::exists("/dev/full")) {
    ASSERT_EQ(writer.Open("/dev/full", {MakeInstrument({{"A", "", {0}}})}, {}), S_OK);
    Play(writer, {1});
    EXPECT_EQ(writer.Commit(), E_FAIL);
  }
}

}  // namespace
}  // namespace quillpg
