#include "program/sequence_line.h"

#include "app/setup_stream.h"
#include "base/guard.h"
#include "base/setup_file_format.h"

namespace quillpg {

Status SEQUENCE_LINE::Initialize() {
  *this = SEQUENCE_LINE();
  return S_OK;
}

Status SEQUENCE_LINE::SetRepeatCount(int count) {
  m_repeatCount = count;
  return Changed(S_OK);
}

Status SEQUENCE_LINE::SetSignalValue(SignalValue value) {
  m_signalValue = value;
  return Changed(S_OK);
}

Status SEQUENCE_LINE::SetLabel(const std::string& text) { return SetText(m_label, text); }
Status SEQUENCE_LINE::SetWaitFor(const std::string& text) { return SetText(m_waitFor, text); }
Status SEQUENCE_LINE::SetOutput(const std::string& text) { return SetText(m_output, text); }
Status SEQUENCE_LINE::SetJumpIf(const std::string& text) { return SetText(m_jumpIf, text); }
Status SEQUENCE_LINE::SetJumpTo(const std::string& text) { return SetText(m_jumpTo, text); }

bool SEQUENCE_LINE::IsEmpty() const {
  return m_label.empty() && m_waitFor.empty() && m_output.empty() && m_jumpIf.empty() &&
         m_jumpTo.empty();
}

std::uint64_t SEQUENCE_LINE::GetSize() const {
  return m_label.size() + m_waitFor.size() + m_output.size() + m_jumpIf.size() + m_jumpTo.size() +
         33;
}

Status SEQUENCE_LINE::Read(std::istream& stream) { return ReadFromStream(stream, *this); }
Status SEQUENCE_LINE::Write(std::ostream& stream) const { return WriteToStream(stream, *this); }

Status SEQUENCE_LINE::Read(CSetupFileReader& reader) {
  LayOutSequenceLine(reader, m_label, m_waitFor, m_output, m_repeatCount, m_jumpIf, m_jumpTo,
                     m_signalValue);
  (void)Changed(S_OK);  // also after a failure
  return reader.GetStatus();
}

Status SEQUENCE_LINE::Write(CByteWriter& writer) const {
  LayOutSequenceLine(writer, m_label, m_waitFor, m_output, m_repeatCount, m_jumpIf, m_jumpTo,
                     m_signalValue);
  return writer.GetStatus();
}

Status SEQUENCE_LINE::SetText(std::string& field, const std::string& text) {
  return Changed(StoreText(field, text));
}

}  // namespace quillpg
