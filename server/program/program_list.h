#pragma once

#include "base/modified_flag.h"
#include "base/ordered_list.h"
#include "program/program_manager.h"
#include "quillpg/api.h"
#include "quillpg/result_codes.h"

#include <cstdint>
#include <string_view>

namespace quillpg {

/// A manager whose list is sent as a whole as soon as anything in it has changed: sequence,
/// subsequences and events.
template <typename T>
class QUILLPG_API CProgramList : public CProgramManager {
 public:
  /// 1 when the manager's flag or that of anything in the list is set.
  int IsModified() const { return m_modified.IsSet() || m_list.AnyModified() ? 1 : 0; }
  /// 0 also clears the flags of everything in the list.
  Status SetModified(int flag) {
    m_modified.Store(flag);
    if (flag == 0) m_list.ClearModified();
    return S_OK;
  }

  /// Counts the changes of the list and of everything in it.
  std::uint64_t Revision() const { return m_list.Revision(); }

  /// Bytes in a setup file.
  Status GetSize(std::uint64_t& size) const {
    size = 4 + m_list.SizeOfAll();
    return S_OK;
  }

 protected:
  explicit CProgramList(int limit) : m_list(limit) {}

  /// Sets the manager's flag unless the change failed; gives `status`.
  Status Changed(Status status) {
    if (!Failed(status)) m_modified.Set();
    return status;
  }

  Status GetCount(int& count) const {
    count = m_list.Count();
    return S_OK;
  }
  /// A bad index gives null with S_OK.
  Status GetAt(int index, T** object) const {
    if (!object) return E_FAIL;
    *object = m_list.At(index);
    return S_OK;
  }
  /// First object of that name; -1 and E_FAIL without one and for an empty name.
  Status FindFirst(std::string_view name, int& index) const {
    index = name.empty() ? -1 : m_list.Find(name);
    return index < 0 ? E_FAIL : S_OK;
  }
  /// Objects of that name; 0 and E_FAIL for an empty one.
  Status CountAll(std::string_view name, int& count) const {
    count = name.empty() ? 0 : m_list.CountNamed(name);
    return name.empty() ? E_FAIL : S_OK;
  }

  COrderedList<T> m_list;

 private:
  CModifiedFlag m_modified;
};

}  // namespace quillpg
