#include "base/output_target.h"

#include "base/text.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

namespace quillpg {
namespace {

constexpr int kMostParts = 100;

}  // namespace

bool ResolveOutputTarget(const std::string& path, OUTPUT_TARGET& target, std::string& error) {
  std::error_code ignored;
  const std::filesystem::file_status status = std::filesystem::status(path, ignored);
  if (std::filesystem::is_directory(status)) {
    error = path + ": is a folder";
    return false;
  }
  target = {path, std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)};
  if (!target.direct &&
      std::filesystem::is_symlink(std::filesystem::symlink_status(path, ignored))) {
    const std::filesystem::path named = std::filesystem::weakly_canonical(path, ignored);
    if (!named.empty()) target.path = named.string();
  }
  return true;
}

std::FILE* OpenBeside(const std::string& path, std::string& part) {
  for (int i = 0; i < kMostParts; ++i) {
    part = path + ".part";
    AppendNumber(part, i);
    if (std::FILE* file = std::fopen(part.c_str(), "wbx")) return file;
    if (errno != EEXIST) return nullptr;
  }
  return nullptr;
}

void RemoveFile(const std::string& path) {
  std::error_code ignored;
  std::filesystem::remove(path, ignored);
}

}  // namespace quillpg
