#include "program/subsequence_line.h"

#include "app/setup_stream.h"
#include "base/guard.h"
#include "base/setup_file_format.h"

namespace quillpg {

Status SUBSEQUENCE_LINE::Initialize() {
  *this = SUBSEQUENCE_LINE();
  return S_OK;
}

Status SUBSEQUENCE_LINE::SetRepeatCount(int count) {
  m_repeatCount = count;
  return Changed(S_OK);
}

Status SUBSEQUENCE_LINE::SetOutput(const std::string& blockName) {
  return Changed(StoreText(m_output, blockName));
}

std::uint64_t SUBSEQUENCE_LINE::GetSize() const { return m_output.size() + 9; }

Status SUBSEQUENCE_LINE::Read(std::istream& stream) { return ReadFromStream(stream, *this); }
Status SUBSEQUENCE_LINE::Write(std::ostream& stream) const { return WriteToStream(stream, *this); }

Status SUBSEQUENCE_LINE::Read(CSetupFileReader& reader) {
  LayOutSubSequenceLine(reader, m_output, m_repeatCount);
  (void)Changed(S_OK);  // also after a failure
  return reader.GetStatus();
}

Status SUBSEQUENCE_LINE::Write(CByteWriter& writer) const {
  LayOutSubSequenceLine(writer, m_output, m_repeatCount);
  return writer.GetStatus();
}

}  // namespace quillpg
