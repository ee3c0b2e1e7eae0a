#include "support/golden.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>

namespace quillpg {
namespace {

std::string FirstDifference(const std::string& expected, const std::string& actual) {
  std::istringstream expectedLines(expected);
  std::istringstream actualLines(actual);
  for (int number = 1;; ++number) {
    std::string wanted;
    std::string got;
    const bool hasWanted = static_cast<bool>(std::getline(expectedLines, wanted));
    const bool hasGot = static_cast<bool>(std::getline(actualLines, got));
    if (!hasWanted && !hasGot) return "the end of the last line";
    if (hasWanted == hasGot && wanted == got) continue;
    return "line " + std::to_string(number) + "\n  expected: " + (hasWanted ? wanted : "(end)") +
           "\n  actual:   " + (hasGot ? got : "(end)");
  }
}

}  // namespace

void ExpectGolden(const std::string& name, const std::string& actual) {
  const std::string path = std::string(QUILLPG_GOLDEN_FOLDER) + "/" + name;
  if (std::getenv("QUILLPG_APPROVE")) {
    std::ofstream(path, std::ios::binary) << actual;
    return;
  }
  std::ifstream file(path, std::ios::binary);
  ASSERT_TRUE(file) << path << " is missing; tests/golden/approve makes it";
  const std::string expected{std::istreambuf_iterator<char>(file), {}};
  EXPECT_TRUE(expected == actual) << name << " differs in " << FirstDifference(expected, actual);
}

}  // namespace quillpg
