#include "program/sequence_manager.h"

#include "app/message_catalogue.h"
#include "app/message_service.h"
#include "app/setup_stream.h"
#include "base/setup_file_list.h"

#include <utility>

namespace quillpg {

CSequenceManager::CSequenceManager() : m_lines(MAX_SEQUENCE_LINES) {}

CSequenceManager::~CSequenceManager() = default;

Status CSequenceManager::GetNoOfSequenceLines(int& count) const {
  count = m_lines.Count();
  return S_OK;
}

Status CSequenceManager::Default() {
  (void)DeleteAll();
  const Status status = AddSequenceLine(CMessageService::Text(MSG_UNIQUE_LINE));
  if (Failed(status)) return status;
  SEQUENCE_LINE* line = m_lines.At(0);
  (void)line->SetRepeatCount(0);  // deliberate: the default line plays endlessly
  return line->SetOutput(CMessageService::Text(MSG_UNIQUE_BLOCK));
}

Status CSequenceManager::AddSequenceLine(const std::string& label) {
  return Insert(m_lines.Count(), label);
}

Status CSequenceManager::InsertSequenceLine(int position, const std::string& label) {
  const Status status = Insert(position, label);
  if (!Failed(status)) m_modified.Set();
  return status;
}

Status CSequenceManager::InsertLine(int position, std::unique_ptr<SEQUENCE_LINE>&& line) {
  const Status status = m_lines.Insert(position, std::move(line));
  if (!Failed(status)) m_modified.Set();
  return status;
}

Status CSequenceManager::DeleteSequenceLine(int first, int count) {
  const Status status = m_lines.Remove(first, count);
  if (!Failed(status)) m_modified.Set();
  return status;
}

Status CSequenceManager::DeleteAll() {
  m_lines.Clear();
  return S_OK;
}

Status CSequenceManager::FindSequenceLine(const std::string& label, int& index) const {
  index = label.empty() ? -1 : m_lines.Find(label);
  return index < 0 ? E_FAIL : S_OK;
}

Status CSequenceManager::CountSequenceLines(const std::string& label, int& count) const {
  count = label.empty() ? 0 : m_lines.CountNamed(label);
  return label.empty() ? E_FAIL : S_OK;
}

Status CSequenceManager::GetSequenceLine(int index, SEQUENCE_LINE** line) const {
  if (!line) return E_FAIL;
  *line = m_lines.At(index);
  return S_OK;
}

Status CSequenceManager::SetSequenceLine(int index, const SEQUENCE_LINE* line) {
  SEQUENCE_LINE* target = m_lines.At(index);
  if (!line || !target) return E_FAIL;
  return GuardAllocation([&] {
    SEQUENCE_LINE copy = *line;
    *target = std::move(copy);  // cannot fail half-way
    return S_OK;
  });
}

Status CSequenceManager::MoveUp(int index) {
  const Status status = m_lines.MoveUp(index);
  if (!Failed(status)) m_modified.Set();
  return status;
}

Status CSequenceManager::MoveDown(int index) {
  const Status status = m_lines.MoveDown(index);
  if (!Failed(status)) m_modified.Set();
  return status;
}

int CSequenceManager::IsModified() const {
  return m_modified.IsSet() || m_lines.AnyModified() ? 1 : 0;
}

Status CSequenceManager::SetModified(int flag) {
  m_modified.Store(flag);
  if (flag == 0) m_lines.ClearModified();
  return S_OK;
}

Status CSequenceManager::GetSize(std::uint64_t& size) const {
  size = 4 + m_lines.SizeOfAll();
  return S_OK;
}

Status CSequenceManager::Read(std::istream& stream) { return ReadFromStream(stream, *this); }
Status CSequenceManager::Write(std::ostream& stream) const { return WriteToStream(stream, *this); }

Status CSequenceManager::Read(CSetupFileReader& reader) {
  m_modified.Set();  // what is loaded is not in the hardware
  return ReadRecords(reader, SEQUENCE_LIST, m_lines);
}

Status CSequenceManager::Write(CByteWriter& writer) const {
  return WriteRecords(writer, SEQUENCE_LIST, m_lines);
}

Status CSequenceManager::Insert(int position, const std::string& label) {
  return GuardAllocation([&] {
    auto line = std::make_unique<SEQUENCE_LINE>();
    const Status labelled = line->SetLabel(label);
    return Failed(labelled) ? labelled : m_lines.Insert(position, std::move(line));
  });
}

}  // namespace quillpg
