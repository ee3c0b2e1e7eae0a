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
  for (int n = 2; m_taken.contains(name); ++n) {
    name = base + '_';
    AppendNumber(name, n);
  }
  m_taken.insert(name);
  return name;
}

}  // namespace quillpg
