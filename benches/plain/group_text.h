#pragma once

#include "base/text.h"
#include "instrument/instrument.h"
#include "program/block_manager.h"
#include "program/group_manager.h"
#include "quillpg/engine_types.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace quillpg {

/// Group text in the plainest way: the group is looked up by a walk, every channel is moved by
/// itself, digits are printed and decimals divided one by one. The oracle of the engine's group
/// text and the reference that its speed is measured against.
class CPlainGroupText {
 public:
  explicit CPlainGroupText(CInstrument& instrument) : m_instrument(instrument) {
    (void)instrument.GetGroupManager(&m_groups);
    (void)instrument.GetBlockManager(&m_blocks);
  }

  Status Get(const std::string& name, int block, int vector, Radix radix, std::string& text) const {
    const GROUP* group = FindGroup(name);
    if (!group) return E_FAIL;
    if (!BlockAt(block)) return E_FAIL;
    if (radix == Radix::Decimal) {
      GetDecimal(*group, block, vector, text);
      return S_OK;
    }
    const int chunk = radix == Radix::Octal ? 30 : 32;
    const int channels = group->GetNoOfChannels();
    const int rest = channels % chunk;
    text.clear();
    std::string part;
    for (int first = rest; first < channels; first += chunk) {
      FormatChunk(ReadChunk(*group, first, chunk, block, vector), chunk, radix, part);
      text += part;
    }
    part.clear();
    FormatChunk(ReadChunk(*group, 0, rest, block, vector), rest, radix, part);
    text = part + text;
    return S_OK;
  }

  Status Set(const std::string& name, int block, int vector, Radix radix, std::string text) const {
    const GROUP* group = FindGroup(name);
    if (!group || !BlockAt(block)) return E_FAIL;
    if (radix == Radix::Decimal) {
      text = DecimalToBinary(text);
      radix = Radix::Binary;
    }
    const std::size_t digits = radix == Radix::Hex ? 8 : radix == Radix::Octal ? 10 : 32;
    const int bits = radix == Radix::Octal ? 30 : 32;
    int position = group->GetNoOfChannels() - 1;
    while (text.size() >= digits) {
      const std::string chunk = text.substr(text.size() - digits);
      text = text.substr(0, text.size() - digits);
      const std::uint64_t value = Convert(chunk, radix);
      for (int bit = 0; bit < bits && position >= 0; ++bit, --position) {
        WriteBit(*group, position, block, vector, value, bit);
      }
    }
    const std::uint64_t value = Convert(text, radix);
    for (int bit = 0; position >= 0; ++bit, --position) {
      WriteBit(*group, position, block, vector, value, bit);
    }
    return S_OK;
  }

 private:
  const GROUP* FindGroup(const std::string& name) const {
    const std::string trimmed(Trim(name));
    int count = 0;
    (void)m_groups->GetNoOfGroups(count);
    for (int i = 0; i < count; ++i) {
      GROUP* group = nullptr;
      (void)m_groups->GetGroup(i, &group);
      if (group && EqualNoCase(group->GetGroupName(), trimmed)) return group;
    }
    return nullptr;
  }

  const BLOCK* BlockAt(int index) const {
    BLOCK* block = nullptr;
    (void)m_blocks->GetBlock(index, &block);
    return block;
  }

  int ChannelBit(const GROUP& group, int position, int block, int vector) const {
    int channel = -1;
    group.GetChannelId(position, channel);
    int bit = 0;
    (void)m_instrument.GetChannelData(channel, block, vector, bit);  // 0 outside the block
    return bit;
  }

  void WriteBit(const GROUP& group, int position, int block, int vector, std::uint64_t value,
                int bit) const {
    int channel = -1;
    group.GetChannelId(position, channel);
    (void)m_instrument.SetChannelData(channel, block, vector,
                                      bit < 64 ? static_cast<int>(value >> bit & 1) : 0);
  }

  unsigned long ReadChunk(const GROUP& group, int first, int count, int block, int vector) const {
    unsigned long value = 0;
    for (int i = 0; i < count; ++i) {
      value = value * 2 + static_cast<unsigned long>(ChannelBit(group, first + i, block, vector));
    }
    return value;
  }

  static void FormatChunk(unsigned long value, int bits, Radix radix, std::string& text) {
    if (bits < 1) return;
    std::array<char, 40> buffer{};
    if (radix == Radix::Hex) {
      (void)std::snprintf(buffer.data(), buffer.size(), "%0*lX", (bits + 3) / 4, value);
      text = buffer.data();
    } else if (radix == Radix::Octal) {
      (void)std::snprintf(buffer.data(), buffer.size(), "%0*lo", (bits + 2) / 3, value);
      text = buffer.data();
    } else {
      text.clear();
      for (int bit = bits - 1; bit >= 0; --bit) text += (value >> bit & 1) != 0 ? "1" : "0";
    }
  }

  void GetDecimal(const GROUP& group, int block, int vector, std::string& text) const {
    const int channels = group.GetNoOfChannels();
    std::vector<unsigned char> number((static_cast<std::size_t>(channels) + 7) / 8);
    for (int i = 0; i < channels; ++i) {
      const int bit = ChannelBit(group, channels - 1 - i, block, vector);
      unsigned char& byte = number[number.size() - 1 - static_cast<std::size_t>(i) / 8];
      byte = static_cast<unsigned char>(byte | bit << i % 8);
    }
    std::vector<unsigned char> quotient(number.size());
    std::string digits;
    std::size_t length = number.size();
    do {
      unsigned char rest = 0;
      unsigned char* start = quotient.data();
      length = Div10(number.data() + (number.size() - length), &start, &rest, length);
      std::copy(start, start + length, number.end() - static_cast<std::ptrdiff_t>(length));
      digits += static_cast<char>('0' + rest);
    } while (length != 0);
    text.assign(digits.rbegin(), digits.rend());
  }

  static std::size_t Div10(const unsigned char* number, unsigned char** quotient,
                           unsigned char* rest, std::size_t length) {
    unsigned carry = 0;
    for (std::size_t i = 0; i < length; ++i) {
      const unsigned current = carry * 256 + number[i];
      (*quotient)[i] = static_cast<unsigned char>(current / 10);
      carry = current % 10;
    }
    *rest = static_cast<unsigned char>(carry);
    while (length > 0 && **quotient == 0) {
      ++*quotient;
      --length;
    }
    return length;
  }

  static std::string DecimalToBinary(const std::string& text) {
    std::string number;
    for (const char c : text) {
      if (c >= '0' && c <= '9') number += c;
    }
    std::string binary;
    while (!number.empty()) {
      std::string quotient;
      int carry = 0;
      for (const char digit : number) {
        const int current = carry * 10 + (digit - '0');
        quotient += static_cast<char>('0' + current / 2);
        carry = current % 2;
      }
      binary += static_cast<char>('0' + carry);
      const std::size_t first = quotient.find_first_not_of('0');
      number = first == std::string::npos ? std::string() : quotient.substr(first);
    }
    std::reverse(binary.begin(), binary.end());
    return binary;
  }

  static std::uint64_t Convert(const std::string& text, Radix radix) {
    const int base = radix == Radix::Hex ? 16 : radix == Radix::Octal ? 8 : 2;
    std::uint64_t value = 0;
    for (const char c : text) {
      int digit = base;
      if (c >= '0' && c <= '9') digit = c - '0';
      if (c >= 'A' && c <= 'F') digit = c - 'A' + 10;
      if (c >= 'a' && c <= 'f') digit = c - 'a' + 10;
      if (digit >= base) break;
      value = value * static_cast<std::uint64_t>(base) + static_cast<std::uint64_t>(digit);
    }
    return value;
  }

  CInstrument& m_instrument;
  CGroupManager* m_groups = nullptr;
  CBlockManager* m_blocks = nullptr;
};

}  // namespace quillpg
