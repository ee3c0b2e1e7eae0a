#include "program/event_definition.h"

namespace quillpg {

namespace {

bool IsPosition(int position) { return position >= 0 && position < EVENT_INPUTS; }

}  // namespace

Status EVENT_DEFINITION::Initialize() {
  m_pattern.fill('1');
  m_revision.Touch();
  return S_OK;
}

Status EVENT_DEFINITION::SetEventDefBit(int position, char character) {
  if (IsPosition(position)) m_pattern[static_cast<std::size_t>(position)] = character;
  m_modified.Set();  // deliberate: also when nothing was stored
  m_revision.Touch();
  return S_OK;
}

char EVENT_DEFINITION::GetEventDefBit(int position) const {
  return IsPosition(position) ? m_pattern[static_cast<std::size_t>(position)] : '0';
}

Status EVENT_DEFINITION::SetModified(int flag) {
  m_modified.Store(flag);
  return S_OK;
}

std::uint64_t EVENT_DEFINITION::GetSize() const { return 14; }

// Not built yet.
Status EVENT_DEFINITION::Read(std::istream& /*stream*/) { return E_FAIL; }
// Not built yet.
Status EVENT_DEFINITION::Write(std::ostream& /*stream*/) const { return E_FAIL; }

}  // namespace quillpg
