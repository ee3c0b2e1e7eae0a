#include "program/group_state.h"

#include "app/setup_stream.h"
#include "base/guard.h"
#include "base/setup_file_format.h"

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

Status GROUP_STATE::Read(std::istream& stream) { return ReadFromStream(stream, *this); }
Status GROUP_STATE::Write(std::ostream& stream) const { return WriteToStream(stream, *this); }

Status GROUP_STATE::Read(CSetupFileReader& reader) {
  m_displayValue2 = 1;  // the one that files do not hold
  LayOutGroupState(reader, m_groupName, m_radix, m_displayValue1, m_displayValue3);
  return reader.GetStatus();
}

Status GROUP_STATE::Write(CByteWriter& writer) const {
  LayOutGroupState(writer, m_groupName, m_radix, m_displayValue1, m_displayValue3);
  return writer.GetStatus();
}

}  // namespace quillpg
