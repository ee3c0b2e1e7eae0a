#include "base/name_index.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

namespace quillpg {

namespace {

constexpr std::size_t kLeastSlots = 16;

constexpr std::uint64_t EveryByte(std::uint64_t byte) { return byte * 0x0101010101010101u; }

// FoldCase for eight characters at once: 0x20 is added to the bytes from 'A' to 'Z'.
std::uint64_t FoldWord(std::uint64_t word) {
  const std::uint64_t low = word & EveryByte(0x7F);
  const std::uint64_t fromA = low + EveryByte(0x80 - 'A');
  const std::uint64_t beyondZ = low + EveryByte(0x7F - 'Z');
  const std::uint64_t upper = (fromA ^ beyondZ) & ~word & EveryByte(0x80);
  return word | (upper >> 2);
}

// Any object of a trivial type at `text`.
template <typename T>
std::uint64_t Load(const char* text) {
  T value;
  std::memcpy(&value, text, sizeof value);
  return value;
}

// The eight characters from `at` on. Where fewer are left the last ones are taken once more, so
// that all are read with loads of fixed size and none beyond the name.
std::uint64_t WordAt(std::string_view name, std::size_t at) {
  const char* text = name.data();
  const std::size_t size = name.size();
  if (size >= 8) return Load<std::uint64_t>(text + std::min(at, size - 8));
  if (size >= 4) return Load<std::uint32_t>(text) | Load<std::uint32_t>(text + size - 4) << 32;
  return Load<std::uint8_t>(text) | Load<std::uint8_t>(text + size / 2) << 8 |
         Load<std::uint8_t>(text + size - 1) << 16;
}

// A product's upper bits depend on all bits below them, so slots are taken from the top; the
// rotation brings the upper bits of one word to where the next product spreads them.
std::uint64_t HashFolded(std::string_view name) {
  constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15u;
  constexpr int kRotation = 23;
  std::uint64_t hash = name.size();
  for (std::size_t at = 0; at < name.size(); at += 8) {
    hash = (std::rotl(hash, kRotation) ^ FoldWord(WordAt(name, at))) * kMultiplier;
  }
  return hash;
}

bool SameName(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t at = 0; at < a.size(); at += 8) {
    if (FoldWord(WordAt(a, at)) != FoldWord(WordAt(b, at))) return false;
  }
  return true;
}

}  // namespace

void CNameIndex::Clear(int names) {
  m_names.clear();
  m_slots.clear();
  if (names <= 0) return;
  const auto room = static_cast<std::size_t>(names);
  m_names.reserve(room);
  m_slots.assign(std::bit_ceil(std::max(kLeastSlots, 2 * room)), -1);
}

void CNameIndex::Add(std::string_view name, int position) {
  if (name.empty()) return;
  if (2 * (m_names.size() + 1) > m_slots.size()) Grow(std::max(kLeastSlots, 2 * m_slots.size()));
  const std::uint64_t hash = HashFolded(name);
  std::int32_t& slot = m_slots[Slot(name, hash)];
  if (slot < 0) {
    slot = static_cast<std::int32_t>(m_names.size());
    m_names.push_back({.name = name, .hash = hash, .first = position});
  }
  ++m_names[static_cast<std::size_t>(slot)].count;
}

const INDEXED_NAME* CNameIndex::Find(std::string_view name) const {
  if (name.empty() || m_names.empty()) return nullptr;
  const std::int32_t found = m_slots[Slot(name, HashFolded(name))];
  return found < 0 ? nullptr : &m_names[static_cast<std::size_t>(found)];
}

INDEXED_NAME* CNameIndex::Find(std::string_view name) {
  return const_cast<INDEXED_NAME*>(std::as_const(*this).Find(name));
}

// The slot that holds the name, or the free one where it belongs. At least half of the slots are
// free, so the walk ends.
std::size_t CNameIndex::Slot(std::string_view name, std::uint64_t hash) const {
  const std::size_t mask = m_slots.size() - 1;
  auto slot = static_cast<std::size_t>(hash >> (64 - std::countr_zero(m_slots.size())));
  while (m_slots[slot] >= 0) {
    const INDEXED_NAME& held = m_names[static_cast<std::size_t>(m_slots[slot])];
    if (held.hash == hash && SameName(held.name, name)) break;
    slot = (slot + 1) & mask;
  }
  return slot;
}

void CNameIndex::Grow(std::size_t slots) {
  m_slots.assign(slots, -1);
  for (std::size_t i = 0; i < m_names.size(); ++i) {
    m_slots[Slot(m_names[i].name, m_names[i].hash)] = static_cast<std::int32_t>(i);
  }
}

}  // namespace quillpg
