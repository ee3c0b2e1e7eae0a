#pragma once

#include "base/byte_stream.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace quillpg {

/// Text on its way to a sink or into memory, through one buffer. A write that fails is remembered
/// and asked for once, at the end.
class CVcdOutput {
 public:
  /// What takes the text must outlive the object.
  explicit CVcdOutput(CByteSink& sink);
  explicit CVcdOutput(std::string& text);

  /// Where the next `size` bytes at most may be written; Advance says how many were. `size` must
  /// not exceed what Reserve made room for.
  char* Room(std::size_t size) {
    if (m_capacity - m_used < size) Flush();
    return m_buffer.get() + m_used;
  }
  /// End of the room, for a writer that asks for more only when it comes near.
  const char* Limit() const { return m_buffer.get() + m_capacity; }
  void Advance(const char* end) { m_used = static_cast<std::size_t>(end - m_buffer.get()); }

  /// Lets Room give up to `size` bytes at a time.
  void Reserve(std::size_t size);
  void Append(std::string_view text);

  /// Hands everything over; false when anything could not be written.
  bool Finish();

 private:
  void Flush();

  CByteSink* m_sink = nullptr;
  std::string* m_text = nullptr;
  std::unique_ptr<char[]> m_buffer;
  std::size_t m_capacity = 0;
  std::size_t m_used = 0;
  bool m_failed = false;
};

}  // namespace quillpg
