#include "exchange/grid_search.h"

#include "exchange/tick_counter.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace quillpg {
namespace {

constexpr std::int64_t kMaxWork = 50'000'000;  // gaps looked at before the search gives up
constexpr double kSlack = 1e-9;                // of bounds, against rounding of doubles
constexpr double kRestSlack = 1e-6;            // the same of rests, in ticks
constexpr int kHalvings = 20;                  // how closely the ends of bounds are looked for

// A number n x 10^exponent.
struct DECIMAL {
  std::int64_t number;
  int exponent;
};

RATIO ToRatio(DECIMAL decimal) {
  return ScaleByPowerOfTen(MakeRatio(decimal.number, 1), decimal.exponent);
}

// The number with the fewest digits in a range of positive numbers.
DECIMAL FewestDigits(double least, double most) {
  int exponent = static_cast<int>(std::ceil(std::log10(most)));
  for (;; --exponent) {
    const double scale = std::pow(10.0, exponent);
    const double middle = std::nearbyint((least + most) / 2 / scale);
    for (const double number : {middle, std::ceil(least / scale), std::floor(most / scale)}) {
      if (number >= 1 && number * scale >= least && number * scale <= most) {
        return {static_cast<std::int64_t>(number), exponent};
      }
    }
    if (middle > 1e15) return {static_cast<std::int64_t>(middle), exponent};
  }
}

}  // namespace

bool LiesOnGrid(std::span<const std::int64_t> times, RATIO step) {
  const double ticks = step.ToDouble();
  CTickCounter counter(step);
  std::int64_t steps = 0;
  double least = 0;
  double most = 0;
  for (const std::int64_t time : times) {
    const double nearest = std::nearbyint(static_cast<double>(time) / ticks);
    if (nearest >= static_cast<double>(std::numeric_limits<std::int64_t>::max())) return false;
    const auto next = static_cast<std::int64_t>(nearest);
    if (next < steps || (next == steps && time != 0)) return false;
    counter.Advance(next - steps);
    steps = next;
    const double rest = static_cast<double>(time - counter.Floor()) - counter.Fraction();
    least = std::min(least, rest);
    most = std::max(most, rest);
    // Cut or rounded with any shift, times stay within less than a tick; only halves, which some
    // round to even, reach both ends.
    const bool hasHalves = step.denominator % 2 == 0;
    if (hasHalves ? most - least > 1 + kSlack : most - least > 1 - kSlack) return false;
  }
  return true;
}

CGridSearch::CGridSearch(std::span<const std::int64_t> times) : m_times(times) {
  for (std::size_t i = 1; i < times.size(); ++i) m_gaps.push_back(times[i] - times[i - 1]);
  std::sort(m_gaps.begin(), m_gaps.end());
  m_gaps.erase(std::unique(m_gaps.begin(), m_gaps.end()), m_gaps.end());
}

RATIO CGridSearch::Find(double least, double most, RATIO ticksPerSecond) {
  m_work = 0;
  if (m_gaps.empty() || !(least <= most)) return RATIO{};
  std::vector<TRIAL> trials{MakeTrial({least, most}, 0)};
  while (!trials.empty() && m_work++ < kMaxWork) {
    TRIAL& trial = trials.back();
    if (trial.steps > trial.mostSteps) {
      trials.pop_back();
      continue;
    }
    const auto gap = static_cast<double>(m_gaps[trial.gap]);
    const auto steps = static_cast<double>(trial.steps++);  // fewest first: the longest step
    const BOUNDS bounds{std::max(trial.bounds.least, (gap - 1) / steps),
                        std::min(trial.bounds.most, (gap + 1) / steps)};
    if (bounds.IsEmpty()) continue;
    if (trial.gap + 1 < m_gaps.size()) {
      trials.push_back(MakeTrial(bounds, trial.gap + 1));
    } else if (const RATIO step = Settle(bounds, ticksPerSecond); step.IsSet()) {
      return step;
    }
  }
  return RATIO{};
}

// Both ends of a gap are rounded: together they are off by a tick at most.
CGridSearch::TRIAL CGridSearch::MakeTrial(BOUNDS bounds, std::size_t gap) const {
  const auto ticks = static_cast<double>(m_gaps[gap]);
  const double fewest = std::max(1.0, std::ceil((ticks - 1) / bounds.most - kSlack));
  const double most = std::floor((ticks + 1) / bounds.least + kSlack);
  return {bounds, gap, static_cast<std::int64_t>(fewest), static_cast<std::int64_t>(most)};
}

// All gaps agree with these bounds: the times themselves narrow them to the steps that explain all
// of them. Rates and periods that people set have few digits: the roundest one is taken.
RATIO CGridSearch::Settle(BOUNDS bounds, RATIO ticksPerSecond) {
  m_work += static_cast<std::int64_t>(m_times.size());
  if (!Number(bounds) || !Narrow(bounds)) return RATIO{};
  const double perSecond = ticksPerSecond.ToDouble();
  const DECIMAL rate = FewestDigits(perSecond / bounds.most, perSecond / bounds.least);
  const DECIMAL period = FewestDigits(bounds.least, bounds.most);
  const RATIO steps[] = {Divide(ticksPerSecond, ToRatio(rate)), ToRatio(period)};
  const bool rateFirst = rate.number <= period.number;
  for (const RATIO& step : {steps[rateFirst ? 0 : 1], steps[rateFirst ? 1 : 0]}) {
    if (step.IsSet() && LiesOnGrid(m_times, step)) return step;
  }
  return RATIO{};
}

// Gives each time its number of steps, which follows from the gaps, and narrows the bounds by it.
bool CGridSearch::Number(BOUNDS& bounds) {
  m_steps.assign(1, 0);
  for (std::size_t i = 1; i < m_times.size(); ++i) {
    const auto gap = static_cast<double>(m_times[i] - m_times[i - 1]);
    m_steps.push_back(m_steps.back() + std::nearbyint(gap * 2 / (bounds.least + bounds.most)));
    const auto time = static_cast<double>(m_times[i]);
    bounds.least = std::max(bounds.least, (time - 1) / m_steps.back());
    bounds.most = std::min(bounds.most, (time + 1) / m_steps.back());
    if (bounds.IsEmpty()) return false;
  }
  return true;
}

// What a step leaves of the times lies in a range whose width is convex in the step: from the
// narrowest on both sides are searched for where it grows beyond a tick.
bool CGridSearch::Narrow(BOUNDS& bounds) const {
  BOUNDS search = bounds;
  double inside = (search.least + search.most) / 2;
  for (REST rest = RestOf(inside); rest.width > 1 + kRestSlack; rest = RestOf(inside)) {
    (rest.grows ? search.most : search.least) = inside;
    const double middle = (search.least + search.most) / 2;
    if (middle <= search.least || middle >= search.most) return false;
    inside = middle;
  }
  for (double* end : {&bounds.least, &bounds.most}) {
    if (RestOf(*end).width <= 1 + kRestSlack) continue;
    double outside = *end;
    double good = inside;
    for (int halvings = 0; halvings < kHalvings; ++halvings) {
      const double middle = (outside + good) / 2;
      (RestOf(middle).width <= 1 + kRestSlack ? good : outside) = middle;
    }
    *end = good;
  }
  return true;
}

CGridSearch::REST CGridSearch::RestOf(double step) const {
  double least = 0;
  double most = 0;
  double leastSteps = 0;
  double mostSteps = 0;
  for (std::size_t i = 0; i < m_times.size(); ++i) {
    const double rest = static_cast<double>(m_times[i]) - m_steps[i] * step;
    if (rest < least) {
      least = rest;
      leastSteps = m_steps[i];
    }
    if (rest > most) {
      most = rest;
      mostSteps = m_steps[i];
    }
  }
  return {most - least, leastSteps > mostSteps};
}

}  // namespace quillpg
