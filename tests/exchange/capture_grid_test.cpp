#include "exchange/capture_grid.h"

#include "exchange/grid_search.h"
#include "exchange/tick_counter.h"

#include <gtest/gtest.h>

#include <random>

namespace quillpg {
namespace {

enum class Cut { Round, Floor, ToEven };

// A capture of one signal with a change at each of `samples` (rising, from 0), its stamps rounded
// to the tick, counted from sample `lead` of the recording; `end` is the closing stamp's sample.
CAPTURE Sampled(const std::vector<std::int64_t>& samples, std::int64_t end, RATIO rate,
                int tickExponent, Cut cut, std::int64_t lead = 0) {
  const RATIO step = Divide(ScaleByPowerOfTen(RATIO{1, 1}, -tickExponent), rate);
  CAPTURE capture;
  capture.bits = capture.wordsPerRow = 1;
  capture.tickExponent = tickExponent;
  CTickCounter counter(step);
  counter.Advance(lead);
  std::int64_t at = 0;
  const auto stamp = [&](std::int64_t sample) {
    counter.Advance(sample - at);
    at = sample;
    if (cut == Cut::Floor) return counter.Floor();
    const bool isHalf = counter.Fraction() == 0.5;
    return counter.Rounded() - (cut == Cut::ToEven && isHalf && counter.Rounded() % 2 != 0 ? 1 : 0);
  };
  for (const std::int64_t sample : samples) {
    capture.stamps.push_back(stamp(sample));
    capture.rows.push_back(capture.rows.size() % 2);
  }
  capture.end = stamp(end);
  return capture;
}

std::vector<std::int64_t> RandomSamples(int count, int longestGap, unsigned seed) {
  std::mt19937 random(seed);
  std::uniform_int_distribution<int> gap(1, longestGap);
  std::vector<std::int64_t> samples{0};
  while (static_cast<int>(samples.size()) < count) samples.push_back(samples.back() + gap(random));
  return samples;
}

TEST(CaptureGrid, FindsRoundedGridsOfManyRates) {
  const std::pair<std::int64_t, int> rows[] = {
      {24'000'000, -10},  {24'000'000, -9},   {12'000'000, -10}, {48'000'000, -9},
      {16'000'000, -12},  {66'666'667, -10},  {44'100, -9},      {14'318'180, -10},
      {35'795'450, -10},  {120'000'000, -12}, {7, -9},           {1'843'200, -9},
      {133'000'000, -10},
  };
  for (const auto& [rate, exponent] : rows) {
    for (const Cut cut : {Cut::Round, Cut::Floor, Cut::ToEven}) {
      for (const std::int64_t lead : {0, 1, 12345}) {
        for (const int longestGap : {3, 40, 5000}) {
          SCOPED_TRACE(testing::Message()
                       << rate << " Hz at 1e" << exponent << " cut " << static_cast<int>(cut)
                       << " lead " << lead << " gaps " << longestGap);
          const std::vector<std::int64_t> samples = RandomSamples(400, longestGap, 7);
          const std::int64_t end = samples.back() + 11;
          const CAPTURE capture = Sampled(samples, end, RATIO{rate, 1}, exponent, cut, lead);
          CCaptureGrid finder;
          SAMPLE_GRID grid;
          ASSERT_EQ(finder.Find(capture, RATIO{}, grid), S_OK) << finder.GetErrorText();
          // Short captures leave several rates, of which the roundest is taken.
          EXPECT_NEAR(grid.period.ToDouble() * static_cast<double>(rate), 1, 1e-5);
          EXPECT_EQ(grid.first, samples);
          EXPECT_EQ(grid.vectors, end);
        }
      }
    }
  }
}

TEST(CaptureGrid, TakesTheCommonStepWhereThereIsOne) {
  const struct {
    const char* what;
    std::vector<std::int64_t> stamps;
    std::int64_t end;
    int tickExponent;
    RATIO statedRate;
    RATIO period;  // not set: refused
    std::int64_t vectors;
  } rows[] = {
      {"plain", {0, 5, 40}, 48, -6, {}, {1, 1'000'000}, 48},
      {"coarser than a tick", {0, 200, 600}, 1000, -9, {}, {1, 5'000'000}, 5},
      {"counted from the first change", {1007, 1017, 1037}, 1047, -6, {}, {1, 100'000}, 4},
      {"an end with changes has its period", {0, 10, 30}, 30, -6, {}, {1, 100'000}, 4},
      {"the stated rate is finer", {0, 10, 30}, 40, -6, {1'000'000, 1}, {1, 100'000}, 4},
      {"the stated rate does not fit", {0, 5, 12}, 20, -6, {300'000, 1}, {1, 1'000'000}, 20},
      {"the stated rate fits rounded stamps", {0, 3, 7, 10}, 20, -6, {300'000, 1}, {1, 300'000}, 6},
      {"the stated rate where the common step is too slow", {0}, 30, 0, {2, 1}, {1, 2}, 60},
      {"one point, open: a tick", {0}, 0, -6, {}, {1, 1'000'000}, 1},
      {"one point, open: the stated rate", {0}, 0, -12, {1000, 1}, {1, 1000}, 1},
      {"too fast", {0, 1, 2}, 3, -9, {}, {}, 0},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    CAPTURE capture;
    capture.bits = capture.wordsPerRow = 1;
    capture.stamps = row.stamps;
    capture.rows.resize(row.stamps.size());
    capture.end = row.end;
    capture.tickExponent = row.tickExponent;
    capture.statedRate = row.statedRate;
    CCaptureGrid finder;
    SAMPLE_GRID grid;
    const Status status = finder.Find(capture, RATIO{}, grid);
    EXPECT_EQ(Failed(status), !row.period.IsSet()) << finder.GetErrorText();
    EXPECT_EQ(Failed(status), !finder.GetErrorText().empty());
    EXPECT_EQ(grid.period, row.period);
    EXPECT_EQ(grid.vectors, row.vectors);
  }
}

TEST(CaptureGrid, AGivenPeriodPutsStampsOnTheNearestVector) {
  CAPTURE capture;
  capture.bits = capture.wordsPerRow = 1;
  capture.tickExponent = -9;
  capture.stamps = {100, 149, 251, 260, 349};
  capture.rows.resize(5);
  capture.end = 1101;
  CCaptureGrid finder;
  SAMPLE_GRID grid;
  ASSERT_EQ(finder.Find(capture, RATIO{1, 10'000'000}, grid), S_OK);
  EXPECT_EQ(grid.first, (std::vector<std::int64_t>{0, 2}));
  EXPECT_EQ(grid.point, (std::vector<std::size_t>{1, 4}));  // the last one of a vector counts
  EXPECT_EQ(grid.merged, 3);
  EXPECT_EQ(grid.vectors, 10);
  EXPECT_EQ(finder.Find(capture, RATIO{1, 1'000'000'000}, grid), E_FAIL);
  EXPECT_EQ(finder.Find(capture, RATIO{3, 1}, grid), E_FAIL);
}

// Several grids explain them: each plays within half a tick.
TEST(CaptureGrid, SearchesAFewChangesSpreadOverHours) {
  const CAPTURE capture = Sampled({0, 5, 9, 1'000'003, 77'000'000'001}, 77'000'000'005,
                                  RATIO{24'000'000, 1}, -10, Cut::Round);
  CCaptureGrid finder;
  SAMPLE_GRID grid;
  ASSERT_EQ(finder.Find(capture, RATIO{}, grid), S_OK) << finder.GetErrorText();
  std::vector<std::int64_t> times = capture.stamps;
  times.push_back(capture.end);
  EXPECT_TRUE(LiesOnGrid(times, ScaleByPowerOfTen(grid.period, 10)));
}

TEST(SamplePeriod, ParsesNumbersWithUnits) {
  const std::pair<const char*, RATIO> rows[] = {{"62.5ns", {1, 16'000'000}},
                                                {" 1.5 ms ", {3, 2000}},
                                                {"1e-6", {1, 1'000'000}},
                                                {"0.25", {1, 4}},
                                                {"24MHz", {1, 24'000'000}},
                                                {"44.1 kHz", {1, 44'100}},
                                                {"2E+0s", {2, 1}}};
  RATIO period;
  for (const auto& [text, expected] : rows) {
    EXPECT_EQ(ParsePeriod(text, period), S_OK) << text;
    EXPECT_EQ(period, expected) << text;
  }
  for (const char* text : {"", "ns", "0", "-1us", "1.2.3us", "1 parsec", "1e400", "nan", "1us x",
                           "99999999999999999999"}) {
    EXPECT_EQ(ParsePeriod(text, period), E_FAIL) << text;
  }
  EXPECT_EQ(FormatPeriod(RATIO{1, 24'000'000}), "41.6667 ns");
  EXPECT_EQ(PeriodFromSeconds(1e-08), (RATIO{1, 100'000'000}));
}

}  // namespace
}  // namespace quillpg
