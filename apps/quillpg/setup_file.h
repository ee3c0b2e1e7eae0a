#pragma once

#include "command_line.h"
#include "persistence/file_manager.h"
#include "persistence/setup_file_walker.h"
#include "quillpg/result_codes.h"

#include <string>

namespace quillpg::tool {

class CServerSession;

/// A setup file of the command line: looked at without a model, then loaded. Operations that give
/// an int give the exit status; what is wrong is on standard error then.
class CSetupFile {
 public:
  /// True for a file that starts like a setup file of this product.
  static bool IsSetupFile(const std::string& path);

  /// Reads the file into memory and walks it. STATUS_UNUSABLE for a file that cannot be read or is
  /// no setup file; a file that goes wrong further on is good so far, see Damage.
  int Read(const std::string& path);
  /// The same for a command that takes captures too, whose options it refuses.
  int Read(const INPUT_OPTIONS& options);

  const std::string& Bytes() const { return m_bytes; }
  const SETUP_FILE_CONTENTS& Contents() const { return m_contents; }
  /// Where the file ends too early or holds what no file may hold; empty for a whole file.
  std::string Damage() const;

  /// Loads the file into a mainframe of its own: one simulated module for each memory depth, as the
  /// engine makes them for a file without hardware.
  int LoadForPlay(CServerSession& session) const;

  /// Loads the file into modules with the pods and the memory option that it tells of, so that
  /// nothing is lost when it is saved again.
  int LoadForEditing(CServerSession& session) const;

 private:
  int LoadInto(CServerSession& session) const;
  /// `fault` is where the engine stopped; the walk's own word goes before it.
  int RefuseFile(Status status, const READ_FAULT& fault = {}) const;

  std::string m_path;
  std::string m_bytes;
  SETUP_FILE_CONTENTS m_contents;
  Status m_walked = S_OK;
};

}  // namespace quillpg::tool
