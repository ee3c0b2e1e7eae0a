#pragma once

#include "quillpg/api.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace quillpg {

/// Pseudo-random bits from a linear feedback shift register of 1 to 32 stages. Stage 0 is the most
/// significant bit of the value, stage r is bit 31 - r; a step shifts towards higher stages and the
/// last stage always takes part in the feedback, tapped or not.
///
/// A new generator has 9 stages, all ones, and the first tap setting for 9 stages. Operations on a
/// stage outside 0 to 31 change nothing and read 0.
class QUILLPG_API CShiftRegisterGenerator {
 public:
  CShiftRegisterGenerator();

  /// Number of stages, 33 and more count as 32, less than 1 as 1. The taps stay as they are
  /// (deliberate): load a setting afterwards.
  void setNumRegister(short count);
  int getNumRegister() const { return m_registers; }

  /// Loads the first tap setting of the register's length (`reset` non-zero) or the next one, which
  /// after the last is the first again.
  void setMaximumTapSetting(int reset);

  void setTap(int stage);
  void clearTap(int stage);
  void toggleTap(int stage);
  int getTap(int stage) const;

  void setValue(int stage, int bit);
  int getValue(int stage) const;
  /// Sets all 32 bits, also those behind the last stage.
  void setValueAll(int bit);

  /// The low n bits of `value` fill stages 0 to n - 1. The value itself is kept for
  /// getInitialValue, unshifted.
  void setInitialValue(std::uint32_t value);
  std::uint32_t getInitialValue() const { return m_initialValue; }

  /// 2^n - 1; 0 for n = 32, where the shift count wraps (kept so).
  std::uint32_t getOneCycleLength() const;

  /// One step; the bit that leaves the register.
  int getNextData();

  /// The next `count` bits at once, bit i of the stream in bit i % 64 of words[i / 64]; unused bits
  /// of the last word are 0. The same bits, and the same register afterwards, as `count` steps.
  /// As many steps as there is room for; a negative `count` takes none.
  void getNextWords(std::span<std::uint64_t> words, std::int64_t count);

 private:
  /// What feeds back: the distances, in steps, between a bit and the earlier ones it is the sum of.
  struct TERMS {
    std::array<std::size_t, 32> distances{};
    std::size_t count = 0;
  };

  TERMS FeedbackTerms() const;
  std::uint64_t StepBits(int count);
  void MakeFirstWords(const TERMS& terms, std::uint64_t* words) const;
  static void MakeRun(const TERMS& terms, std::uint64_t* words, std::size_t run,
                      std::size_t length);
  void TakeUp(const TERMS& terms, std::uint64_t window);

  std::uint32_t m_value = 0xFFFFFFFFu;
  std::uint32_t m_taps = 0;
  std::uint32_t m_initialValue = 0;
  int m_registers = 9;
  int m_tapSetting = 0;
};

}  // namespace quillpg
