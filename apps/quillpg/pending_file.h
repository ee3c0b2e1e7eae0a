#pragma once

#include "base/output_target.h"

#include <fstream>
#include <string>

namespace quillpg::tool {

/// A file that is written beside its name and takes it only with Commit; otherwise nothing is left.
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
  OUTPUT_TARGET m_target;
  std::string m_part;  // what lies beside the target; empty for none
  std::ofstream m_stream;
};

}  // namespace quillpg::tool
