#include "app/message_catalogue.h"

#include <array>
#include <cstddef>

namespace quillpg {

namespace {

struct ENTRY {
  int number;
  std::string_view text;
};

constexpr auto kEntries = std::to_array<ENTRY>({
#define QUILLPG_MESSAGE(name, number, text) {number, text},
#include "app/message_catalogue.def"
#undef QUILLPG_MESSAGE
});

// Rows stand in the order of their numbers, without a gap: a text is found by counting.
constexpr bool NumbersRunOn() {
  for (std::size_t i = 0; i < kEntries.size(); ++i) {
    if (kEntries[i].number != MSG_TRUE + static_cast<int>(i)) return false;
  }
  return true;
}

static_assert(NumbersRunOn());

}  // namespace

std::string_view GetBuiltInText(int number) {
  if (number < kEntries.front().number || number > kEntries.back().number) return {};
  return kEntries[static_cast<std::size_t>(number - kEntries.front().number)].text;
}

}  // namespace quillpg
