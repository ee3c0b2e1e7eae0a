#pragma once

#include <string>

namespace quillpg {

/// Compares `actual` with the file tests/golden/NAME byte by byte and tells the first line that
/// differs. tests/golden/approve rewrites the files instead: names of tests that call this contain
/// "Golden".
void ExpectGolden(const std::string& name, const std::string& actual);

}  // namespace quillpg
