#pragma once

#include "quillpg/result_codes.h"

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <memory>
#include <span>
#include <string>

namespace quillpg {

/// A file that is read once, from its beginning, and held in memory: a little of it to look at its
/// head, all of it to load it. Never creates a file. What allocates may throw bad_alloc.
class CInputFile {
 public:
  /// PG_E_FILE_NOT_OPENED for what is no regular file and for what cannot be read.
  Status Open(const std::string& path);

  /// Sees to it that the first `count` bytes are held, fewer when the file ends before.
  void Fetch(std::size_t count);
  void FetchAll();
  /// The file has not been read to its end yet.
  bool HasMore() const { return m_more; }

  /// What is held so far; a further fetch makes the view invalid.
  std::span<const std::uint8_t> Bytes() const { return {m_bytes.get(), m_size}; }

 private:
  void Reserve(std::size_t capacity);

  std::ifstream m_stream;
  std::unique_ptr<std::uint8_t[]> m_bytes;
  std::size_t m_size = 0;
  std::size_t m_capacity = 0;
  std::size_t m_length = 0;  ///< as the file system tells it; 0 when it does not
  bool m_more = false;
};

}  // namespace quillpg
