#include "exchange/sample_period.h"

#include "base/text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <numeric>
#include <string_view>
#include <system_error>

namespace quillpg {
namespace {

struct UNIT {
  std::string_view text;
  int exponent;  // of ten, to seconds or hertz
  bool isRate;
};

constexpr UNIT kUnits[] = {
    {"s", 0, false},    {"ms", -3, false},  {"us", -6, false}, {"ns", -9, false},
    {"ps", -12, false}, {"fs", -15, false}, {"Hz", 0, true},   {"kHz", 3, true},
    {"KHz", 3, true},   {"MHz", 6, true},   {"GHz", 9, true},  {"", 0, false},
};

// Digits before and after the point and an exponent, as far as `text` holds them.
bool TakeDecimal(std::string_view& text, RATIO& value) {
  std::int64_t digits = 0;
  int exponent = 0;
  bool point = false;
  bool any = false;
  while (!text.empty()) {
    const char c = text.front();
    if (c == '.' && !point) {
      point = true;
    } else if (c >= '0' && c <= '9') {
      if (digits > (std::numeric_limits<std::int64_t>::max() - 9) / 10) return false;
      digits = digits * 10 + (c - '0');
      exponent -= point ? 1 : 0;
      any = true;
    } else {
      break;
    }
    text.remove_prefix(1);
  }
  if (!any || digits == 0) return false;
  if (!text.empty() && (text.front() == 'e' || text.front() == 'E')) {
    std::string_view rest = text.substr(1);
    if (rest.starts_with('+')) rest.remove_prefix(1);
    int stated = 0;
    const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), stated);
    if (error != std::errc() || stated < -100 || stated > 100) return false;
    exponent += stated;
    text = rest.substr(static_cast<std::size_t>(end - rest.data()));
  }
  value = ScaleByPowerOfTen(MakeRatio(digits, 1), exponent);
  return value.IsSet();
}

}  // namespace

RATIO MakeRatio(std::int64_t numerator, std::int64_t denominator) {
  if (numerator <= 0 || denominator <= 0) return RATIO{};
  const std::int64_t common = std::gcd(numerator, denominator);
  return RATIO{numerator / common, denominator / common};
}

RATIO ScaleByPowerOfTen(RATIO ratio, int exponent) {
  for (; exponent > 0 && ratio.IsSet(); --exponent) {
    const std::int64_t common = std::gcd(ratio.denominator, std::int64_t{10});
    ratio.denominator /= common;
    const std::int64_t factor = 10 / common;
    if (ratio.numerator > std::numeric_limits<std::int64_t>::max() / factor) return RATIO{};
    ratio.numerator *= factor;
  }
  if (exponent < 0) return Invert(ScaleByPowerOfTen(Invert(ratio), -exponent));
  return ratio;
}

RATIO Invert(RATIO ratio) {
  return ratio.IsSet() ? RATIO{ratio.denominator, ratio.numerator} : RATIO{};
}

RATIO Divide(RATIO a, RATIO b) {
  if (!a.IsSet() || !b.IsSet()) return RATIO{};
  const RATIO numerators = MakeRatio(a.numerator, b.numerator);
  const RATIO denominators = MakeRatio(b.denominator, a.denominator);
  constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();
  if (numerators.numerator > kLargest / denominators.numerator ||
      numerators.denominator > kLargest / denominators.denominator) {
    return RATIO{};
  }
  return MakeRatio(numerators.numerator * denominators.numerator,
                   numerators.denominator * denominators.denominator);
}

Status ParsePeriod(const std::string& text, RATIO& period) {
  std::string_view rest = Trim(text);
  RATIO value;
  if (!TakeDecimal(rest, value)) return E_FAIL;
  rest = Trim(rest);
  const UNIT* unit = std::find_if(std::begin(kUnits), std::end(kUnits),
                                  [rest](const UNIT& candidate) { return candidate.text == rest; });
  if (unit == std::end(kUnits)) return E_FAIL;
  value = ScaleByPowerOfTen(value, unit->exponent);
  if (unit->isRate) value = Invert(value);
  if (!value.IsSet()) return E_FAIL;
  period = value;
  return S_OK;
}

RATIO PeriodFromSeconds(double seconds) {
  RATIO period;
  if (!std::isfinite(seconds) || seconds <= 0) return period;
  (void)ParsePeriod(ShortestDecimal(seconds), period);  // not set when it has too many digits
  return period;
}

std::string FormatPeriod(RATIO period, int digits) {
  const double seconds = period.ToDouble();
  const UNIT* unit =
      std::find_if(std::begin(kUnits), std::end(kUnits), [seconds](const UNIT& candidate) {
        return candidate.text == "fs" || seconds >= 0.9999995 * std::pow(10.0, candidate.exponent);
      });
  char number[32];
  const auto result =
      std::to_chars(number, number + sizeof number, seconds * std::pow(10.0, -unit->exponent),
                    std::chars_format::general, digits);
  return std::string(number, result.ptr) + " " + std::string(unit->text);
}

}  // namespace quillpg
