#include "hardware/bit_arrange.h"

#include <array>
#include <cstddef>

namespace quillpg {

namespace {

constexpr std::size_t kUnitBits = std::size_t{WORDS_PER_UNIT} * BITS_PER_WORD;
constexpr BIT_ENTRY kUnused = {-1, -1};

// Appends entries to a table of fixed size.
template <std::size_t N>
struct TABLE {
  std::array<BIT_ENTRY, N> entries{};
  std::size_t used = 0;

  constexpr void Add(BIT_ENTRY entry) { entries[used++] = entry; }
};

// The hardware swaps neighbouring channels throughout.
constexpr int Neighbour(int channel) { return channel ^ 1; }

// HALF: one byte a channel, the latest vector in bit 0; a short unit leaves bit 0 empty.
constexpr auto MakeHalf(UnitKind kind) {
  TABLE<kUnitBits> table;
  for (int channel = 0; channel < 32; ++channel) {
    if (kind == UnitKind::Short) table.Add(kUnused);
    for (int vector = kind == UnitKind::Short ? 6 : 7; vector >= 0; --vector) {
      table.Add({Neighbour(channel), vector});
    }
  }
  return table.entries;
}

// One unit of FULL: one byte for the two channels that lie 8 apart, the latest vector in the low
// bits. `bits` of 7 leaves bit 0 empty. `odd` and `even` are added to the channel where the bit
// counted down from the top is odd or even; `shift` moves the vectors on.
template <std::size_t N>
constexpr void AddFullUnit(TABLE<N>& table, int bits, int odd, int even, int shift) {
  for (int base = 0; base < 64; base += 16) {
    for (int i = 0; i < 8; ++i) {
      if (bits == 7) table.Add(kUnused);
      for (int j = bits - 1; j >= 0; --j) {
        table.Add({Neighbour(base + i + (j % 2 != 0 ? odd : even)), (j + shift) / 2});
      }
    }
  }
}

constexpr auto MakeFull() {
  TABLE<kUnitBits> table;
  AddFullUnit(table, 8, 8, 0, 0);
  return table.entries;
}

// The two units of a short pair swap the roles of the channels and share vector 3.
constexpr auto MakeFullShort() {
  TABLE<2 * kUnitBits> table;
  AddFullUnit(table, 7, 8, 0, 0);
  AddFullUnit(table, 7, 0, 8, 7);
  return table.entries;
}

constexpr auto kHalfFullEntries = MakeHalf(UnitKind::Full);
constexpr auto kHalfShortEntries = MakeHalf(UnitKind::Short);
constexpr auto kFullFullEntries = MakeFull();
constexpr auto kFullShortEntries = MakeFullShort();

constexpr BitArrange kHalfFull = {1, 8, 16, kHalfFullEntries};
constexpr BitArrange kHalfShort = {1, 7, 16, kHalfShortEntries};
constexpr BitArrange kFullFull = {1, 8, 16, kFullFullEntries};
constexpr BitArrange kFullShort = {2, 14, 32, kFullShortEntries};

}  // namespace

const BitArrange& GetBitArrange(ChannelMode mode, UnitKind kind) {
  if (mode == ChannelMode::Half) return kind == UnitKind::Short ? kHalfShort : kHalfFull;
  return kind == UnitKind::Short ? kFullShort : kFullFull;
}

int GetVectorsPerGroup(ChannelMode mode, UnitKind kind) {
  const int step = GetBitArrange(mode, kind).vectorStep;
  return mode == ChannelMode::Half ? step : step / 2;
}

}  // namespace quillpg
