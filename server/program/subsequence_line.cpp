#include "program/subsequence_line.h"

#include "base/guard.h"

namespace quillpg {

Status SUBSEQUENCE_LINE::Initialize() {
  *this = SUBSEQUENCE_LINE();
  return S_OK;
}

Status SUBSEQUENCE_LINE::SetRepeatCount(int count) {
  m_repeatCount = count;
  m_modified.Set();
  m_revision.Touch();
  return S_OK;
}

Status SUBSEQUENCE_LINE::SetOutput(const std::string& blockName) {
  const Status status = StoreText(m_output, blockName);
  if (Failed(status)) return status;
  m_modified.Set();
  m_revision.Touch();
  return S_OK;
}

Status SUBSEQUENCE_LINE::SetModified(int flag) {
  m_modified.Store(flag);
  return S_OK;
}

std::uint64_t SUBSEQUENCE_LINE::GetSize() const { return m_output.size() + 9; }

// Not built yet.
Status SUBSEQUENCE_LINE::Read(std::istream& /*stream*/) { return E_FAIL; }
// Not built yet.
Status SUBSEQUENCE_LINE::Write(std::ostream& /*stream*/) const { return E_FAIL; }

}  // namespace quillpg
