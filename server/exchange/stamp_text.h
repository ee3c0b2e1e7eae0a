#pragma once

#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace quillpg {

/// A stamp that only grows, as the line "#123456" with its end. The last three digits come from a
/// table and the ones before them from the stamp before, which is cheaper than a conversion for
/// every vector.
class CStampText {
 public:
  static constexpr std::size_t MAX_LENGTH = 32;

  /// `step` is at least 0; the sum must stay below 2^63.
  void Add(std::int64_t step) {
    m_low += step;
    if (m_low < kLow) return;
    m_high += m_low / kLow;
    m_low %= kLow;
    m_length = static_cast<std::size_t>(
        std::to_chars(m_text.data() + 1, m_text.data() + m_text.size(), m_high).ptr -
        m_text.data());
  }

  /// Writes the line and returns the place behind it; `to` has room for MAX_LENGTH characters.
  char* CopyTo(char* to) const {
    if (m_high == 0) {
      *to = '#';
      to = std::to_chars(to + 1, to + MAX_LENGTH, m_low).ptr;
      *to = '\n';
      return to + 1;
    }
    std::memcpy(to, m_text.data(), m_text.size());  // a fixed size is two moves
    std::memcpy(to + m_length, kLastDigits[static_cast<std::size_t>(m_low)].data(), 4);
    return to + m_length + 4;
  }

 private:
  static constexpr std::int64_t kLow = 1000;
  static constexpr auto kLastDigits = [] {
    std::array<std::array<char, 4>, kLow> lines{};
    for (std::size_t i = 0; i < lines.size(); ++i) {
      lines[i] = {static_cast<char>('0' + i / 100), static_cast<char>('0' + i / 10 % 10),
                  static_cast<char>('0' + i % 10), '\n'};
    }
    return lines;
  }();

  std::int64_t m_high = 0;
  std::int64_t m_low = 0;
  std::array<char, 24> m_text = {'#'};  // "#" and the digits of m_high
  std::size_t m_length = 1;
};

}  // namespace quillpg
