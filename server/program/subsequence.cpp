#include "program/subsequence.h"

#include "app/setup_stream.h"
#include "base/setup_file_list.h"

#include <utility>

namespace quillpg {

SUBSEQUENCE& SUBSEQUENCE::operator=(const SUBSEQUENCE& other) {
  (void)Assign(other);  // an operator has no status to give
  return *this;
}

Status SUBSEQUENCE::GetSubSequenceLine(int index, SUBSEQUENCE_LINE** line) const {
  return GetRow(index, line);
}

Status SUBSEQUENCE::AddSubSequenceLine(std::unique_ptr<SUBSEQUENCE_LINE>&& line) {
  return InsertRow(m_rows.Count(), std::move(line));
}

Status SUBSEQUENCE::InsertSubSequenceLine(int position, std::unique_ptr<SUBSEQUENCE_LINE>&& line) {
  return InsertRow(position, std::move(line));
}

Status SUBSEQUENCE::SetSubSequenceLine(int index, const SUBSEQUENCE_LINE* line) {
  return SetRow(index, line);
}

Status SUBSEQUENCE::DeleteSubSequenceLine(int first, int count) { return DeleteRows(first, count); }

Status SUBSEQUENCE::Read(std::istream& stream) { return ReadFromStream(stream, *this); }
Status SUBSEQUENCE::Write(std::ostream& stream) const { return WriteToStream(stream, *this); }

Status SUBSEQUENCE::Read(CSetupFileReader& reader) {
  LayOutSubSequence(reader, m_name,
                    [&] { (void)ReadRecords(reader, SUBSEQUENCE_LINE_LIST, m_rows); });
  Loaded();
  return reader.GetStatus();
}

Status SUBSEQUENCE::Write(CByteWriter& writer) const {
  LayOutSubSequence(writer, m_name,
                    [&] { (void)WriteRecords(writer, SUBSEQUENCE_LINE_LIST, m_rows); });
  return writer.GetStatus();
}

}  // namespace quillpg
