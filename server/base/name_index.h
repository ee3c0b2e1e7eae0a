#pragma once

#include "quillpg/api.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace quillpg {

/// One distinct name of an index.
struct INDEXED_NAME {
  std::string_view name;   ///< as its first holder spells it
  std::uint64_t hash = 0;  ///< of the folded name
  int first = -1;          ///< lowest position that bears the name
  int count = 0;           ///< positions that bear it
  bool used = false;       ///< for the owner of the index to mark what is referred to
};

/// Answers "who is the first of that name" and "how many are there" for a list of names, without
/// regard to case, as a walk through the list would. Open-addressed, for names by the thousand.
///
/// The index refers to the texts given to it: they must outlive the next Clear.
class QUILLPG_API CNameIndex {
 public:
  /// Forgets everything and makes room for `names` names; cannot fail where that is none.
  void Clear(int names = 0);

  /// Positions must be added in rising order. An empty name is not taken in: nothing is found by
  /// it.
  void Add(std::string_view name, int position);

  /// Null for a name that is not there.
  const INDEXED_NAME* Find(std::string_view name) const;
  INDEXED_NAME* Find(std::string_view name);

  /// Lowest position that bears the name, or -1.
  int First(std::string_view name) const {
    const INDEXED_NAME* found = Find(name);
    return found ? found->first : -1;
  }

 private:
  std::size_t Slot(std::string_view name, std::uint64_t hash) const;
  void Grow(std::size_t slots);

  std::vector<INDEXED_NAME> m_names;
  std::vector<std::int32_t> m_slots;  // into m_names, -1 free; a power of two of them
};

}  // namespace quillpg
