#include "app/message_catalogue.h"

#include <array>
#include <cstddef>

namespace quillpg {

namespace {

constexpr auto kTexts = std::to_array<std::string_view>({
#define QUILLPG_MESSAGE(name, number, text) text,
#include "app/message_catalogue.def"
#undef QUILLPG_MESSAGE
});

// True when the rows stand in the order of their numbers, without a gap: a text is found by
// counting.
constexpr bool NumbersRunOn() {
  int next = MSG_TRUE;
#define QUILLPG_MESSAGE(name, number, text) \
  if (number != next++) return false;
#include "app/message_catalogue.def"
#undef QUILLPG_MESSAGE
  return true;
}

static_assert(NumbersRunOn());

}  // namespace

std::string_view GetBuiltInText(int number) {
  if (number < MSG_TRUE || number > MSG_FILE_READ_ERROR) return {};
  return kTexts[static_cast<std::size_t>(number - MSG_TRUE)];
}

}  // namespace quillpg
