#include "pending_file.h"

#include <filesystem>
#include <system_error>

namespace quillpg::tool {

bool IsSameFile(const std::string& path, const std::string& other) {
  std::error_code ignored;
  return path == other || std::filesystem::equivalent(path, other, ignored);
}

bool CPendingFile::Open(const std::string& path, std::string& error) {
  m_path = path;
  if (!Failed(m_file.Open(path, FileCare::Output))) return true;
  error = path + ": " + m_file.GetErrorText();
  return false;
}

bool CPendingFile::Commit(std::string& error) {
  m_writer.Flush();
  if (m_writer.Good() && !Failed(m_file.Commit())) return true;
  error = m_path + ": " + m_file.GetErrorText();
  m_file.Discard();
  return false;
}

std::streamsize CPendingFile::xsputn(const char* text, std::streamsize count) {
  m_writer.Bytes("",
                 {reinterpret_cast<const std::uint8_t*>(text), static_cast<std::size_t>(count)});
  return m_writer.Good() ? count : 0;
}

CPendingFile::int_type CPendingFile::overflow(int_type character) {
  const char c = traits_type::to_char_type(character);
  return xsputn(&c, 1) == 1 ? traits_type::not_eof(character) : traits_type::eof();
}

}  // namespace quillpg::tool
