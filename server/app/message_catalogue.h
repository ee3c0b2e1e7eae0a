#pragma once

#include "quillpg/api.h"

#include <string_view>

namespace quillpg {

// The number of every catalogue entry under its name.
#define QUILLPG_MESSAGE(name, number, text) inline constexpr int name = number;
#include "app/message_catalogue.def"
#undef QUILLPG_MESSAGE

/// The text that is built into the engine; empty for a number that is not in the catalogue. What is
/// shown comes from CMessageService::GetText, which asks the host for a localised text first.
QUILLPG_API std::string_view GetBuiltInText(int number);

}  // namespace quillpg
