#pragma once

#include "quillpg/api.h"

#include <cstdio>
#include <string>

namespace quillpg {

/// Where a file that takes another one's place goes: it is written beside its name and renamed when
/// all of it is written, so that a failure leaves the old file as it was.
struct OUTPUT_TARGET {
  std::string path;     ///< symbolic links followed: the file that they name is the one replaced
  bool direct = false;  ///< a pipe or a device has no place beside it and is written as it comes
};

/// False with `error` ("PATH: why") for a folder.
QUILLPG_API bool ResolveOutputTarget(const std::string& path, OUTPUT_TARGET& target,
                                     std::string& error);

/// Opens a file that did not exist before, beside `path`; its name goes to `part`. Null, errno set,
/// when there can be none.
QUILLPG_API std::FILE* OpenBeside(const std::string& path, std::string& part);

/// Removes a file if it is there.
QUILLPG_API void RemoveFile(const std::string& path);

}  // namespace quillpg
