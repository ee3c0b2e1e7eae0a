#include "program/event.h"

#include "app/setup_stream.h"
#include "base/setup_file_list.h"

#include <utility>

namespace quillpg {

EVENT& EVENT::operator=(const EVENT& other) {
  (void)Assign(other);  // an operator has no status to give
  return *this;
}

Status EVENT::Initialize() {
  (void)SetName("");  // cannot fail
  return DeleteAll();
}

Status EVENT::GetEventDefinition(int index, EVENT_DEFINITION** definition) const {
  return GetRow(index, definition);
}

Status EVENT::AddEventDefinition(std::unique_ptr<EVENT_DEFINITION>&& definition) {
  return InsertRow(m_rows.Count(), std::move(definition));
}

Status EVENT::InsertEventDefinition(int position, std::unique_ptr<EVENT_DEFINITION>&& definition) {
  return InsertRow(position, std::move(definition));
}

Status EVENT::SetEventDefinition(int index, const EVENT_DEFINITION* definition) {
  return SetRow(index, definition);
}

Status EVENT::DeleteEventDefinition(int first, int count) { return DeleteRows(first, count); }

Status EVENT::Read(std::istream& stream) { return ReadFromStream(stream, *this); }
Status EVENT::Write(std::ostream& stream) const { return WriteToStream(stream, *this); }

Status EVENT::Read(CSetupFileReader& reader) {
  LayOutEvent(reader, m_name, [&] { (void)ReadRecords(reader, EVENT_DEFINITION_LIST, m_rows); });
  Loaded();
  return reader.GetStatus();
}

Status EVENT::Write(CByteWriter& writer) const {
  LayOutEvent(writer, m_name, [&] { (void)WriteRecords(writer, EVENT_DEFINITION_LIST, m_rows); });
  return writer.GetStatus();
}

}  // namespace quillpg
