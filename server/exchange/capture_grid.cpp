#include "exchange/capture_grid.h"

#include "base/guard.h"
#include "base/text.h"
#include "exchange/grid_search.h"
#include "instrument/mode_limits.h"

#include <cmath>
#include <numeric>
#include <set>
#include <span>

namespace quillpg {
namespace {

// A grid that gives more vectors is left for one with rounded stamps, if that one is evident.
constexpr double kSensibleVectors = 1 << 24;
constexpr double kMaxVectors = 1e15;
// The shortest step whose multiples are still told apart when they are rounded to ticks.
constexpr double kLeastRoundedStep = 2.5;
// Range of the clock, s.
constexpr double kLeastPeriod = HALF_LIMITS.minClockPeriod;
constexpr double kMostPeriod = FULL_LIMITS.maxClockPeriod;
constexpr int kLimitDigits = 8;  // all that the limits have

// Times of all change points and of the end, from the start on.
std::vector<std::int64_t> RelativeTimes(const CAPTURE& capture) {
  std::vector<std::int64_t> times(capture.stamps);
  if (!capture.EndsWithChanges()) times.push_back(capture.end);
  const std::int64_t start = times.front();
  for (std::int64_t& time : times) time -= start;
  return times;
}

RATIO CommonStep(std::span<const std::int64_t> times) {
  std::int64_t step = 0;
  for (const std::int64_t time : times) {
    step = std::gcd(step, time);
    if (step == 1) break;
  }
  return MakeRatio(step, 1);
}

// The longest step of which all times are rounded multiples; not set without one.
RATIO FindRoundedStep(const CAPTURE& capture, std::span<const std::int64_t> times) {
  const double tick = std::pow(10.0, capture.tickExponent);
  const double least = std::max(kLeastRoundedStep, kLeastPeriod / tick);
  const double most = kMostPeriod / tick;
  const RATIO step =
      CGridSearch(times).Find(least, most, ScaleByPowerOfTen(RATIO{1, 1}, -capture.tickExponent));
  return CanClock(ScaleByPowerOfTen(step, capture.tickExponent)) ? step : RATIO{};
}

// True when times do not lie on the step's grid by chance or by being periodic themselves.
bool IsEvident(std::span<const std::int64_t> times, RATIO step) {
  constexpr double kTellingStep = 10;  // ticks: a tenth of all times lie on it by chance
  constexpr std::size_t kTellingGaps = 16;
  std::set<std::int64_t> gaps;
  for (std::size_t i = 1; i < times.size() && gaps.size() < kTellingGaps; ++i) {
    gaps.insert(times[i] - times[i - 1]);
  }
  return step.IsSet() && step.ToDouble() >= kTellingStep && gaps.size() == kTellingGaps;
}

// The step in ticks, not set where a period the clock can play is not found.
RATIO FindStep(const CAPTURE& capture, std::span<const std::int64_t> times) {
  const int exponent = capture.tickExponent;
  const RATIO ticksPerSecond = ScaleByPowerOfTen(RATIO{1, 1}, -exponent);
  const auto canClock = [exponent](RATIO step) {
    return CanClock(ScaleByPowerOfTen(step, exponent));
  };
  const RATIO stated = Divide(ticksPerSecond, capture.statedRate);
  RATIO common = CommonStep(times);
  if (!common.IsSet()) common = stated.IsSet() ? stated : RATIO{1, 1};  // a single change point
  const bool commonFits = canClock(common);
  if (stated.IsSet() && canClock(stated) && LiesOnGrid(times, stated)) {
    return commonFits && common.ToDouble() >= stated.ToDouble() ? common : stated;
  }
  const double vectors = static_cast<double>(times.back()) / common.ToDouble();
  if (commonFits && vectors <= kSensibleVectors) return common;
  const RATIO rounded = FindRoundedStep(capture, times);
  return commonFits && !IsEvident(times, rounded) ? common : rounded;
}

std::int64_t NearestVector(std::int64_t time, RATIO step) {
  if (step.denominator == 1) {
    return time / step.numerator + (time % step.numerator >= (step.numerator + 1) / 2 ? 1 : 0);
  }
  return std::llround(static_cast<double>(time) / step.ToDouble());
}

void PlacePoints(std::span<const std::int64_t> times, const CAPTURE& capture, RATIO step,
                 SAMPLE_GRID& result) {
  SAMPLE_GRID grid;
  grid.period = ScaleByPowerOfTen(step, capture.tickExponent);
  const std::size_t points = capture.stamps.size();
  grid.first.reserve(points);
  grid.point.reserve(points);
  for (std::size_t i = 0; i < points; ++i) {
    const std::int64_t vector = NearestVector(times[i], step);
    if (!grid.first.empty() && grid.first.back() == vector) {
      grid.point.back() = i;
      ++grid.merged;
    } else {
      grid.first.push_back(vector);
      grid.point.push_back(i);
    }
  }
  // The last sample has its period even where nothing follows it.
  grid.vectors = std::max(NearestVector(times.back(), step), grid.first.back() + 1);
  result = std::move(grid);
}

}  // namespace

bool CanClock(RATIO period, ChannelMode mode) {
  const double seconds = period.ToDouble();
  return seconds >= LimitsOf(mode).minClockPeriod && seconds <= LimitsOf(mode).maxClockPeriod;
}

bool CanClock(RATIO period) {
  return CanClock(period, ChannelMode::Full) || CanClock(period, ChannelMode::Half);
}

Status CCaptureGrid::Find(const CAPTURE& capture, RATIO period, SAMPLE_GRID& grid) {
  m_errorText.clear();
  if (capture.stamps.empty()) return E_FAIL;
  return GuardAllocation(
      [&]() -> Status {
        const std::vector<std::int64_t> times = RelativeTimes(capture);
        const std::string range =
            "the clock plays " + FormatPeriod(PeriodFromSeconds(kLeastPeriod), kLimitDigits) +
            " to " + FormatPeriod(PeriodFromSeconds(kMostPeriod), kLimitDigits);
        if (period.IsSet() && !CanClock(period)) {
          m_errorText = "a period of " + FormatPeriod(period) + " cannot be played: " + range;
          return E_FAIL;
        }
        RATIO step = ScaleByPowerOfTen(period, -capture.tickExponent);
        if (!step.IsSet()) step = FindStep(capture, times);
        if (!step.IsSet()) {
          const RATIO common = ScaleByPowerOfTen(CommonStep(times), capture.tickExponent);
          m_errorText = "no sample period fits the time stamps";
          if (common.IsSet()) m_errorText += ", whose common step is " + FormatPeriod(common);
          m_errorText += ": " + range;
          return E_FAIL;
        }
        if (static_cast<double>(times.back()) / step.ToDouble() > kMaxVectors) {
          m_errorText = "the capture is too long for its period";
          return PG_E_LIMIT;
        }
        PlacePoints(times, capture, step, grid);
        return S_OK;
      },
      E_OUTOFMEMORY);
}

Status CCaptureGrid::FindCoarser(const CAPTURE& capture, SAMPLE_GRID& grid) {
  if (capture.stamps.empty()) return E_FAIL;
  return GuardAllocation(
      [&]() -> Status {
        const std::vector<std::int64_t> times = RelativeTimes(capture);
        const RATIO step = FindRoundedStep(capture, times);
        if (!step.IsSet() || step.ToDouble() <= CommonStep(times).ToDouble()) return E_FAIL;
        PlacePoints(times, capture, step, grid);
        return S_OK;
      },
      E_OUTOFMEMORY);
}

}  // namespace quillpg
