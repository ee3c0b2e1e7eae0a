#include "instrument/radix.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstring>
#include <vector>

namespace quillpg {

namespace {

constexpr unsigned kWordBits = 64;
constexpr std::uint64_t kLowHalf = 0xFFFFFFFFu;
// Wide decimals move nine digits at a time: the largest power of ten in 32 bits.
constexpr std::uint64_t kDecimalChunk = 1000000000u;
constexpr unsigned kDecimalChunkDigits = 9;
constexpr std::uint64_t kEightDigits = 100000000u;

struct DIGIT_RULE {
  unsigned bitsPerDigit;
  unsigned digitsPerChunk;
};

constexpr DIGIT_RULE kHexRule = {4, 8};
constexpr DIGIT_RULE kOctalRule = {3, 10};
constexpr DIGIT_RULE kBinaryRule = {1, 32};

constexpr char kDigitChars[] = "0123456789ABCDEF";
constexpr std::uint8_t kNoDigit = 0xFF;

constexpr std::array<std::uint8_t, 256> MakeDigitTable() {
  std::array<std::uint8_t, 256> table{};
  for (auto& digit : table) digit = kNoDigit;
  for (unsigned i = 0; i < 10; ++i) table['0' + i] = static_cast<std::uint8_t>(i);
  for (unsigned i = 0; i < 6; ++i) {
    table['A' + i] = table['a' + i] = static_cast<std::uint8_t>(10 + i);
  }
  return table;
}

constexpr std::array<std::uint64_t, 20> MakePowersOfTen() {
  std::array<std::uint64_t, 20> powers{};
  std::uint64_t power = 1;
  for (auto& entry : powers) {
    entry = power;
    power *= 10;
  }
  return powers;
}

constexpr std::array<std::uint64_t, 20> kPowersOfTen = MakePowersOfTen();

// The two digits of every number below Base x Base.
template <std::size_t Base>
constexpr std::array<char, 2 * Base * Base> MakeDigitPairs() {
  std::array<char, 2 * Base * Base> pairs{};
  for (std::size_t i = 0; i < pairs.size() / 2; ++i) {
    pairs[2 * i] = kDigitChars[i / Base];
    pairs[2 * i + 1] = kDigitChars[i % Base];
  }
  return pairs;
}

constexpr auto kDecimalPairs = MakeDigitPairs<10>();
constexpr auto kHexPairs = MakeDigitPairs<16>();

constexpr std::array<std::uint8_t, 256> kDigits = MakeDigitTable();

unsigned DigitOf(char c) { return kDigits[static_cast<unsigned char>(c)]; }

// Digits of octal and binary.
template <unsigned BitsPerDigit>
void FormatPowerOfTwo(std::span<const std::uint64_t> value, int bits, std::string& text) {
  constexpr std::uint64_t kMask = (1u << BitsPerDigit) - 1;
  const auto valueBits = static_cast<std::size_t>(std::max(bits, 0));
  const std::size_t digits = (valueBits + BitsPerDigit - 1) / BitsPerDigit;
  text.resize(digits);
  char* end = text.data() + digits;
  for (std::size_t bit = 0; bit < digits * BitsPerDigit; bit += BitsPerDigit) {
    const std::size_t word = bit / kWordBits;
    const unsigned shift = bit % kWordBits;
    std::uint64_t digit = value[word] >> shift;
    if (shift + BitsPerDigit > kWordBits && word + 1 < value.size()) {
      digit |= value[word + 1] << (kWordBits - shift);
    }
    *--end = kDigitChars[digit & kMask];
  }
}

void FormatHex(std::span<const std::uint64_t> value, int bits, std::string& text) {
  const std::size_t digits = (static_cast<std::size_t>(std::max(bits, 0)) + 3) / 4;
  text.resize(digits);
  char* end = text.data() + digits;
  for (std::size_t byte = 0; byte < digits / 2; ++byte) {
    end -= 2;
    std::memcpy(end, &kHexPairs[2 * (value[byte / 8] >> byte % 8 * 8 & 0xFF)], 2);
  }
  if (digits % 2 != 0) *--end = kDigitChars[value[digits / 16] >> digits / 2 % 8 * 8 & 0xF];
}

// Divides the value in place and gives the remainder.
std::uint64_t DivideByChunk(std::span<std::uint64_t> value) {
  std::uint64_t rest = 0;
  for (std::size_t i = value.size(); i-- > 0;) {
    const std::uint64_t high = rest << 32 | value[i] >> 32;
    const std::uint64_t low = (high % kDecimalChunk) << 32 | (value[i] & kLowHalf);
    value[i] = (high / kDecimalChunk) << 32 | low / kDecimalChunk;
    rest = low % kDecimalChunk;
  }
  return rest;
}

void FormatWideDecimal(std::span<const std::uint64_t> value, std::string& text) {
  std::vector<std::uint64_t> quotient(value.begin(), value.end());
  text.clear();
  while (!quotient.empty()) {
    std::uint64_t chunk = DivideByChunk(quotient);
    for (unsigned i = 0; i < kDecimalChunkDigits; ++i, chunk /= 10) {
      text.push_back(static_cast<char>('0' + chunk % 10));
    }
    while (!quotient.empty() && quotient.back() == 0) quotient.pop_back();
  }
  while (text.size() > 1 && text.back() == '0') text.pop_back();
  std::ranges::reverse(text);
}

// Writes the digits of a number below 100 in front of `end`.
char* WriteTwoDigits(char* end, std::size_t number) {
  std::memcpy(end - 2, &kDecimalPairs[2 * number], 2);
  return end - 2;
}

char* WriteFourDigits(char* end, unsigned number) {
  return WriteTwoDigits(WriteTwoDigits(end, number % 100), number / 100);
}

std::size_t CountDigits(std::uint64_t value) {
  // 1233 / 4096 is log10(2) closely enough; the guess is one too low for some values.
  const auto guess = static_cast<std::size_t>(std::bit_width(value | 1)) * 1233 >> 12;
  return guess + (value >= kPowersOfTen[guess] ? 1 : 0);
}

// The value in eight digits at a time: the parts do not wait for one another.
void FormatDecimal(std::uint64_t value, std::string& text) {
  text.resize(std::max<std::size_t>(CountDigits(value), 1));
  char* end = text.data() + text.size();
  for (; value >= kEightDigits; value /= kEightDigits) {
    const auto part = static_cast<unsigned>(value % kEightDigits);
    end = WriteFourDigits(WriteFourDigits(end, part % 10000), part / 10000);
  }
  auto rest = static_cast<unsigned>(value);
  for (; rest >= 100; rest /= 100) end = WriteTwoDigits(end, rest % 100);
  if (rest >= 10) {
    WriteTwoDigits(end, rest);
  } else {
    *--end = kDigitChars[rest];
  }
}

std::uint64_t ConvertChunk(std::string_view chunk, unsigned bitsPerDigit) {
  std::uint64_t number = 0;
  for (const char c : chunk) {
    const unsigned digit = DigitOf(c);
    if (digit >> bitsPerDigit != 0) break;
    number = number << bitsPerDigit | digit;
  }
  return number;
}

void ParseChunks(std::string_view text, unsigned bits, const DIGIT_RULE& rule,
                 std::span<std::uint64_t> value) {
  const unsigned chunkBits = rule.bitsPerDigit * rule.digitsPerChunk;
  for (std::size_t position = 0; position < bits && !text.empty(); position += chunkBits) {
    const std::size_t length = std::min<std::size_t>(text.size(), rule.digitsPerChunk);
    const std::uint64_t number = ConvertChunk(text.substr(text.size() - length), rule.bitsPerDigit);
    text.remove_suffix(length);
    const std::size_t word = position / kWordBits;
    const unsigned shift = position % kWordBits;
    value[word] |= number << shift;
    if (shift != 0 && word + 1 < value.size()) value[word + 1] |= number >> (kWordBits - shift);
  }
}

// Cuts the text to its rightmost `digits` decimal digits. Those are all that counts for a value of
// as many bits, since 2^n divides 10^n.
std::string_view LastDigits(std::string_view text, std::size_t digits) {
  if (text.size() <= digits) return text;
  std::size_t start = text.size();
  for (std::size_t found = 0; start > 0 && found < digits;) {
    --start;
    if (DigitOf(text[start]) < 10) ++found;
  }
  return text.substr(start);
}

// value = value x factor + addend, modulo the value's words.
void MultiplyAdd(std::span<std::uint64_t> value, std::uint64_t factor, std::uint64_t addend) {
  for (auto& word : value) {
    const std::uint64_t low = (word & kLowHalf) * factor + addend;
    const std::uint64_t high = (word >> 32) * factor + (low >> 32);
    word = high << 32 | (low & kLowHalf);
    addend = high >> 32;
  }
}

void ParseWideDecimal(std::string_view text, std::span<std::uint64_t> value) {
  std::uint64_t chunk = 0;
  std::uint64_t factor = 1;
  for (const char c : text) {
    const unsigned digit = DigitOf(c);
    if (digit >= 10) continue;
    chunk = chunk * 10 + digit;
    factor *= 10;
    if (factor == kDecimalChunk) {
      MultiplyAdd(value, factor, chunk);
      chunk = 0;
      factor = 1;
    }
  }
  MultiplyAdd(value, factor, chunk);
}

void ParseDecimal(std::string_view text, unsigned bits, std::span<std::uint64_t> value) {
  text = LastDigits(text, bits);
  if (value.size() > 1) return ParseWideDecimal(text, value);
  std::uint64_t number = 0;
  for (const char c : text) {
    const unsigned digit = DigitOf(c);
    if (digit < 10) number = number * 10 + digit;
  }
  value[0] = number;
}

}  // namespace

bool IsRadix(Radix radix) {
  return radix == Radix::Hex || radix == Radix::Decimal || radix == Radix::Octal ||
         radix == Radix::Binary;
}

void FormatValue(std::span<const std::uint64_t> value, int bits, Radix radix, std::string& text) {
  switch (radix) {
    case Radix::Hex:
      return FormatHex(value, bits, text);
    case Radix::Decimal:
      return value.size() > 1 ? FormatWideDecimal(value, text)
                              : FormatDecimal(value.empty() ? 0 : value[0], text);
    case Radix::Octal:
      return FormatPowerOfTwo<kOctalRule.bitsPerDigit>(value, bits, text);
    case Radix::Binary:
      return FormatPowerOfTwo<kBinaryRule.bitsPerDigit>(value, bits, text);
    default:
      return text.clear();
  }
}

void ParseValue(std::string_view text, int bits, Radix radix, std::span<std::uint64_t> value) {
  std::ranges::fill(value, 0);
  if (bits <= 0) return;
  const auto valueBits = static_cast<unsigned>(bits);
  switch (radix) {
    case Radix::Hex:
      ParseChunks(text, valueBits, kHexRule, value);
      break;
    case Radix::Decimal:
      ParseDecimal(text, valueBits, value);
      break;
    case Radix::Octal:
      ParseChunks(text, valueBits, kOctalRule, value);
      break;
    case Radix::Binary:
      ParseChunks(text, valueBits, kBinaryRule, value);
      break;
    default:
      break;
  }
  if (valueBits % kWordBits != 0) value.back() &= ~(~std::uint64_t{0} << valueBits % kWordBits);
}

int MaxDecimalDigits(int bits) {
  constexpr double kLog10Of2 = 0.30102999566398119521;
  return bits <= 0 ? 1 : static_cast<int>(bits * kLog10Of2) + 1;
}

}  // namespace quillpg
