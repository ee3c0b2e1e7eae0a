#include "persistence/input_file.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <system_error>

namespace quillpg {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kChunk = 65536;

}  // namespace

Status CInputFile::Open(const std::string& path) {
  std::error_code error;
  // A pipe waits for a writer to open it, and then for what it writes; a folder is not read at all.
  if (!fs::is_regular_file(path, error)) return PG_E_FILE_NOT_OPENED;
  m_stream.open(path, std::ios::in | std::ios::binary);
  if (!m_stream.good()) return PG_E_FILE_NOT_OPENED;
  const std::uintmax_t length = fs::file_size(path, error);
  m_length = error ? 0 : static_cast<std::size_t>(length);
  m_more = true;
  return S_OK;
}

void CInputFile::Fetch(std::size_t count) {
  if (!m_more || count <= m_size) return;
  Reserve(count);
  m_stream.read(reinterpret_cast<char*>(m_bytes.get() + m_size),
                static_cast<std::streamsize>(count - m_size));
  m_size += static_cast<std::size_t>(m_stream.gcount());
  m_more = m_size == count;
}

// The length is a hint: one fetch for a file that keeps it, growing ones for what has none.
void CInputFile::FetchAll() {
  Fetch(m_length);
  while (m_more) Fetch(std::max(m_size + kChunk, m_size * 2));
}

void CInputFile::Reserve(std::size_t capacity) {
  if (capacity <= m_capacity) return;
  auto grown = std::make_unique_for_overwrite<std::uint8_t[]>(capacity);
  if (m_size > 0) std::memcpy(grown.get(), m_bytes.get(), m_size);
  m_bytes = std::move(grown);
  m_capacity = capacity;
}

}  // namespace quillpg
