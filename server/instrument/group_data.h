#pragma once

#include "quillpg/engine_types.h"
#include "quillpg/result_codes.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace quillpg {

class CGroupPlan;
struct BLOCK;

// A group's value between text and a block's rows. A vector outside the block and a block without
// data read 0 and are not written. `radix` is one of the four.

/// Replaces `text` by the value of vector `vector`.
void ReadGroupText(const CGroupPlan& plan, const BLOCK& block, int vector, Radix radix,
                   std::string& text);

/// Replaces `text` by the value that has a 1 for each of `channels` (most significant first) whose
/// pod, of `podChannels` channels each, is non-zero in `pods`; channels beyond them give 0.
void ReadMaskText(std::span<const int> channels, int podChannels,
                  std::span<const std::uint8_t> pods, Radix radix, std::string& text);

/// Writes the value into `count` vectors from `vector` on, cut at the block's ends. True when
/// anything was written.
bool WriteGroupText(const CGroupPlan& plan, BLOCK& block, int vector, int count, Radix radix,
                    std::string_view text);

}  // namespace quillpg
