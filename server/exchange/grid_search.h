#pragma once

#include "exchange/sample_period.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace quillpg {

/// True when every time is a whole number of steps, rounded or cut to a tick with one rule for all:
/// then the times lie on the step's grid although the ticks cannot hold it. `times` rise from 0.
bool LiesOnGrid(std::span<const std::int64_t> times, RATIO step);

/// Looks for the longest step, in ticks, of which all times are rounded multiples.
///
/// The shortest gap between two times is a small unknown number of steps; each such number bounds
/// the step, and every further gap narrows the bounds or rules them out.
class CGridSearch {
 public:
  /// `times` in ticks, rising strictly from 0; they stay the caller's.
  explicit CGridSearch(std::span<const std::int64_t> times);

  /// A step of `least` to `most` ticks; not set when there is none. `ticksPerSecond` is what the
  /// step is made a round rate or period by, where the times leave a choice.
  RATIO Find(double least, double most, RATIO ticksPerSecond);

 private:
  struct BOUNDS {
    double least;
    double most;
    bool IsEmpty() const { return !(least <= most); }
  };
  // A gap whose number of steps is being tried, and the bounds that held before it.
  struct TRIAL {
    BOUNDS bounds;
    std::size_t gap;
    std::int64_t steps;
    std::int64_t mostSteps;
  };
  // Width of the range in which the times' distances from the grid lie; it grows with the step.
  struct REST {
    double width;
    bool grows;
  };

  TRIAL MakeTrial(BOUNDS bounds, std::size_t gap) const;
  RATIO Settle(BOUNDS bounds, RATIO ticksPerSecond);
  bool Number(BOUNDS& bounds);
  bool Narrow(BOUNDS& bounds) const;
  REST RestOf(double step) const;

  std::span<const std::int64_t> m_times;
  std::vector<std::int64_t> m_gaps;  // distinct, rising
  std::vector<double> m_steps;       // for each time, as the bounds at hand number them
  std::int64_t m_work = 0;
};

}  // namespace quillpg
