#pragma once

#include <fstream>
#include <string>

namespace quillpg::tool {

/// A file that is written beside its name and takes it only with Commit; otherwise nothing is left.
/// A device or a pipe is written directly.
class CPendingFile {
 public:
  CPendingFile() = default;
  CPendingFile(const CPendingFile&) = delete;
  CPendingFile& operator=(const CPendingFile&) = delete;
  ~CPendingFile();

  /// False with `error` ("PATH: why") when it cannot be written.
  bool Open(const std::string& path, std::string& error);
  std::ofstream& Stream() { return m_stream; }
  /// False with `error` when something could not be written; nothing is left behind then.
  bool Commit(std::string& error);

 private:
  std::string m_path;
  std::string m_part;  // what is written; empty once committed or dropped
  std::ofstream m_stream;
};

}  // namespace quillpg::tool
