#include "program/group_plan.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <numeric>
#include <random>
#include <string>
#include <vector>

namespace quillpg {
namespace {

bool Bit(const std::vector<std::uint8_t>& row, int channel) {
  const auto byte = static_cast<std::size_t>(channel) / 8;
  return channel >= 0 && byte < row.size() && (row[byte] >> channel % 8 & 1) != 0;
}

void SetBit(std::vector<std::uint8_t>& row, int channel, bool bit) {
  const auto byte = static_cast<std::size_t>(channel) / 8;
  if (channel < 0 || byte >= row.size()) return;
  const unsigned mask = 1u << channel % 8;
  row[byte] = static_cast<std::uint8_t>(bit ? row[byte] | mask : row[byte] & ~mask);
}

class CPlanCheck {
 public:
  // Loads and stores through the plan and bit by bit; rows stand in exact allocations, so that a
  // sanitizer sees a byte too many.
  void Compare(const std::vector<int>& channels, std::size_t rowBytes) {
    const CGroupPlan plan(channels);
    const std::vector<std::uint8_t> row = RandomRow(rowBytes);
    std::vector<std::uint64_t> value(plan.Words(), 0xDEADBEEFDEADBEEFu);
    plan.Load(row.data(), rowBytes, value);
    std::vector<std::uint64_t> expected(plan.Words());
    bool reaches = false;
    for (std::size_t i = 0; i < channels.size(); ++i) {
      const std::size_t bit = channels.size() - 1 - i;
      expected[bit / 64] |= std::uint64_t{Bit(row, channels[i])} << bit % 64;
      reaches |= channels[i] >= 0 && static_cast<std::size_t>(channels[i]) < rowBytes * 8;
    }
    EXPECT_EQ(value, expected);
    EXPECT_EQ(plan.Reaches(rowBytes), reaches);

    for (auto& word : value) word = m_random();
    std::vector<std::uint8_t> written = row;
    plan.Store(written.data(), rowBytes, value);
    std::vector<std::uint8_t> wanted = row;
    for (std::size_t i = channels.size(); i-- > 0;) {  // the front is written last and stays
      const std::size_t bit = channels.size() - 1 - i;
      SetBit(wanted, channels[i], (value[bit / 64] >> bit % 64 & 1) != 0);
    }
    EXPECT_EQ(written, wanted);
  }

  std::vector<std::uint8_t> RandomRow(std::size_t bytes) {
    std::vector<std::uint8_t> row(bytes);
    for (auto& byte : row) byte = static_cast<std::uint8_t>(m_random());
    return row;
  }
  int Random(int low, int high) { return std::uniform_int_distribution<int>(low, high)(m_random); }

 private:
  std::mt19937_64 m_random{4711};
};

TEST(GroupPlan, MovesAnyListOfNumbersLikeSingleBits) {
  CPlanCheck check;
  for (int round = 0; round < 6000; ++round) {
    SCOPED_TRACE(round);
    std::vector<int> channels(static_cast<std::size_t>(check.Random(0, 130)));
    std::iota(channels.rbegin(), channels.rend(), check.Random(0, 72));  // a run of neighbours
    for (std::size_t i = 0; round % 2 != 0 && i < channels.size(); ++i) {
      const int kind = check.Random(0, 9);
      channels[i] = kind == 0                ? check.Random(-5, 400)
                    : kind == 1              ? (check.Random(0, 1) != 0 ? 2147483647 : -2147483647)
                    : i > 0 && kind % 2 != 0 ? channels[i - 1] - (channels[i - 1] > 0 ? 1 : 0)
                                             : check.Random(0, 70);
    }
    check.Compare(channels, static_cast<std::size_t>(check.Random(0, 40)));
  }
}

}  // namespace
}  // namespace quillpg
