#pragma once

namespace quillpg {

/// While it lives, the allocation number `position`, counted from 0, and all later ones fail.
class CFailingAllocation {
 public:
  explicit CFailingAllocation(long position);
  ~CFailingAllocation();
  CFailingAllocation(const CFailingAllocation&) = delete;
  CFailingAllocation& operator=(const CFailingAllocation&) = delete;

  /// Some allocation has failed.
  bool Hit() const;
};

}  // namespace quillpg
