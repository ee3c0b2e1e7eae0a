#pragma once

#include "quillpg/api.h"
#include "quillpg/result_codes.h"

#include <cstdint>
#include <string>

namespace quillpg {

/// A positive fraction in lowest terms. Periods and steps are kept this way since a period such as
/// 1/24 MHz has no exact decimal form; 0/1 stands for "none".
struct RATIO {
  std::int64_t numerator = 0;
  std::int64_t denominator = 1;

  bool IsSet() const { return numerator > 0 && denominator > 0; }
  double ToDouble() const {
    return static_cast<double>(numerator) / static_cast<double>(denominator);
  }
  bool operator==(const RATIO&) const = default;
};

/// numerator / denominator in lowest terms; not set unless both are positive.
QUILLPG_API RATIO MakeRatio(std::int64_t numerator, std::int64_t denominator);

/// `ratio` x 10^exponent; not set when the result does not fit into 64 bits.
QUILLPG_API RATIO ScaleByPowerOfTen(RATIO ratio, int exponent);

/// 1 / ratio; not set for a ratio that is not set.
QUILLPG_API RATIO Invert(RATIO ratio);

/// a / b; not set when one of them is not set or the result does not fit into 64 bits.
QUILLPG_API RATIO Divide(RATIO a, RATIO b);

/// Reads a period: a decimal number with a unit of time ("62.5ns", "1 us"), of frequency ("24MHz",
/// which no decimal period can state exactly) or without a unit, in seconds. E_FAIL, with `period`
/// untouched, for anything else and for zero.
QUILLPG_API Status ParsePeriod(const std::string& text, RATIO& period);

/// The shortest decimal number of seconds that is this double, as a fraction: 1e-08 gives
/// 1/100000000.
QUILLPG_API RATIO PeriodFromSeconds(double seconds);

/// For people, with so many significant digits at most: "62.5 ns", "41.6667 ns".
QUILLPG_API std::string FormatPeriod(RATIO period, int digits = 6);

}  // namespace quillpg
