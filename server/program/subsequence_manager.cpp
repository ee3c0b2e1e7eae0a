#include "program/subsequence_manager.h"

#include "app/setup_stream.h"
#include "base/setup_file_list.h"

#include <utility>

namespace quillpg {

CSubSequenceManager::CSubSequenceManager() : CProgramList(MAX_SUBSEQUENCES) {}

CSubSequenceManager::~CSubSequenceManager() = default;

Status CSubSequenceManager::GetNoOfSubSequences(int& count) const { return GetCount(count); }

Status CSubSequenceManager::AddSubSequence(const std::string& name) {
  return InsertSubSequence(m_list.Count(), name);
}

Status CSubSequenceManager::InsertSubSequence(int position, const std::string& name) {
  return GuardAllocation([&] {
    auto subsequence = std::make_unique<SUBSEQUENCE>();
    const Status named = subsequence->SetSubSequenceName(std::string(Trim(name)));
    return Failed(named) ? named : InsertSubSequence(position, std::move(subsequence));
  });
}

Status CSubSequenceManager::InsertSubSequence(int position,
                                              std::unique_ptr<SUBSEQUENCE>&& subsequence) {
  return Changed(m_list.Insert(position, std::move(subsequence)));
}

Status CSubSequenceManager::DeleteSubSequence(int first, int count) {
  return Changed(m_list.Remove(first, count));
}

Status CSubSequenceManager::DeleteAll() {
  m_list.Clear();
  return Changed(S_OK);
}

Status CSubSequenceManager::FindSubSequence(const std::string& name, int& index) const {
  return FindFirst(Trim(name), index);
}

Status CSubSequenceManager::CountSubSequences(const std::string& name, int& count) const {
  return CountAll(Trim(name), count);
}

Status CSubSequenceManager::GetSubSequence(int index, SUBSEQUENCE** subsequence) const {
  return GetAt(index, subsequence);
}

Status CSubSequenceManager::SetSubSequence(int index, const SUBSEQUENCE* subsequence) {
  if (!subsequence) return E_FAIL;
  SUBSEQUENCE* target = m_list.At(index);
  return target ? Changed(target->Assign(*subsequence)) : S_OK;
}

Status CSubSequenceManager::MoveUp(int index) { return Changed(m_list.MoveUp(index)); }
Status CSubSequenceManager::MoveDown(int index) { return Changed(m_list.MoveDown(index)); }

Status CSubSequenceManager::Read(std::istream& stream) { return ReadFromStream(stream, *this); }
Status CSubSequenceManager::Write(std::ostream& stream) const {
  return WriteToStream(stream, *this);
}

Status CSubSequenceManager::Read(CSetupFileReader& reader) {
  (void)Changed(S_OK);  // what is loaded is not in the hardware
  return ReadRecords(reader, SUBSEQUENCE_LIST, m_list);
}

Status CSubSequenceManager::Write(CByteWriter& writer) const {
  return WriteRecords(writer, SUBSEQUENCE_LIST, m_list);
}

}  // namespace quillpg
