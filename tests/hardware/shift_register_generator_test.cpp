#include "hardware/shift_register_generator.h"

#include "hardware/tap_settings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace quillpg {
namespace {

// Polynomials over GF(2) of a degree below n, a bit a power, modulo x^n + `rest`.
std::uint64_t Multiply(std::uint64_t a, std::uint64_t b, int n, std::uint64_t rest) {
  std::uint64_t product = 0;
  for (int bit = n - 1; bit >= 0; --bit) {
    product <<= 1;
    if ((product >> n & 1) != 0) product ^= std::uint64_t{1} << n | rest;
    if ((b >> bit & 1) != 0) product ^= a;
  }
  return product;
}

bool IsPowerOfXOne(std::uint64_t exponent, int n, std::uint64_t rest) {
  std::uint64_t result = 1;
  std::uint64_t base = n == 1 ? rest : 2;  // x
  for (; exponent != 0; exponent >>= 1) {
    if ((exponent & 1) != 0) result = Multiply(result, base, n, rest);
    base = Multiply(base, base, n, rest);
  }
  return result == 1;
}

// True when x has the order 2^n - 1 exactly, which makes the stream one of maximal length. Stage r
// and the last one feed back: out(t) = out(t - n) + sum of out(t - r - 1).
bool IsMaximal(int n, std::uint32_t taps) {
  const std::uint64_t rest = (taps >> (32 - n)) ^ std::uint64_t{1};
  const std::uint64_t order = (std::uint64_t{1} << n) - 1;
  if (!IsPowerOfXOne(order, n, rest)) return false;
  std::uint64_t left = order;
  for (std::uint64_t prime = 2; left > 1; ++prime) {
    if (prime * prime > left) prime = left;
    if (left % prime != 0) continue;
    if (order != prime && IsPowerOfXOne(order / prime, n, rest)) return false;
    while (left % prime == 0) left /= prime;
  }
  return true;
}

TEST(TapSettings, AreOfMaximalLengthButForTheFiveThatAreKept) {
  const std::pair<int, std::uint32_t> kept[] = {
      {11, 0x80000000}, {14, 0x54000000}, {15, 0x00C80000}, {15, 0x78400000}, {17, 0x49300000}};
  std::size_t count = 0;
  for (int n = 0; n <= 32; ++n) {
    SCOPED_TRACE(n);
    const auto settings = GetTapSettings(n);
    count += settings.size();
    for (const std::uint32_t taps : settings) {
      SCOPED_TRACE(taps);
      const bool isKept = std::ranges::find(kept, std::pair(n, taps)) != std::end(kept);
      EXPECT_EQ(n == 0 || IsMaximal(n, taps), !isKept);
    }
  }
  EXPECT_EQ(count, 234u);
  EXPECT_TRUE(GetTapSettings(33).empty());
  EXPECT_TRUE(GetTapSettings(-1).empty());
}

TEST(ShiftRegisterGenerator, WordsAreTheStepsOneByOne) {
  for (int n = 1; n <= 32; ++n) {
    for (const std::int64_t count : {0, 1, 63, 64, 65, 640, 2048, 2112, 5000, 300000}) {
      SCOPED_TRACE(testing::Message() << n << " stages, " << count << " bits");
      CShiftRegisterGenerator fast;
      fast.setNumRegister(static_cast<short>(n));
      fast.setMaximumTapSetting(1);
      if (n % 3 == 1) fast.setTap(n - 1);  // fed back twice: cancels
      fast.setInitialValue(0x9E3779B9u | 1u);
      CShiftRegisterGenerator plain = fast;
      std::vector<std::uint64_t> words(static_cast<std::size_t>(count + 63) / 64,
                                       ~std::uint64_t{0});
      fast.getNextWords(words, -1);
      fast.getNextWords({}, count);  // no room: neither takes a step
      fast.getNextWords(words, count);
      bool same = true;
      for (std::int64_t i = 0; i < count; ++i) {
        const auto word = words[static_cast<std::size_t>(i / 64)];
        same = same && static_cast<int>(word >> (i % 64) & 1) == plain.getNextData();
      }
      EXPECT_TRUE(same);
      for (int stage = 0; stage < 32; ++stage)
        EXPECT_EQ(fast.getValue(stage), plain.getValue(stage));
    }
  }
}

TEST(ShiftRegisterGenerator, KeepsItsOddities) {
  CShiftRegisterGenerator generator;
  EXPECT_EQ(generator.getNumRegister(), 9);
  EXPECT_EQ(generator.getTap(3), 1);
  generator.setNumRegister(40);
  EXPECT_EQ(generator.getNumRegister(), 32);
  EXPECT_EQ(generator.getOneCycleLength(), 0u);
  EXPECT_EQ(generator.getTap(3), 1);  // a new length does not load taps
  generator.setNumRegister(2);
  generator.setMaximumTapSetting(1);
  generator.setMaximumTapSetting(0);  // the only setting comes again
  EXPECT_EQ(generator.getTap(0), 1);
}

}  // namespace
}  // namespace quillpg
