#include "program/group_state.h"

#include "base/guard.h"

namespace quillpg {

Status GROUP_STATE::Initialize() {
  *this = GROUP_STATE();
  return S_OK;
}

Status GROUP_STATE::Initialize(Radix radix, int displayValue3, const std::string& groupName) {
  const Status status = StoreText(m_groupName, groupName);
  if (Failed(status)) return status;
  m_radix = radix;
  m_displayValue3 = displayValue3;
  return S_OK;
}

Status GROUP_STATE::SetDisplayValue1(int value) {
  m_displayValue1 = value;
  return S_OK;
}

Status GROUP_STATE::SetDisplayValue2(int value) {
  m_displayValue2 = value;
  return S_OK;
}

Status GROUP_STATE::SetDisplayValue3(int value) {
  m_displayValue3 = value;
  return S_OK;
}

Status GROUP_STATE::SetRadix(Radix radix) {
  m_radix = radix;
  return S_OK;
}

Status GROUP_STATE::SetGroupName(const std::string& name) { return StoreText(m_groupName, name); }

// Display value 2 is not stored in files.
std::uint64_t GROUP_STATE::GetSize() const { return m_groupName.size() + 17; }

// Not built yet.
Status GROUP_STATE::Read(std::istream& /*stream*/) { return E_FAIL; }
// Not built yet.
Status GROUP_STATE::Write(std::ostream& /*stream*/) const { return E_FAIL; }

}  // namespace quillpg
