#pragma once

namespace quillpg {

/// "Changed since the last download", stored from the integer that the front end hands in (any
/// non-zero value counts as set). Has a name of its own so that a search for Clear shows every
/// place that forgets a change.
class CModifiedFlag {
 public:
  constexpr CModifiedFlag() = default;
  constexpr explicit CModifiedFlag(bool set) : m_set(set) {}

  constexpr void Set() { m_set = true; }
  constexpr void Clear() { m_set = false; }
  constexpr void Store(int flag) { m_set = flag != 0; }
  constexpr bool IsSet() const { return m_set; }

 private:
  bool m_set = false;
};

}  // namespace quillpg
