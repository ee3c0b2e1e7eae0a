#include "hardware/pattern_packer.h"

#include "hardware/unit_kernel.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace quillpg {

namespace {

constexpr int kUnitsPerEighth = 8;         // a short unit holds seven eighths of a full one
constexpr std::size_t kMostRows = 8;       // rows that one group looks at, its overlap included
constexpr std::size_t kMostBytes = 8;      // bytes that a module has in a row
constexpr std::uint16_t kNoBit0 = 0xFEFE;  // bit 0 of both bytes of a word

// A group whose rows all exist: FULL looks at 4 rows, or at 7 for a short pair; HALF at 8. A short
// unit is a full one without its last vector, so its bytes lose bit 0. The second unit of a short
// pair is a full unit over the vectors 3 to 6 moved up by one bit.
template <typename Kernel, bool Half, bool Short>
void PackGroup(const std::uint8_t* rows, std::size_t stride, std::uint16_t* words) {
  if constexpr (Half) {
    Kernel::PackHalf(rows, stride, words);
  } else {
    Kernel::PackFull(rows, stride, words);
    if constexpr (Short) Kernel::PackFull(rows + 3 * stride, stride, words + WORDS_PER_UNIT);
  }
  if constexpr (Short) {
    for (int i = 0; i < WORDS_PER_UNIT; ++i) words[i] &= kNoBit0;
    if constexpr (!Half) {
      for (int i = WORDS_PER_UNIT; i < 2 * WORDS_PER_UNIT; ++i) {
        words[i] = static_cast<std::uint16_t>(words[i] << 1 & kNoBit0);
      }
    }
  }
}

// The shape of a mode's groups.
template <bool Half, bool Short>
struct SHAPE {
  static constexpr std::size_t kBytes = Half ? 4 : 8;
  static constexpr std::int64_t kRows = Half ? 8 : Short ? 7 : 4;  // looked at
  static constexpr std::int64_t kStep = Short ? 7 : Half ? 8 : 4;  // vectors held
  static constexpr std::size_t kWords = Short && !Half ? 32 : 16;
};

// Packs a group of which rows or channels lie outside the block, from a copy filled up with zeros.
template <bool Half, bool Short>
void PackEdge(const PATTERN_ROWS& rows, std::size_t firstByte, std::int64_t vector,
              std::uint16_t* words) {
  using Shape = SHAPE<Half, Short>;
  std::array<std::uint8_t, kMostRows * kMostBytes> copy{};
  const std::size_t bytes =
      firstByte < rows.rowBytes ? std::min(rows.rowBytes - firstByte, Shape::kBytes) : 0;
  for (std::int64_t i = 0; rows.data && bytes > 0 && i < Shape::kRows; ++i) {
    const std::int64_t row = vector + i;
    if (row < 0 || row >= rows.size) continue;
    std::memcpy(copy.data() + static_cast<std::size_t>(i) * kMostBytes,
                rows.data + static_cast<std::size_t>(row) * rows.rowBytes + firstByte, bytes);
  }
  PackGroup<CUnitKernel, Half, Short>(copy.data(), kMostBytes, words);
}

template <bool Half, bool Short>
void PackGroups(const PATTERN_ROWS& rows, std::size_t firstByte, std::int64_t vector, int groups,
                std::uint16_t* words) {
  using Shape = SHAPE<Half, Short>;
  const bool wide = rows.data && firstByte + Shape::kBytes <= rows.rowBytes && vector >= 0;
  const std::int64_t room = wide ? rows.size - vector - Shape::kRows : -1;
  const auto inside =
      room < 0 ? 0 : static_cast<int>(std::min<std::int64_t>(groups, room / Shape::kStep + 1));

  int group = 0;
  if (inside > 0) {
    const std::uint8_t* row =
        rows.data + static_cast<std::size_t>(vector) * rows.rowBytes + firstByte;
    const std::size_t step = static_cast<std::size_t>(Shape::kStep) * rows.rowBytes;
    for (; group < inside; ++group, words += Shape::kWords) {
      PackGroup<CUnitKernel, Half, Short>(row, rows.rowBytes, words);
      row += step;
    }
  }
  for (; group < groups; ++group, words += Shape::kWords) {
    PackEdge<Half, Short>(rows, firstByte, vector + group * Shape::kStep, words);
  }
}

}  // namespace

std::vector<PACK_RUN> SplitIntoRuns(ChannelMode mode, int size) {
  std::vector<PACK_RUN> runs;
  if (size < 1) return runs;
  const std::int64_t eighths = mode == ChannelMode::Half ? size : 2 * std::int64_t{size};
  const std::int64_t units = (eighths + kUnitsPerEighth - 1) / kUnitsPerEighth;
  const auto shortUnits = static_cast<int>(units * kUnitsPerEighth - eighths);
  const int vectorsPerUnit = GetVectorsPerGroup(mode, UnitKind::Full);

  std::int64_t unit = 0;
  for (const std::int64_t end = units - shortUnits; unit < end;) {
    const auto count = static_cast<int>(std::min<std::int64_t>(end - unit, MAX_TRANSFER_UNITS));
    runs.push_back({UnitKind::Full, static_cast<int>(unit), count, unit * vectorsPerUnit});
    unit += count;
  }
  if (shortUnits > 0) {
    runs.push_back({UnitKind::Short, static_cast<int>(unit), shortUnits, unit * vectorsPerUnit});
  }
  return runs;
}

CPatternPacker::CPatternPacker(ChannelMode mode, UnitKind kind)
    : m_half(mode == ChannelMode::Half),
      m_short(kind == UnitKind::Short),
      m_unitsPerGroup(GetBitArrange(mode, kind).unitsPerGroup),
      m_vectorsPerGroup(GetVectorsPerGroup(mode, kind)) {}

void CPatternPacker::Pack(const PATTERN_ROWS& rows, int baseChannel, std::int64_t firstVector,
                          int groupCount, std::span<std::uint16_t> words) const {
  const std::size_t room = words.size() / static_cast<std::size_t>(WordsPerGroup());
  const int groups = groupCount < 0 || static_cast<std::size_t>(groupCount) < room
                         ? groupCount
                         : static_cast<int>(room);
  const auto firstByte = static_cast<std::size_t>(std::max(baseChannel, 0) / 8);
  if (m_half && m_short)
    return PackGroups<true, true>(rows, firstByte, firstVector, groups, words.data());
  if (m_half) return PackGroups<true, false>(rows, firstByte, firstVector, groups, words.data());
  if (m_short) return PackGroups<false, true>(rows, firstByte, firstVector, groups, words.data());
  PackGroups<false, false>(rows, firstByte, firstVector, groups, words.data());
}

}  // namespace quillpg
