#pragma once

#include "base/guard.h"
#include "base/revision.h"
#include "base/text.h"
#include "quillpg/limits.h"
#include "quillpg/result_codes.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
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
/// Objects that have `ReportTo(CRevision*)` report their own changes to the list's revision.
template <typename T>
class COrderedList {
 public:
  /// `limit` is the largest number of slots that the list may have, empty ones included.
  explicit COrderedList(int limit = MAX_LIST_POSITIONS) : m_limit(limit) {}
  COrderedList(const COrderedList&) = delete;
  COrderedList& operator=(const COrderedList&) = delete;

  int Count() const { return static_cast<int>(m_slots.size()); }
  bool IsFull() const { return Count() >= m_limit; }
  bool Holds(int position) const { return position >= 0 && position < Count(); }

  /// True when `count` slots from `first` on lie in the list; safe for any values.
  bool HoldsRange(int first, int count) const {
    return first >= 0 && count >= 0 && first <= Count() && count <= Count() - first;
  }

  /// Null for a position outside the list and for an empty slot.
  T* At(int position) const {
    return Holds(position) ? m_slots[static_cast<std::size_t>(position)].object.get() : nullptr;
  }

  /// Tells an object of the list from all others that it has had and will have: an address may be
  /// used again while the front end is told of a change, an id never is.
  using ID = std::uint64_t;
  /// 0 for a position outside the list and for an empty slot.
  ID IdAt(int position) const {
    return Holds(position) ? m_slots[static_cast<std::size_t>(position)].id : 0;
  }
  /// Where the object stands now; `hint` is looked at first. -1 when it is no longer in the list.
  int PositionOf(ID id, int hint) const {
    if (id == 0 || IdAt(hint) == id) return id == 0 ? -1 : hint;
    const auto slot = std::ranges::find(m_slots, id, &SLOT::id);
    return slot == m_slots.end() ? -1 : static_cast<int>(slot - m_slots.begin());
  }
  /// The same for an object that the caller knows to live.
  int PositionOf(const T* object) const {
    for (int i = 0; object && i < Count(); ++i) {
      if (At(i) == object) return i;
    }
    return -1;
  }

  Status Append(std::unique_ptr<T>&& object) { return Insert(Count(), std::move(object)); }

  /// Inserts before `position`; at or beyond the end the list grows to it with empty slots in
  /// between. E_FAIL, with nothing changed, for a null object, a negative position or a list that
  /// would outgrow its limit.
  Status Insert(int position, std::unique_ptr<T>&& object) {
    if (!object || position < 0 || IsFull() || position >= m_limit) return E_FAIL;
    const Status grown = GuardAllocation([&] { return Grow(std::max(position, Count()) + 1); });
    if (Failed(grown)) return grown;
    if (position > Count()) m_slots.resize(static_cast<std::size_t>(position));
    Connect(object.get(), &m_revision);
    m_slots.insert(m_slots.begin() + position, SLOT{std::move(object), ++m_lastId});
    m_revision.Touch();
    return S_OK;
  }

  /// Appends an object that a file holds, beyond the limit too; throws when memory runs out.
  void AppendRead(std::unique_ptr<T>&& object) {
    m_slots.push_back(SLOT{std::move(object), ++m_lastId});
    Connect(m_slots.back().object.get(), &m_revision);
    m_revision.Touch();
  }

  /// Replaces the content by copies of the other list's objects, empty slots included; E_FAIL, with
  /// nothing changed, when memory runs out.
  Status CopyFrom(const COrderedList& other) {
    return GuardAllocation([&] {
      std::vector<SLOT> copies(other.m_slots.size());
      std::ranges::transform(other.m_slots, copies.begin(), [this](const SLOT& slot) {
        return slot.object ? SLOT{std::make_unique<T>(*slot.object), ++m_lastId} : SLOT{};
      });
      m_slots.swap(copies);
      for (const SLOT& slot : m_slots) Connect(slot.object.get(), &m_revision);
      m_revision.Touch();
      return S_OK;
    });
  }

  /// Destroys and removes `count` slots from `first` on; E_FAIL, with nothing changed, for a range
  /// that does not lie in the list.
  Status Remove(int first, int count = 1) {
    if (!HoldsRange(first, count)) return E_FAIL;
    const auto from = m_slots.begin() + first;
    m_slots.erase(from, from + count);
    m_revision.Touch();
    return S_OK;
  }

  /// As Remove, with `visit(position, object, destroy)` called for each slot in turn; the object is
  /// null for an empty slot. `visit` must call `destroy()`; it tells the front end before or after,
  /// which may change the list meanwhile: an object that is gone by then is not visited. The slots
  /// are closed at the end, so positions are those before any removal. Empty slots elsewhere in the
  /// list stay. A failure of `visit` ends it at once: the list may be gone.
  template <typename Visit>
  Status RemoveEach(int first, int count, Visit&& visit) {
    if (!HoldsRange(first, count)) return E_FAIL;
    std::vector<ID> doomed;
    const Status status = GuardAllocation([&] {
      for (int i = 0; i < count; ++i) doomed.push_back(IdAt(first + i));
      return S_OK;
    });
    if (Failed(status)) return status;
    const bool gapsElsewhere = EmptySlots(0, Count()) != EmptySlots(first, count);
    for (int position = first; const ID id : doomed) {
      const int now = PositionOf(id, position);
      if (id == 0 || now >= 0) {
        const auto destroy = [&] { (void)Release(PositionOf(id, now)); };
        const Status visited = GuardAllocation([&] { return visit(position, At(now), destroy); });
        if (Failed(visited)) return visited;
      }
      ++position;
    }
    // Without gaps to keep all are closed, wherever `visit` has moved them.
    CloseEmpty(gapsElsewhere ? first : 0, gapsElsewhere ? count : Count());
    return S_OK;
  }

  /// Takes the object out of its slot, which stays in the list, empty.
  std::unique_ptr<T> Release(int position) {
    if (!At(position)) return nullptr;
    m_revision.Touch();
    Connect(At(position), nullptr);
    return std::exchange(m_slots[static_cast<std::size_t>(position)], SLOT{}).object;
  }

  /// Takes the slot out of the list and hands its object over.
  std::unique_ptr<T> Take(int position) {
    std::unique_ptr<T> object = Release(position);
    (void)Remove(position);  // nothing to remove where there was no slot
    return object;
  }

  void Clear() {
    m_slots.clear();
    m_revision.Touch();
  }

  /// Exchanges the slot with its upper neighbour (its lower one); E_FAIL where there is none.
  Status MoveUp(int position) { return position >= 1 ? SwapNeighbours(position - 1) : E_FAIL; }
  Status MoveDown(int position) { return SwapNeighbours(position); }

  /// Moves `count` slots from `first` on, in their order, to position `to` of the list without
  /// them; beyond its end they come last. E_FAIL, with nothing changed, for a range that does not
  /// lie in the list and a negative `to`.
  Status Move(int first, int to, int count) {
    if (!HoldsRange(first, count) || to < 0) return E_FAIL;
    const auto from = m_slots.begin() + first;
    const auto end = from + count;
    const int target = std::min(to, Count() - count);
    if (target < first) {
      std::rotate(m_slots.begin() + target, from, end);
    } else {
      std::rotate(from, end, m_slots.begin() + target + count);
    }
    m_revision.Touch();
    return S_OK;
  }

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
    ForEach([&](const T& object) { count += EqualNoCase(NameOf(object), name) ? 1 : 0; });
    return count;
  }

  /// True when a slot other than `position` holds an object of that name.
  bool IsNamedElsewhere(std::string_view name, int position) const {
    for (int i = 0; i < Count(); ++i) {
      const T* object = i == position ? nullptr : At(i);
      if (object && EqualNoCase(NameOf(*object), name)) return true;
    }
    return false;
  }

  /// Of objects that carry a modified flag: true when one is set; clears all of them.
  bool AnyModified() const {
    return Any([](const T& object) { return object.IsModified(); });
  }
  void ClearModified() {
    ForEach([](T& object) { (void)object.SetModified(0); });
  }

  /// Sum of the objects' sizes in a setup file.
  std::uint64_t SizeOfAll() const {
    std::uint64_t size = 0;
    ForEach([&size](const T& object) { size += object.GetSize(); });
    return size;
  }

  /// Counts the changes of the list and those that its objects report.
  std::uint64_t Revision() const { return m_revision.Count(); }
  /// Passes every change on to `owner`, which must outlive the list.
  void ReportTo(CRevision* owner) { m_revision.ReportTo(owner); }

  /// Calls `visit` with each object in order, empty slots left out. `visit` must not change the
  /// list.
  template <typename Visit>
  void ForEach(Visit&& visit) const {
    for (const SLOT& slot : m_slots) {
      if (slot.object) visit(*slot.object);
    }
  }

  /// True as soon as `test` holds for one object.
  template <typename Test>
  bool Any(Test&& test) const {
    for (const SLOT& slot : m_slots) {
      if (slot.object && test(*slot.object)) return true;
    }
    return false;
  }

 private:
  struct SLOT {
    std::unique_ptr<T> object;
    ID id = 0;  // of the object; 0 without one

    bool IsEmpty() const { return !object; }
  };

  Status SwapNeighbours(int upper) {
    if (!HoldsRange(upper, 2)) return E_FAIL;
    std::swap(m_slots[static_cast<std::size_t>(upper)],
              m_slots[static_cast<std::size_t>(upper) + 1]);
    m_revision.Touch();
    return S_OK;
  }

  // Room for `slots`, at least doubling, so that what follows cannot fail half-way.
  Status Grow(int slots) {
    if (static_cast<std::size_t>(slots) > m_slots.capacity()) {
      m_slots.reserve(std::max(static_cast<std::size_t>(slots), 2 * m_slots.capacity()));
    }
    return S_OK;
  }

  // Number of empty slots among `count` from `first` on, which lie in the list.
  std::ptrdiff_t EmptySlots(int first, int count) const {
    const auto from = m_slots.begin() + first;
    return std::count_if(from, from + count, std::mem_fn(&SLOT::IsEmpty));
  }

  // Closes the empty slots among `count` from `first` on, as far as the list still reaches.
  void CloseEmpty(int first, int count) {
    const auto from = m_slots.begin() + std::min(first, Count());
    const auto end = from + std::min(count, Count() - std::min(first, Count()));
    m_slots.erase(std::remove_if(from, end, std::mem_fn(&SLOT::IsEmpty)), end);
    m_revision.Touch();
  }

  static void Connect(T* object, CRevision* revision) {
    if constexpr (requires { object->ReportTo(revision); }) {
      if (object) object->ReportTo(revision);
    }
  }

  CRevision m_revision;
  std::vector<SLOT> m_slots;
  ID m_lastId = 0;
  int m_limit;
};

}  // namespace quillpg
