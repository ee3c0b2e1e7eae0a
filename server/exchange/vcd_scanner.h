#pragma once

#include <cstddef>
#include <cstdint>
#include <istream>
#include <memory>
#include <string_view>

namespace quillpg {

/// Splits a stream into words between white space and counts its lines. Words lie in one buffer
/// and are never copied.
class CVcdScanner {
 public:
  /// Longest word; a longer one ends the scan with IsOverlong.
  static constexpr std::size_t MAX_WORD = std::size_t{64} * 1024;

  explicit CVcdScanner(std::istream& stream);

  /// The next word, empty at the end of the stream. It is valid until the next call.
  std::string_view Next();

  /// Line of the last word, from 1.
  std::int64_t Line() const { return m_line; }
  std::int64_t BytesRead() const { return m_bytesRead; }
  bool IsOverlong() const { return m_overlong; }

 private:
  bool Refill(const char*& from);

  static constexpr std::size_t kBufferSize = std::size_t{256} * 1024;

  std::istream& m_stream;
  std::unique_ptr<char[]> m_buffer;
  const char* m_next;
  const char* m_end;
  std::int64_t m_line = 1;
  std::int64_t m_bytesRead = 0;
  bool m_overlong = false;
};

}  // namespace quillpg
