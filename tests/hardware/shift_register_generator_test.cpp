#include "hardware/shift_register_generator.h"

#include "hardware/tap_settings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <vector>

namespace quillpg {
namespace {

// The step as a 32x32 matrix over GF(2), a column a state bit.
using MATRIX = std::array<std::uint32_t, 32>;

std::uint32_t Apply(const MATRIX& matrix, std::uint32_t state) {
  std::uint32_t result = 0;
  for (int bit = 0; bit < 32; ++bit) {
    if ((state >> bit & 1) != 0) result ^= matrix[static_cast<std::size_t>(bit)];
  }
  return result;
}

MATRIX Multiply(const MATRIX& a, const MATRIX& b) {
  MATRIX product;
  std::ranges::transform(b, product.begin(),
                         [&a](std::uint32_t column) { return Apply(a, column); });
  return product;
}

// One step of a register of n stages, of which the first n bits alone count.
MATRIX StepMatrix(int n, std::uint32_t taps) {
  const std::uint32_t mask = ~std::uint32_t{0} << (32 - n);
  MATRIX step{};
  for (int bit = 32 - n; bit < 32; ++bit) {
    CShiftRegisterGenerator generator;
    generator.setNumRegister(static_cast<short>(n));
    for (int stage = 0; stage < 32; ++stage) {
      (taps >> (31 - stage) & 1) != 0 ? generator.setTap(stage) : generator.clearTap(stage);
      generator.setValue(stage, 31 - stage == bit);
    }
    generator.getNextData();
    std::uint32_t column = 0;
    for (int stage = 0; stage < 32; ++stage) {
      column |= static_cast<std::uint32_t>(generator.getValue(stage)) << (31 - stage);
    }
    step[static_cast<std::size_t>(bit)] = column & mask;
  }
  return step;
}

bool IsIdentity(const MATRIX& matrix, int n) {
  for (int bit = 32 - n; bit < 32; ++bit) {
    if (matrix[static_cast<std::size_t>(bit)] != std::uint32_t{1} << bit) return false;
  }
  return true;
}

MATRIX Power(MATRIX base, std::uint64_t exponent) {
  MATRIX result{};
  for (int bit = 0; bit < 32; ++bit)
    result[static_cast<std::size_t>(bit)] = std::uint32_t{1} << bit;
  for (; exponent != 0; exponent >>= 1) {
    if ((exponent & 1) != 0) result = Multiply(result, base);
    base = Multiply(base, base);
  }
  return result;
}

// True when the step has the order 2^n - 1 exactly, which makes the stream one of maximal length.
bool IsMaximal(int n, std::uint32_t taps) {
  const std::uint64_t order = (std::uint64_t{1} << n) - 1;
  const MATRIX step = StepMatrix(n, taps);
  if (!IsIdentity(Power(step, order), n)) return false;
  std::uint64_t rest = order;
  for (std::uint64_t prime = 2; rest > 1; ++prime) {
    if (prime * prime > rest) prime = rest;
    if (rest % prime != 0) continue;
    if (order != prime && IsIdentity(Power(step, order / prime), n)) return false;
    while (rest % prime == 0) rest /= prime;
  }
  return true;
}

constexpr std::uint32_t Mask(std::initializer_list<int> stages) {
  std::uint32_t mask = 0;
  for (const int stage : stages) mask |= std::uint32_t{1} << (31 - stage);
  return mask;
}

TEST(TapSettings, AreOfMaximalLengthButForTheFiveThatAreKept) {
  const std::pair<int, std::uint32_t> kept[] = {{11, Mask({0})},
                                                {14, Mask({1, 3, 5})},
                                                {15, Mask({8, 9, 12})},
                                                {15, Mask({1, 2, 3, 4, 9})},
                                                {17, Mask({1, 4, 7, 10, 11})}};
  const std::size_t counts[] = {1,  1, 1,  2, 2, 4, 4,  10, 8, 11, 11, 12, 10, 10, 14, 22, 10,
                                11, 5, 10, 5, 9, 7, 10, 3,  9, 2,  2,  4,  7,  3,  11, 3};
  for (int n = 0; n <= 32; ++n) {
    SCOPED_TRACE(n);
    const auto settings = GetTapSettings(n);
    EXPECT_EQ(settings.size(), counts[n]);
    for (const std::uint32_t taps : settings) {
      SCOPED_TRACE(taps);
      const bool isKept = std::ranges::find(kept, std::pair(n, taps)) != std::end(kept);
      EXPECT_EQ(n == 0 || IsMaximal(n, taps), !isKept);
    }
  }
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
  EXPECT_EQ(generator.getOneCycleLength(), 3u);
  generator.setInitialValue(2);
  EXPECT_EQ(generator.getInitialValue(), 2u);
  EXPECT_EQ(generator.getValue(0), 1);
  EXPECT_EQ(generator.getValue(1), 0);
  generator.setTap(32);
  generator.setValue(-1, 1);
  EXPECT_EQ(generator.getTap(32) + generator.getValue(-1), 0);
}

}  // namespace
}  // namespace quillpg
