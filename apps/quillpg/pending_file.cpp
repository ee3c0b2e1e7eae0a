#include "pending_file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace quillpg::tool {

CPendingFile::~CPendingFile() {
  m_stream.close();
  if (!m_part.empty()) RemoveFile(m_part);
}

bool CPendingFile::Open(const std::string& path, std::string& error) {
  if (!ResolveOutputTarget(path, m_target, error)) return false;
  if (!m_target.direct) {
    std::FILE* file = OpenBeside(m_target.path, m_part);
    if (file == nullptr) {
      m_part.clear();
      error = path + ": " + std::strerror(errno);
      return false;
    }
    (void)std::fclose(file);  // the name is taken now; nothing was written yet
  }
  m_stream.open(m_target.direct ? m_target.path : m_part, std::ios::binary);
  if (m_stream) return true;
  error = path + ": " + std::strerror(errno);
  return false;
}

bool CPendingFile::Commit(std::string& error) {
  m_stream.close();
  const bool written = m_stream.good();
  if (written && (m_target.direct || std::rename(m_part.c_str(), m_target.path.c_str()) == 0)) {
    m_part.clear();
    return true;
  }
  error = m_target.path + ": " + std::strerror(errno);
  return false;
}

}  // namespace quillpg::tool
