#include "exchange/vcd_names.h"

#include "base/text.h"

namespace quillpg {

std::string MakeVcdName(std::string_view wanted) {
  std::string name;
  for (const char c : Trim(wanted)) {
    const auto byte = static_cast<unsigned char>(c);
    name += byte <= ' ' || byte == 0x7F ? '_' : c;
  }
  return name.empty() || name == "$end" ? "_" + name : name;
}

std::string CVcdNames::Claim(std::string_view wanted) {
  const std::string base = MakeVcdName(wanted);
  std::string name = base;
  // Twins by the thousand must not be counted through from 2 each time.
  for (int& last = m_lastNumber.try_emplace(base, 1).first->second; m_taken.contains(name);) {
    name = base + '_';
    AppendNumber(name, ++last);
  }
  m_taken.insert(name);
  return name;
}

}  // namespace quillpg
