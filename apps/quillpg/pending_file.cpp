#include "pending_file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <unistd.h>

namespace quillpg::tool {

CPendingFile::~CPendingFile() {
  if (m_part.empty() || m_part == m_path) return;
  m_stream.close();
  (void)std::remove(m_part.c_str());
}

bool CPendingFile::Open(const std::string& path, std::string& error) {
  namespace fs = std::filesystem;
  std::error_code ignored;
  const fs::file_status target = fs::status(path, ignored);
  if (fs::is_directory(target)) {
    error = path + ": is a folder";
    return false;
  }
  m_path = path;
  if (fs::exists(target) && !fs::is_regular_file(target)) {
    m_part = path;
  } else {
    // A symbolic link stays one: the file that it names is replaced.
    const fs::path resolved = fs::weakly_canonical(path, ignored);
    if (!resolved.empty()) m_path = resolved.string();
    m_part = m_path + ".part" + std::to_string(getpid());
  }
  m_stream.open(m_part, std::ios::binary | std::ios::trunc);
  if (m_stream) return true;
  error = path + ": " + std::strerror(errno);
  m_part.clear();
  return false;
}

bool CPendingFile::Commit(std::string& error) {
  m_stream.close();
  if (m_stream && (m_part == m_path || std::rename(m_part.c_str(), m_path.c_str()) == 0)) {
    m_part.clear();
    return true;
  }
  error = m_path + ": " + std::strerror(errno);
  return false;
}

}  // namespace quillpg::tool
