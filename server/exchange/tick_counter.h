#pragma once

#include "exchange/sample_period.h"

#include <cstdint>

namespace quillpg {

/// Multiples of a fractional step, exact for as many steps as 64 bits of ticks hold.
class CTickCounter {
 public:
  /// `step` in ticks, set.
  explicit CTickCounter(RATIO step)
      : m_denominator(static_cast<std::uint64_t>(step.denominator)),
        m_step{static_cast<std::uint64_t>(step.numerator / step.denominator),
               static_cast<std::uint64_t>(step.numerator % step.denominator)} {}

  /// Goes on by `steps` steps, not negative.
  void Advance(std::int64_t steps) {
    PART step = m_step;
    for (auto left = static_cast<std::uint64_t>(steps); left != 0; left >>= 1) {
      if (left & 1) m_sum = Add(m_sum, step);
      step = Add(step, step);
    }
  }

  /// The sum, cut or rounded (halves up) to a tick.
  std::int64_t Floor() const { return static_cast<std::int64_t>(m_sum.ticks); }
  std::int64_t Rounded() const {
    return Floor() + (m_sum.part >= m_denominator - m_sum.part ? 1 : 0);
  }
  /// What Floor cuts off, in ticks.
  double Fraction() const {
    return static_cast<double>(m_sum.part) / static_cast<double>(m_denominator);
  }

 private:
  struct PART {
    std::uint64_t ticks = 0;
    std::uint64_t part = 0;  // below the denominator
  };

  PART Add(PART a, PART b) const {
    const std::uint64_t part = a.part + b.part;  // both below 2^63
    const bool carry = part >= m_denominator;
    return {a.ticks + b.ticks + (carry ? 1 : 0), carry ? part - m_denominator : part};
  }

  std::uint64_t m_denominator;
  PART m_step;
  PART m_sum;
};

}  // namespace quillpg
