#include "support/golden.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

namespace quillpg {
void ExpectGolden(const std::string& name, const std::string& actual) {
  const std::string path = std::string(QUILLPG_GOLDEN_FOLDER) + "/" + name;
  if (std::getenv("QUILLPG_APPROVE")) {
    std::ofstream(path, std::ios::binary) << actual;
    return;
  }
  std::ifstream file(path, std::ios::binary);
  ASSERT_TRUE(file) << path << " is missing; tests/golden/approve makes it";
  const std::string expected{std::istreambuf_iterator<char>(file), {}};
  EXPECT_EQ(expected, actual) << name;
}

}  // namespace quillpg
