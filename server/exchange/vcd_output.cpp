#include "exchange/vcd_output.h"

#include <cstring>

namespace quillpg {

namespace {

constexpr std::size_t kBufferSize = std::size_t{128} * 1024;

}  // namespace

CVcdOutput::CVcdOutput(CByteSink& sink) : m_sink(&sink) { Reserve(kBufferSize); }

CVcdOutput::CVcdOutput(std::string& text) : m_text(&text) { Reserve(kBufferSize); }

void CVcdOutput::Reserve(std::size_t size) {
  if (size <= m_capacity) return;
  Flush();
  m_buffer = std::make_unique_for_overwrite<char[]>(size);
  m_capacity = size;
}

void CVcdOutput::Append(std::string_view text) {
  Reserve(text.size());
  char* to = Room(text.size());
  std::memcpy(to, text.data(), text.size());
  Advance(to + text.size());
}

bool CVcdOutput::Finish() {
  Flush();
  return !m_failed;
}

void CVcdOutput::Flush() {
  if (m_used > 0 && m_sink && !m_failed) {
    m_failed = !m_sink->Put({reinterpret_cast<const std::uint8_t*>(m_buffer.get()), m_used});
  }
  if (m_used > 0 && m_text) m_text->append(m_buffer.get(), m_used);
  m_used = 0;
}

}  // namespace quillpg
