#pragma once

#include "base/modified_flag.h"
#include "base/revision.h"
#include "quillpg/api.h"
#include "quillpg/result_codes.h"

namespace quillpg {

/// What the rows of sequence, subsequences and events share: a modified flag of their own, and a
/// count of changes that they pass on to their list.
class QUILLPG_API CProgramRow {
 public:
  bool IsModified() const { return m_modified.IsSet(); }
  /// Leaves the count of changes alone.
  Status SetModified(int flag) {
    m_modified.Store(flag);
    return S_OK;
  }
  bool IsValid() const { return true; }

  /// `list` counts the changes of the row from now on; null takes it away.
  void ReportTo(CRevision* list) { m_revision.ReportTo(list); }

 protected:
  explicit CProgramRow(bool modified) : m_modified(modified) {}
  CProgramRow(const CProgramRow&) = default;
  CProgramRow& operator=(const CProgramRow&) = default;
  ~CProgramRow() = default;

  /// Counts a change; the flag stays.
  void Touch() { m_revision.Touch(); }
  /// Counts a change and sets the flag, unless it failed; gives `status`.
  Status Changed(Status status) {
    if (Failed(status)) return status;
    m_modified.Set();
    Touch();
    return status;
  }

 private:
  CModifiedFlag m_modified;
  CRevision m_revision;
};

}  // namespace quillpg
