#pragma once

#include "base/text.h"
#include "quillpg/limits.h"
#include "quillpg/result_codes.h"

#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace quillpg {

/// Ordered list that owns its objects, positions from 0: the one home of the rules that all
/// managers of program objects share. A slot may be empty (null) after an insert beyond the end.
///
/// An object passes to the list only when the operation succeeds: a refused one is still the
/// caller's, which is why insertion takes the owner by rvalue reference and moves from it last.
/// Look-ups by name skip empty slots and use `NameOf(const T&)`, found beside the object's class.
template <typename T>
class COrderedList {
 public:
  /// `limit` is the largest number of slots that the list may have, empty ones included.
  explicit COrderedList(int limit = MAX_LIST_POSITIONS) : m_limit(limit) {}

  int Count() const { return static_cast<int>(m_slots.size()); }
  bool IsFull() const { return Count() >= m_limit; }
  bool Holds(int position) const { return position >= 0 && position < Count(); }

  /// True when `count` slots from `first` on lie in the list; safe for any values.
  bool HoldsRange(int first, int count) const {
    return first >= 0 && count >= 0 && first <= Count() && count <= Count() - first;
  }

  /// Null for a position outside the list and for an empty slot.
  T* At(int position) const {
    return Holds(position) ? m_slots[static_cast<std::size_t>(position)].get() : nullptr;
  }

  Status Append(std::unique_ptr<T>&& object) { return Insert(Count(), std::move(object)); }

  /// Inserts before `position`; at or beyond the end the list grows to it with empty slots in
  /// between. E_FAIL, with nothing changed, for a null object, a negative position or a list that
  /// would outgrow its limit.
  Status Insert(int position, std::unique_ptr<T>&& object) {
    if (!object || position < 0 || IsFull() || position >= m_limit) return E_FAIL;
    if (position > Count()) m_slots.resize(static_cast<std::size_t>(position));
    m_slots.insert(m_slots.begin() + position, std::move(object));
    return S_OK;
  }

  /// Destroys and removes `count` slots from `first` on; E_FAIL, with nothing changed, for a range
  /// that does not lie in the list.
  Status Remove(int first, int count = 1) {
    if (!HoldsRange(first, count)) return E_FAIL;
    const auto from = m_slots.begin() + first;
    m_slots.erase(from, from + count);
    return S_OK;
  }

  /// Takes the object out of its slot, which stays in the list, empty.
  std::unique_ptr<T> Release(int position) {
    return Holds(position) ? std::move(m_slots[static_cast<std::size_t>(position)]) : nullptr;
  }

  /// Takes the slot out of the list and hands its object over.
  std::unique_ptr<T> Take(int position) {
    std::unique_ptr<T> object = Release(position);
    (void)Remove(position);  // nothing to remove where there was no slot
    return object;
  }

  void Clear() { m_slots.clear(); }

  /// Exchanges the slot with its upper neighbour (its lower one); E_FAIL where there is none.
  Status MoveUp(int position) { return SwapNeighbours(position - 1, position >= 1); }
  Status MoveDown(int position) { return SwapNeighbours(position, position >= 0); }

  /// Position of the first object of that name without regard to case, or -1. The caller trims.
  int Find(std::string_view name) const {
    for (int i = 0; i < Count(); ++i) {
      const T* object = At(i);
      if (object && EqualNoCase(NameOf(*object), name)) return i;
    }
    return -1;
  }

  /// Number of objects of that name without regard to case. The caller trims.
  int CountNamed(std::string_view name) const {
    int count = 0;
    for (const auto& slot : m_slots) count += slot && EqualNoCase(NameOf(*slot), name) ? 1 : 0;
    return count;
  }

  /// Calls `visit` with each object in order, empty slots left out. `visit` must not change the
  /// list.
  template <typename Visit>
  void ForEach(Visit&& visit) const {
    for (const auto& slot : m_slots) {
      if (slot) visit(*slot);
    }
  }

  /// True as soon as `test` holds for one object.
  template <typename Test>
  bool Any(Test&& test) const {
    for (const auto& slot : m_slots) {
      if (slot && test(*slot)) return true;
    }
    return false;
  }

 private:
  Status SwapNeighbours(int upper, bool inRange) {
    if (!inRange || !HoldsRange(upper, 2)) return E_FAIL;
    std::swap(m_slots[static_cast<std::size_t>(upper)],
              m_slots[static_cast<std::size_t>(upper) + 1]);
    return S_OK;
  }

  std::vector<std::unique_ptr<T>> m_slots;
  int m_limit;
};

}  // namespace quillpg
