#include "exchange/vcd_scanner.h"

#include "base/text.h"

#include <algorithm>

namespace quillpg {

CVcdScanner::CVcdScanner(std::istream& stream)
    : m_stream(stream), m_buffer(std::make_unique<char[]>(kBufferSize)) {
  m_next = m_end = m_buffer.get();
}

std::string_view CVcdScanner::Next() {
  const char* word = m_next;
  for (;;) {
    while (word != m_end && IsWhiteSpace(*word)) m_line += *word++ == '\n' ? 1 : 0;
    if (word != m_end) break;
    if (!Refill(word)) {
      m_next = m_end;
      return {};
    }
  }
  std::size_t length = 0;
  for (;;) {
    const char* last = std::find_if(word + length, m_end, IsWhiteSpace);
    length = static_cast<std::size_t>(last - word);
    if (last != m_end || length > MAX_WORD || !Refill(word)) break;
  }
  m_next = word + length;
  if (length > MAX_WORD) {
    m_overlong = true;
    m_next = m_end;
    m_stream.setstate(std::ios::eofbit | std::ios::failbit);
    return {};
  }
  return {word, length};
}

// Moves what is left from `from` on to the buffer's begin, where `from` then points, and reads
// behind it. False when the stream has ended.
bool CVcdScanner::Refill(const char*& from) {
  const auto kept = static_cast<std::size_t>(m_end - from);
  char* begin = m_buffer.get();
  std::copy(from, m_end, begin);
  from = begin;
  m_stream.read(begin + kept, static_cast<std::streamsize>(kBufferSize - kept));
  const std::streamsize count = m_stream.gcount();
  m_bytesRead += count;
  m_end = begin + kept + count;
  return count > 0;
}

}  // namespace quillpg
