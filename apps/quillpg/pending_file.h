#pragma once

#include "base/atomic_file.h"

#include <ostream>
#include <streambuf>
#include <string>

namespace quillpg::tool {

/// True for equal paths and for two paths to one file: what is written to one is lost in the other.
bool IsSameFile(const std::string& path, const std::string& other);

/// A text file that is written beside its name and takes it only with Commit; otherwise nothing is
/// left.
class CPendingFile : private std::streambuf {
 public:
  CPendingFile() = default;

  /// False with `error` ("PATH: why") when it cannot be written.
  bool Open(const std::string& path, std::string& error);
  std::ostream& Stream() { return m_stream; }
  /// False with `error` when something could not be written; nothing is left behind then.
  bool Commit(std::string& error);

 private:
  std::streamsize xsputn(const char* text, std::streamsize count) override;
  int_type overflow(int_type character) override;

  std::string m_path;
  CAtomicFile m_file;
  CByteWriter m_writer{m_file};
  std::ostream m_stream{this};
};

}  // namespace quillpg::tool
