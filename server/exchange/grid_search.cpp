#include "exchange/grid_search.h"

#include "exchange/tick_counter.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace quillpg {
namespace {

constexpr std::int64_t kMaxWork = 50'000'000;  // gaps looked at before the search gives up
constexpr double kSlack = 1e-9;                // of bounds, against rounding of doubles

// A number n x 10^exponent.
struct DECIMAL {
  std::int64_t number;
  int exponent;
};

RATIO ToRatio(DECIMAL decimal) {
  return ScaleByPowerOfTen(MakeRatio(decimal.number, 1), decimal.exponent);
}

struct CANDIDATE {
  std::int64_t digits;  // of the number that it is made from
  RATIO step;
};

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
    if (most - least > 1 + kSlack) return false;
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

// All gaps agree with these bounds: the times themselves, whose numbers of steps the gaps give,
// narrow them. Rates and periods that people set have few digits: of all steps within the bounds
// for rounded, for cut and for anyhow shifted times the roundest that explains the times is taken.
RATIO CGridSearch::Settle(BOUNDS bounds, RATIO ticksPerSecond) {
  m_work += static_cast<std::int64_t>(m_times.size());
  std::vector<CANDIDATE> candidates;
  for (const BOUNDS offset : {BOUNDS{-0.5, 0.5}, BOUNDS{0, 1}, BOUNDS{-1, 1}}) {
    const BOUNDS narrow = Narrow(bounds, offset);
    if (narrow.IsEmpty()) continue;
    const double perSecond = ticksPerSecond.ToDouble();
    const DECIMAL rate = FewestDigits(perSecond / narrow.most, perSecond / narrow.least);
    const DECIMAL period = FewestDigits(narrow.least, narrow.most);
    candidates.push_back({rate.number, Divide(ticksPerSecond, ToRatio(rate))});
    candidates.push_back({period.number, ToRatio(period)});
  }
  std::stable_sort(candidates.begin(), candidates.end(),
                   [](const CANDIDATE& a, const CANDIDATE& b) { return a.digits < b.digits; });
  for (const CANDIDATE& candidate : candidates) {
    if (candidate.step.IsSet() && LiesOnGrid(m_times, candidate.step)) return candidate.step;
  }
  return RATIO{};
}

// Bounds of the step when each time is its number of steps, rounded within `offset`.
CGridSearch::BOUNDS CGridSearch::Narrow(BOUNDS bounds, BOUNDS offset) const {
  double steps = 0;
  for (std::size_t i = 1; i < m_times.size() && !bounds.IsEmpty(); ++i) {
    const auto gap = static_cast<double>(m_times[i] - m_times[i - 1]);
    steps += std::nearbyint(gap * 2 / (bounds.least + bounds.most));
    const auto time = static_cast<double>(m_times[i]);
    bounds.least = std::max(bounds.least, (time + offset.least) / steps);
    bounds.most = std::min(bounds.most, (time + offset.most) / steps);
  }
  return bounds;
}

}  // namespace quillpg
