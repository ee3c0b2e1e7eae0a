#include "program/sequence_manager.h"

#include "app/message_catalogue.h"
#include "app/message_service.h"
#include "app/setup_stream.h"
#include "base/setup_file_list.h"

#include <utility>

namespace quillpg {

CSequenceManager::CSequenceManager() : CProgramList(MAX_SEQUENCE_LINES) {}

CSequenceManager::~CSequenceManager() = default;

Status CSequenceManager::GetNoOfSequenceLines(int& count) const { return GetCount(count); }

Status CSequenceManager::Default() {
  (void)DeleteAll();
  const Status status = AddSequenceLine(CMessageService::Text(MSG_UNIQUE_LINE));
  if (Failed(status)) return status;
  SEQUENCE_LINE* line = m_list.At(0);
  (void)line->SetRepeatCount(0);  // deliberate: the default line plays endlessly
  return line->SetOutput(CMessageService::Text(MSG_UNIQUE_BLOCK));
}

Status CSequenceManager::AddSequenceLine(const std::string& label) {
  return Insert(m_list.Count(), label);
}

Status CSequenceManager::InsertSequenceLine(int position, const std::string& label) {
  return Changed(Insert(position, label));
}

Status CSequenceManager::InsertLine(int position, std::unique_ptr<SEQUENCE_LINE>&& line) {
  return Changed(m_list.Insert(position, std::move(line)));
}

Status CSequenceManager::DeleteSequenceLine(int first, int count) {
  return Changed(m_list.Remove(first, count));
}

Status CSequenceManager::DeleteAll() {
  m_list.Clear();
  return S_OK;
}

Status CSequenceManager::FindSequenceLine(const std::string& label, int& index) const {
  return FindFirst(label, index);
}

Status CSequenceManager::CountSequenceLines(const std::string& label, int& count) const {
  return CountAll(label, count);
}

Status CSequenceManager::GetSequenceLine(int index, SEQUENCE_LINE** line) const {
  return GetAt(index, line);
}

Status CSequenceManager::SetSequenceLine(int index, const SEQUENCE_LINE* line) {
  SEQUENCE_LINE* target = m_list.At(index);
  if (!line || !target) return E_FAIL;
  return GuardAllocation([&] {
    SEQUENCE_LINE copy = *line;
    *target = std::move(copy);  // cannot fail half-way
    return S_OK;
  });
}

Status CSequenceManager::MoveUp(int index) { return Changed(m_list.MoveUp(index)); }

Status CSequenceManager::MoveDown(int index) { return Changed(m_list.MoveDown(index)); }

Status CSequenceManager::Read(std::istream& stream) { return ReadFromStream(stream, *this); }
Status CSequenceManager::Write(std::ostream& stream) const { return WriteToStream(stream, *this); }

Status CSequenceManager::Read(CSetupFileReader& reader) {
  (void)Changed(S_OK);  // what is loaded is not in the hardware
  return ReadRecords(reader, SEQUENCE_LIST, m_list);
}

Status CSequenceManager::Write(CByteWriter& writer) const {
  return WriteRecords(writer, SEQUENCE_LIST, m_list);
}

Status CSequenceManager::Insert(int position, const std::string& label) {
  return GuardAllocation([&] {
    auto line = std::make_unique<SEQUENCE_LINE>();
    const Status labelled = line->SetLabel(label);
    return Failed(labelled) ? labelled : m_list.Insert(position, std::move(line));
  });
}

}  // namespace quillpg
