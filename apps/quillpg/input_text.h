#pragma once

#include <string>

namespace quillpg::tool {

/// False with `error` ("FILE: why") for a folder, a missing file and one that may not be read.
bool IsReadable(const std::string& path, std::string& error);

/// Reads a whole file; fails as IsReadable does.
bool ReadInputText(const std::string& path, std::string& text, std::string& error);

}  // namespace quillpg::tool
