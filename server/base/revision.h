#pragma once

#include <cstdint>

namespace quillpg {

/// Counts the changes of a list and of the names in it, so that whoever derived something from the
/// list can tell in one comparison whether that still holds.
///
/// An object in a list reports to the list's revision (its owner), a list inside an object to the
/// object's: Touch reaches every level. Copying an object copies neither the count nor the owner.
class CRevision {
 public:
  CRevision() = default;
  CRevision(const CRevision&) {}
  // Copies nothing, so copying itself does no harm.
  // NOLINTNEXTLINE(bugprone-unhandled-self-assignment)
  CRevision& operator=(const CRevision&) {
    Touch();
    return *this;
  }

  void Touch() {
    for (CRevision* level = this; level; level = level->m_owner) ++level->m_count;
  }
  /// `owner` must outlive this object or be taken away again with null.
  void ReportTo(CRevision* owner) { m_owner = owner; }

  std::uint64_t Count() const { return m_count; }

 private:
  std::uint64_t m_count = 0;
  CRevision* m_owner = nullptr;
};

}  // namespace quillpg
