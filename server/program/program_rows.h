#pragma once

#include "base/guard.h"
#include "base/modified_flag.h"
#include "base/ordered_list.h"
#include "base/revision.h"
#include "quillpg/api.h"
#include "quillpg/result_codes.h"

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

namespace quillpg {

/// What an event and a subsequence share: a name and an owned list of rows that are edited as one
/// object. Every change of the list marks it modified.
template <typename ROW>
class QUILLPG_API CProgramRows {
 public:
  CProgramRows(const CProgramRows&) = delete;
  CProgramRows& operator=(const CProgramRows&) = delete;

  /// Removes all rows; the name stays.
  Status DeleteAll() {
    m_rows.Clear();
    return Changed(S_OK);
  }
  /// Exchange with the neighbour; E_FAIL where there is none.
  Status MoveUp(int index) { return Changed(m_rows.MoveUp(index)); }
  Status MoveDown(int index) { return Changed(m_rows.MoveDown(index)); }

  /// True when its own flag or the flag of a row is set.
  bool IsModified() const { return m_modified.IsSet() || m_rows.AnyModified(); }
  /// 0 also clears the flag of every row.
  Status SetModified(int flag) {
    m_modified.Store(flag);
    if (flag == 0) m_rows.ClearModified();
    return S_OK;
  }
  bool IsValid() const { return true; }

  /// `list` counts the changes of name and rows from now on; null takes it away.
  void ReportTo(CRevision* list) { m_revision.ReportTo(list); }

  /// Bytes in a setup file.
  std::uint64_t GetSize() const { return m_name.size() + 9 + m_rows.SizeOfAll(); }

 private:
  Status Changed(Status status) {
    if (!Failed(status)) m_modified.Set();
    return status;
  }

  CModifiedFlag m_modified{true};
  CRevision m_revision;  // before the rows, which report to it

 protected:
  explicit CProgramRows(int limit) : m_rows(limit) { m_rows.ReportTo(&m_revision); }
  ~CProgramRows() = default;

  /// Takes over the name and duplicates the rows, which keep their flags. E_FAIL, with nothing
  /// changed, when memory runs out.
  Status CopyFrom(const CProgramRows& source) {
    if (this == &source) return S_OK;
    return GuardAllocation([&] {
      std::string name = source.m_name;
      const Status status = m_rows.CopyFrom(source.m_rows);
      if (Failed(status)) return status;
      m_name = std::move(name);
      m_revision.Touch();
      return Changed(S_OK);
    });
  }

  /// Stores the name as given; the modified flag stays.
  Status SetName(const std::string& name) {
    m_revision.Touch();
    return StoreText(m_name, name);
  }

  /// Null and E_FAIL for a bad index.
  Status GetRow(int index, ROW** row) const {
    if (!row) return E_FAIL;
    *row = m_rows.At(index);
    return *row ? S_OK : E_FAIL;
  }
  /// Takes the row over on success only.
  Status InsertRow(int position, std::unique_ptr<ROW>&& row) {
    return Changed(m_rows.Insert(position, std::move(row)));
  }
  /// Copies what the row holds; E_FAIL, with nothing changed, for null, for a bad index and when
  /// memory runs out.
  Status SetRow(int index, const ROW* row) {
    ROW* target = m_rows.At(index);
    if (!row || !target) return E_FAIL;
    return GuardAllocation([&] {
      ROW copy = *row;
      *target = std::move(copy);  // cannot fail half-way
      return Changed(S_OK);
    });
  }
  Status DeleteRows(int first, int count) { return Changed(m_rows.Remove(first, count)); }

  /// To be called when name and rows were read: what is loaded is not in the hardware.
  void Loaded() {
    m_modified.Set();
    m_revision.Touch();
  }

  std::string m_name;
  COrderedList<ROW> m_rows;
};

}  // namespace quillpg
