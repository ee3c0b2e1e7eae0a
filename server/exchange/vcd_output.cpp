#include "exchange/vcd_output.h"

#include <cstring>

namespace quillpg {

namespace {

constexpr std::size_t kBufferSize = std::size_t{128} * 1024;

}  // namespace

CVcdOutput::CVcdOutput(std::FILE* file) : m_file(file) { Reserve(kBufferSize); }

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
  // Closing may be what finds the disk full.
  if (m_file && std::fclose(m_file.release()) != 0) m_failed = true;
  return !m_failed;
}

void CVcdOutput::Flush() {
  if (m_used > 0 && m_file && !m_failed) {
    m_failed = std::fwrite(m_buffer.get(), 1, m_used, m_file.get()) != m_used;
  }
  if (m_used > 0 && m_text) m_text->append(m_buffer.get(), m_used);
  m_used = 0;
}

}  // namespace quillpg
