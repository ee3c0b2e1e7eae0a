#include "program/event.h"

#include "app/setup_stream.h"
#include "base/setup_file_list.h"

#include <utility>

namespace quillpg {

EVENT::EVENT() : m_definitions(MAX_EVENT_DEFINITIONS) { m_definitions.ReportTo(&m_revision); }

EVENT::~EVENT() = default;

EVENT& EVENT::operator=(const EVENT& other) {
  if (this != &other) (void)Assign(other);  // an operator has no status to give
  return *this;
}

Status EVENT::Assign(const EVENT& source) {
  if (this == &source) return S_OK;
  return GuardAllocation([&] {
    std::string name = source.m_name;
    const Status status = m_definitions.CopyFrom(source.m_definitions);
    if (Failed(status)) return status;
    m_name = std::move(name);
    m_revision.Touch();
    return Changed(S_OK);
  });
}

Status EVENT::Initialize() {
  m_name.clear();
  m_revision.Touch();
  return DeleteAll();
}

Status EVENT::SetEventName(const std::string& name) {
  const Status status = StoreText(m_name, name);
  m_revision.Touch();
  return Changed(status);
}

Status EVENT::GetEventDefinition(int index, EVENT_DEFINITION** definition) const {
  if (!definition) return E_FAIL;
  *definition = m_definitions.At(index);
  return *definition ? S_OK : E_FAIL;
}

Status EVENT::AddEventDefinition(std::unique_ptr<EVENT_DEFINITION>&& definition) {
  return Changed(m_definitions.Append(std::move(definition)));
}

Status EVENT::InsertEventDefinition(int position, std::unique_ptr<EVENT_DEFINITION>&& definition) {
  return Changed(m_definitions.Insert(position, std::move(definition)));
}

Status EVENT::SetEventDefinition(int index, const EVENT_DEFINITION* definition) {
  EVENT_DEFINITION* target = m_definitions.At(index);
  if (!definition || !target) return E_FAIL;
  *target = *definition;
  return Changed(S_OK);
}

Status EVENT::DeleteEventDefinition(int first, int count) {
  return Changed(m_definitions.Remove(first, count));
}

Status EVENT::DeleteAll() {
  m_definitions.Clear();
  return Changed(S_OK);
}

Status EVENT::MoveUp(int index) { return Changed(m_definitions.MoveUp(index)); }
Status EVENT::MoveDown(int index) { return Changed(m_definitions.MoveDown(index)); }

bool EVENT::IsModified() const { return m_modified.IsSet() || m_definitions.AnyModified(); }

Status EVENT::SetModified(int flag) {
  m_modified.Store(flag);
  if (flag == 0) m_definitions.ClearModified();
  return S_OK;
}

std::uint64_t EVENT::GetSize() const { return m_name.size() + 9 + m_definitions.SizeOfAll(); }

Status EVENT::Read(std::istream& stream) { return ReadFromStream(stream, *this); }
Status EVENT::Write(std::ostream& stream) const { return WriteToStream(stream, *this); }

Status EVENT::Read(CSetupFileReader& reader) {
  LayOutEvent(reader, m_name,
              [&] { (void)ReadRecords(reader, EVENT_DEFINITION_LIST, m_definitions); });
  m_modified.Set();
  m_revision.Touch();
  return reader.GetStatus();
}

Status EVENT::Write(CByteWriter& writer) const {
  LayOutEvent(writer, m_name,
              [&] { (void)WriteRecords(writer, EVENT_DEFINITION_LIST, m_definitions); });
  return writer.GetStatus();
}

Status EVENT::Changed(Status status) {
  if (!Failed(status)) m_modified.Set();
  return status;
}

}  // namespace quillpg
