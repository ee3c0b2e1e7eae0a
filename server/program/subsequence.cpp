#include "program/subsequence.h"

#include "app/setup_stream.h"
#include "base/setup_file_list.h"

#include <utility>

namespace quillpg {

SUBSEQUENCE::SUBSEQUENCE() : m_lines(MAX_SUBSEQUENCE_LINES) { m_lines.ReportTo(&m_revision); }

SUBSEQUENCE::~SUBSEQUENCE() = default;

SUBSEQUENCE& SUBSEQUENCE::operator=(const SUBSEQUENCE& other) {
  if (this != &other) (void)Assign(other);  // an operator has no status to give
  return *this;
}

Status SUBSEQUENCE::Assign(const SUBSEQUENCE& source) {
  if (this == &source) return S_OK;
  return GuardAllocation([&] {
    std::string name = source.m_name;
    const Status status = m_lines.CopyFrom(source.m_lines);
    if (Failed(status)) return status;
    m_name = std::move(name);
    m_revision.Touch();
    return Changed(S_OK);
  });
}

Status SUBSEQUENCE::SetSubSequenceName(const std::string& name) {
  const Status status = StoreText(m_name, name);
  m_revision.Touch();
  return Changed(status);
}

Status SUBSEQUENCE::GetSubSequenceLine(int index, SUBSEQUENCE_LINE** line) const {
  if (!line) return E_FAIL;
  *line = m_lines.At(index);
  return *line ? S_OK : E_FAIL;
}

Status SUBSEQUENCE::AddSubSequenceLine(std::unique_ptr<SUBSEQUENCE_LINE>&& line) {
  return Changed(m_lines.Append(std::move(line)));
}

Status SUBSEQUENCE::InsertSubSequenceLine(int position, std::unique_ptr<SUBSEQUENCE_LINE>&& line) {
  return Changed(m_lines.Insert(position, std::move(line)));
}

Status SUBSEQUENCE::SetSubSequenceLine(int index, const SUBSEQUENCE_LINE* line) {
  SUBSEQUENCE_LINE* target = m_lines.At(index);
  if (!line || !target) return E_FAIL;
  return GuardAllocation([&] {
    SUBSEQUENCE_LINE copy = *line;
    *target = std::move(copy);  // cannot fail half-way
    return Changed(S_OK);
  });
}

Status SUBSEQUENCE::DeleteSubSequenceLine(int first, int count) {
  return Changed(m_lines.Remove(first, count));
}

Status SUBSEQUENCE::DeleteAll() {
  m_lines.Clear();
  return Changed(S_OK);
}

Status SUBSEQUENCE::MoveUp(int index) { return Changed(m_lines.MoveUp(index)); }
Status SUBSEQUENCE::MoveDown(int index) { return Changed(m_lines.MoveDown(index)); }

bool SUBSEQUENCE::IsModified() const { return m_modified.IsSet() || m_lines.AnyModified(); }

Status SUBSEQUENCE::SetModified(int flag) {
  m_modified.Store(flag);
  if (flag == 0) m_lines.ClearModified();
  return S_OK;
}

std::uint64_t SUBSEQUENCE::GetSize() const { return m_name.size() + 9 + m_lines.SizeOfAll(); }

Status SUBSEQUENCE::Read(std::istream& stream) { return ReadFromStream(stream, *this); }
Status SUBSEQUENCE::Write(std::ostream& stream) const { return WriteToStream(stream, *this); }

Status SUBSEQUENCE::Read(CSetupFileReader& reader) {
  LayOutSubSequence(reader, m_name,
                    [&] { (void)ReadRecords(reader, SUBSEQUENCE_LINE_LIST, m_lines); });
  m_modified.Set();
  m_revision.Touch();
  return reader.GetStatus();
}

Status SUBSEQUENCE::Write(CByteWriter& writer) const {
  LayOutSubSequence(writer, m_name,
                    [&] { (void)WriteRecords(writer, SUBSEQUENCE_LINE_LIST, m_lines); });
  return writer.GetStatus();
}

Status SUBSEQUENCE::Changed(Status status) {
  if (!Failed(status)) m_modified.Set();
  return status;
}

}  // namespace quillpg
