#include "instrument/group_data.h"

#include "instrument/radix.h"
#include "program/block.h"
#include "program/group_plan.h"
#include "quillpg/limits.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace quillpg {

namespace {

// Calls `use(words)` with room for one value: in place for the channels of the widest instrument.
template <typename Use>
void WithWords(std::size_t count, const Use& use) {
  if (count <= MAX_INSTRUMENT_MODULES) {
    std::array<std::uint64_t, MAX_INSTRUMENT_MODULES> words;
    use(std::span(words).first(count));
  } else {
    std::vector<std::uint64_t> words(count);
    use(std::span(words));
  }
}

}  // namespace

void ReadGroupText(const CGroupPlan& plan, const BLOCK& block, int vector, Radix radix,
                   std::string& text) {
  const std::size_t rowBytes = block.RowBytes();
  const bool inside = block.Data() && vector >= 0 && vector < block.GetBlockSize();
  WithWords(plan.Words(), [&](std::span<std::uint64_t> value) {
    if (inside) {
      plan.Load(block.Data() + static_cast<std::size_t>(vector) * rowBytes, rowBytes, value);
    } else {
      std::ranges::fill(value, 0);
    }
    FormatValue(value, plan.Bits(), radix, text);
  });
}

void ReadMaskText(std::span<const int> channels, int podChannels,
                  std::span<const std::uint8_t> pods, Radix radix, std::string& text) {
  WithWords((channels.size() + 63) / 64, [&](std::span<std::uint64_t> value) {
    std::ranges::fill(value, 0);
    for (std::size_t i = 0; i < channels.size(); ++i) {
      if (channels[i] < 0) continue;
      const auto pod = static_cast<std::size_t>(channels[i] / podChannels);
      const std::size_t bit = channels.size() - 1 - i;
      if (pod < pods.size() && pods[pod] != 0) value[bit / 64] |= std::uint64_t{1} << bit % 64;
    }
    FormatValue(value, static_cast<int>(channels.size()), radix, text);
  });
}

bool WriteGroupText(const CGroupPlan& plan, BLOCK& block, int vector, int count, Radix radix,
                    std::string_view text) {
  const std::int64_t first = std::max(vector, 0);
  const std::int64_t end =
      std::min<std::int64_t>(std::int64_t{vector} + std::max(count, 1), block.GetBlockSize());
  const std::size_t rowBytes = block.RowBytes();
  if (!block.Data() || first >= end || !plan.Reaches(rowBytes)) return false;
  WithWords(plan.Words(), [&](std::span<std::uint64_t> value) {
    ParseValue(text, plan.Bits(), radix, value);
    std::uint8_t* row = block.Data() + static_cast<std::size_t>(first) * rowBytes;
    for (std::int64_t i = first; i < end; ++i, row += rowBytes) plan.Store(row, rowBytes, value);
  });
  return true;
}

}  // namespace quillpg
