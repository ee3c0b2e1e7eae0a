#include "input_text.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <system_error>
#include <unistd.h>

namespace quillpg::tool {

bool IsReadable(const std::string& path, std::string& error) {
  std::error_code ignored;
  if (std::filesystem::is_directory(path, ignored)) {
    error = path + ": is a folder";
    return false;
  }
  if (access(path.c_str(), R_OK) != 0) {
    error = path + ": " + std::strerror(errno);
    return false;
  }
  return true;
}

bool ReadInputText(const std::string& path, std::string& text, std::string& error) {
  if (!IsReadable(path, error)) return false;
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                             std::fclose);
  if (!file) {
    error = path + ": " + std::strerror(errno);
    return false;
  }
  char buffer[65536];
  while (const std::size_t count = std::fread(buffer, 1, sizeof buffer, file.get())) {
    text.append(buffer, count);
  }
  if (std::ferror(file.get()) != 0) {
    error = path + ": " + std::strerror(errno);
    return false;
  }
  return true;
}

}  // namespace quillpg::tool
