#pragma once

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace quillpg {

/// A fresh folder, open to every user, that goes with the object.
class CTemporaryFolder {
 public:
  CTemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "quillpg_XXXXXX").string();
    if (mkdtemp(name.data())) m_path = name;
    std::filesystem::permissions(m_path, std::filesystem::perms::all);
  }
  ~CTemporaryFolder() {
    std::error_code ignored;
    std::filesystem::permissions(m_path, std::filesystem::perms::all, ignored);
    std::filesystem::remove_all(m_path, ignored);
  }
  CTemporaryFolder(const CTemporaryFolder&) = delete;
  CTemporaryFolder& operator=(const CTemporaryFolder&) = delete;

  const std::filesystem::path& Path() const { return m_path; }
  std::string File(const std::string& name) const { return (m_path / name).string(); }

  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(m_path)) {
      names.push_back(entry.path().filename().string());
    }
    std::ranges::sort(names);
    return names;
  }

  /// Contents of a file; "" for a missing one.
  std::string Text(const std::string& name) const {
    std::ifstream stream(m_path / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }
  std::string Write(const std::string& name, const std::string& text) const {
    std::ofstream(m_path / name, std::ios::binary) << text;
    return File(name);
  }

 private:
  std::filesystem::path m_path;
};

}  // namespace quillpg
