#include "persistence/field_tracer.h"

#include "base/text.h"

#include <algorithm>

namespace quillpg {

namespace {

constexpr char kHexDigits[] = "0123456789abcdef";
constexpr std::size_t kShownBytes = 32;

void AppendHex(std::string& text, std::uint8_t byte) {
  text += kHexDigits[byte >> 4];
  text += kHexDigits[byte & 15];
}

}  // namespace

std::span<const std::uint8_t> CFieldTracer::Bytes(const char* name, std::uint64_t size) {
  const std::uint64_t offset = m_reader.Offset();
  const auto bytes = m_reader.Bytes(name, size);
  if (m_visit && Good()) {
    std::string text;
    for (const std::uint8_t byte : bytes.first(std::min(bytes.size(), kShownBytes))) {
      AppendHex(text, byte);
    }
    if (bytes.size() > kShownBytes) text += "...";
    m_visit({offset, size, m_record, name, std::move(text)});
  }
  return bytes;
}

std::string CFieldTracer::FailedField() const {
  if (Good()) return {};
  return m_record.empty() ? m_reader.FailedField() : m_record + " / " + m_reader.FailedField();
}

std::size_t CFieldTracer::Enter(const char* name, int index) {
  const std::size_t length = m_record.size();
  if (length > 0) m_record += " / ";
  m_record += name;
  m_record += ' ';
  AppendNumber(m_record, index);
  return length;
}

std::string CFieldTracer::Escaped(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '"' || c == '\\') escaped += '\\';
    if (c >= ' ' && c <= '~') {
      escaped += c;
    } else {
      escaped += "\\x";
      AppendHex(escaped, static_cast<std::uint8_t>(c));
    }
  }
  return escaped;
}

std::string CFieldTracer::NumberText(std::int64_t value) {
  std::string text;
  AppendNumber(text, value);
  return text;
}

std::string CFieldTracer::NumberText(float value) { return ShortestDecimal(value); }
std::string CFieldTracer::NumberText(double value) { return ShortestDecimal(value); }

}  // namespace quillpg
