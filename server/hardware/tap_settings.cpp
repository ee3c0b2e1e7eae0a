#include "hardware/tap_settings.h"

#include <array>
#include <initializer_list>

namespace quillpg {

namespace {

// Stage r of the register is bit 31 - r.
constexpr std::uint32_t Stages(std::initializer_list<int> stages) {
  std::uint32_t mask = 0;
  for (const int stage : stages) mask |= std::uint32_t{1} << (31 - stage);
  return mask;
}

// One row a register length: the stages that are tapped beside the last one, which always feeds
// back. The order is fixed, since a setting is known by its index. Every setting gives a sequence
// of the maximal length 2^n - 1, except five that users have relied on and that stay: n = 11 {0},
// n = 14 {1, 3, 5}, n = 15 {8, 9, 12} and {1, 2, 3, 4, 9}, n = 17 {1, 4, 7, 10, 11}.
// clang-format off
constexpr std::uint32_t kSettings[] = {
    // 0
    Stages({}),
    // 1
    Stages({}),
    // 2
    Stages({0}),
    // 3
    Stages({0}), Stages({1}),
    // 4
    Stages({0}), Stages({2}),
    // 5
    Stages({1}), Stages({2}), Stages({1, 2, 3}), Stages({0, 1, 3}),
    // 6
    Stages({0}), Stages({4}), Stages({0, 1, 4}), Stages({1, 2, 4}),
    // 7
    Stages({2}), Stages({3}), Stages({0}), Stages({0, 1, 2}), Stages({1, 2, 3}),
    Stages({1, 3, 5}), Stages({0, 2, 5}), Stages({1, 4, 5}), Stages({0, 1, 3, 4, 5}),
    Stages({0, 1, 2, 3, 4}),
    // 8
    Stages({1, 2, 3}), Stages({2, 4, 5}), Stages({1, 4, 5}), Stages({0, 2, 4}), Stages({0, 4, 5}),
    Stages({0, 5, 6}), Stages({0, 1, 4, 5, 6}), Stages({0, 1, 2, 3, 5}),
    // 9
    Stages({3}), Stages({4}), Stages({2, 3, 5}), Stages({3, 4, 7}), Stages({0, 3, 7}),
    Stages({1, 2, 4}), Stages({4, 5, 7}), Stages({1, 6, 7}), Stages({0, 1, 3, 4, 5}),
    Stages({0, 2, 3, 5, 6}), Stages({2, 4, 5, 6, 7}),
    // 10
    Stages({2}), Stages({6}), Stages({0, 1, 4}), Stages({0, 2, 3}), Stages({0, 2, 6}),
    Stages({0, 3, 8}), Stages({0, 4, 7}), Stages({0, 5, 7}), Stages({0, 5, 8}), Stages({1, 2, 4}),
    Stages({1, 2, 7}),
    // 11
    Stages({8}), Stages({0}), Stages({1}), Stages({0, 1, 3}), Stages({0, 1, 5}),
    Stages({0, 1, 8}), Stages({0, 2, 4}), Stages({0, 2, 9}), Stages({0, 3, 7}), Stages({0, 3, 8}),
    Stages({0, 4, 5}), Stages({0, 6, 7}),
    // 12
    Stages({0, 3, 5}), Stages({0, 1, 7}), Stages({0, 1, 9}), Stages({0, 4, 7}), Stages({1, 2, 8}),
    Stages({1, 6, 7}), Stages({1, 9, 10}), Stages({2, 3, 6}), Stages({2, 4, 5}),
    Stages({2, 8, 9}),
    // 13
    Stages({0, 2, 3}), Stages({0, 1, 4}), Stages({0, 1, 10}), Stages({0, 1, 11}),
    Stages({0, 2, 6}), Stages({0, 2, 9}), Stages({0, 3, 5}), Stages({0, 3, 9}),
    Stages({0, 4, 10}), Stages({0, 5, 6}),
    // 14
    Stages({0, 5, 9}), Stages({1, 3, 5}), Stages({0, 1, 11}), Stages({0, 2, 4}),
    Stages({0, 2, 9}), Stages({0, 3, 5}), Stages({0, 3, 7}), Stages({0, 3, 10}),
    Stages({0, 5, 7}), Stages({0, 5, 10}), Stages({0, 6, 10}), Stages({0, 9, 11}),
    Stages({0, 10, 11}), Stages({1, 2, 7}),
    // 15
    Stages({13}), Stages({8, 9, 12}), Stages({1, 2, 3, 4, 9}), Stages({0}), Stages({3}),
    Stages({6}), Stages({7}), Stages({10}), Stages({0, 1, 3}), Stages({0, 1, 6}),
    Stages({0, 1, 13}), Stages({0, 2, 11}), Stages({0, 2, 12}), Stages({0, 3, 6}),
    Stages({0, 3, 8}), Stages({0, 3, 13}), Stages({0, 4, 9}), Stages({0, 4, 12}),
    Stages({0, 5, 6}), Stages({0, 5, 11}), Stages({0, 5, 12}), Stages({0, 6, 9}),
    // 16
    Stages({0, 2, 11}), Stages({0, 3, 5}), Stages({0, 3, 14}), Stages({0, 5, 11}),
    Stages({0, 6, 9}), Stages({0, 6, 11}), Stages({0, 8, 13}), Stages({0, 11, 13}),
    Stages({0, 11, 14}), Stages({1, 2, 4}),
    // 17
    Stages({2}), Stages({1, 4, 7, 10, 11}), Stages({4}), Stages({5}), Stages({10}), Stages({11}),
    Stages({13}), Stages({0, 1, 2}), Stages({0, 1, 9}), Stages({0, 2, 7}), Stages({0, 2, 10}),
    // 18
    Stages({6}), Stages({10}), Stages({0, 1, 4}), Stages({0, 1, 7}), Stages({0, 1, 12}),
    // 19
    Stages({0, 1, 4}), Stages({0, 1, 5}), Stages({0, 1, 13}), Stages({0, 2, 8}),
    Stages({0, 2, 13}), Stages({0, 3, 5}), Stages({0, 3, 6}), Stages({0, 3, 8}),
    Stages({0, 3, 15}), Stages({0, 4, 5}),
    // 20
    Stages({2}), Stages({16}), Stages({0, 3, 5}), Stages({0, 3, 17}), Stages({0, 4, 8}),
    // 21
    Stages({1}), Stages({18}), Stages({0, 1, 4}), Stages({0, 1, 7}), Stages({0, 1, 13}),
    Stages({0, 1, 15}), Stages({0, 1, 16}), Stages({0, 1, 18}), Stages({0, 2, 14}),
    // 22
    Stages({0}), Stages({20}), Stages({0, 1, 10}), Stages({0, 1, 14}), Stages({0, 2, 11}),
    Stages({0, 2, 19}), Stages({0, 3, 9}),
    // 23
    Stages({4}), Stages({8}), Stages({13}), Stages({17}), Stages({0, 1, 6}), Stages({0, 1, 14}),
    Stages({0, 1, 20}), Stages({0, 1, 21}), Stages({0, 2, 4}), Stages({0, 2, 6}),
    // 24
    Stages({0, 2, 3}), Stages({0, 1, 6}), Stages({0, 1, 16}),
    // 25
    Stages({2}), Stages({6}), Stages({17}), Stages({21}), Stages({0, 1, 2}), Stages({0, 1, 22}),
    Stages({0, 2, 9}), Stages({0, 2, 11}), Stages({0, 2, 16}),
    // 26
    Stages({0, 1, 5}), Stages({0, 1, 17}),
    // 27
    Stages({0, 1, 4}), Stages({0, 1, 9}),
    // 28
    Stages({2}), Stages({8}), Stages({12}), Stages({14}),
    // 29
    Stages({1}), Stages({26}), Stages({0, 1, 3}), Stages({0, 1, 8}), Stages({0, 1, 20}),
    Stages({0, 1, 24}), Stages({0, 2, 18}),
    // 30
    Stages({0, 1, 22}), Stages({0, 3, 5}), Stages({0, 3, 7}),
    // 31
    Stages({16, 20, 28}), Stages({2}), Stages({5}), Stages({6}), Stages({12}), Stages({17}),
    Stages({23}), Stages({24}), Stages({27}), Stages({0, 1, 2}), Stages({0, 1, 5}),
    // 32
    Stages({0, 1, 21}), Stages({0, 2, 30}), Stages({0, 5, 13}),
};
// clang-format on

// Where the settings of each length start; one more than there are lengths.
constexpr std::array<std::size_t, MAX_SHIFT_REGISTERS + 2> kFirst = {
    0,   1,   2,   3,   5,   7,   11,  15,  25,  33,  44,  55,  67,  77,  87,  101, 123,
    133, 144, 149, 159, 164, 173, 180, 190, 193, 202, 204, 206, 210, 217, 220, 231, 234};
static_assert(kFirst.back() == std::size(kSettings));

}  // namespace

std::span<const std::uint32_t> GetTapSettings(int registers) {
  if (registers < 0 || registers > MAX_SHIFT_REGISTERS) return {};
  const auto n = static_cast<std::size_t>(registers);
  return {kSettings + kFirst[n], kSettings + kFirst[n + 1]};
}

}  // namespace quillpg
