#include "program/event_definition.h"

#include "app/setup_stream.h"
#include "base/setup_file_format.h"

#include <algorithm>
#include <string>

namespace quillpg {

namespace {

bool IsPosition(int position) { return position >= 0 && position < EVENT_INPUTS; }

}  // namespace

Status EVENT_DEFINITION::Initialize() {
  m_pattern.fill('1');
  Touch();
  return S_OK;
}

Status EVENT_DEFINITION::SetEventDefBit(int position, char character) {
  if (IsPosition(position)) m_pattern[static_cast<std::size_t>(position)] = character;
  return Changed(S_OK);  // deliberate: also when nothing was stored
}

char EVENT_DEFINITION::GetEventDefBit(int position) const {
  return IsPosition(position) ? m_pattern[static_cast<std::size_t>(position)] : '0';
}

std::uint64_t EVENT_DEFINITION::GetSize() const { return 14; }

Status EVENT_DEFINITION::Read(std::istream& stream) { return ReadFromStream(stream, *this); }
Status EVENT_DEFINITION::Write(std::ostream& stream) const { return WriteToStream(stream, *this); }

Status EVENT_DEFINITION::Read(CSetupFileReader& reader) {
  std::string text;
  LayOutEventDefinition(reader, text);
  if (!reader.Good()) return reader.GetStatus();
  text.resize(m_pattern.size(), '1');  // what a short text lacks
  std::ranges::copy(text, m_pattern.begin());
  Touch();
  return reader.GetStatus();
}

Status EVENT_DEFINITION::Write(CByteWriter& writer) const {
  LayOutEventDefinition(writer, std::string(Pattern()));
  return writer.GetStatus();
}

}  // namespace quillpg
