#include "program/subsequence_manager.h"

#include "app/setup_stream.h"
#include "base/setup_file_list.h"

#include <utility>

namespace quillpg {

CSubSequenceManager::CSubSequenceManager() : m_subsequences(MAX_SUBSEQUENCES) {}

CSubSequenceManager::~CSubSequenceManager() = default;

Status CSubSequenceManager::GetNoOfSubSequences(int& count) const {
  count = m_subsequences.Count();
  return S_OK;
}

Status CSubSequenceManager::AddSubSequence(const std::string& name) {
  return InsertSubSequence(m_subsequences.Count(), name);
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
  return Changed(m_subsequences.Insert(position, std::move(subsequence)));
}

Status CSubSequenceManager::DeleteSubSequence(int first, int count) {
  return Changed(m_subsequences.Remove(first, count));
}

Status CSubSequenceManager::DeleteAll() {
  m_subsequences.Clear();
  return Changed(S_OK);
}

Status CSubSequenceManager::FindSubSequence(const std::string& name, int& index) const {
  const std::string_view asked = Trim(name);
  index = asked.empty() ? -1 : m_subsequences.Find(asked);
  return index < 0 ? E_FAIL : S_OK;
}

Status CSubSequenceManager::CountSubSequences(const std::string& name, int& count) const {
  const std::string_view asked = Trim(name);
  count = asked.empty() ? 0 : m_subsequences.CountNamed(asked);
  return asked.empty() ? E_FAIL : S_OK;
}

Status CSubSequenceManager::GetSubSequence(int index, SUBSEQUENCE** subsequence) const {
  if (!subsequence) return E_FAIL;
  *subsequence = m_subsequences.At(index);
  return S_OK;
}

Status CSubSequenceManager::SetSubSequence(int index, const SUBSEQUENCE* subsequence) {
  if (!subsequence) return E_FAIL;
  SUBSEQUENCE* target = m_subsequences.At(index);
  return target ? Changed(target->Assign(*subsequence)) : S_OK;
}

Status CSubSequenceManager::MoveUp(int index) { return Changed(m_subsequences.MoveUp(index)); }
Status CSubSequenceManager::MoveDown(int index) { return Changed(m_subsequences.MoveDown(index)); }

int CSubSequenceManager::IsModified() const {
  return m_modified.IsSet() || m_subsequences.AnyModified() ? 1 : 0;
}

Status CSubSequenceManager::SetModified(int flag) {
  m_modified.Store(flag);
  if (flag == 0) m_subsequences.ClearModified();
  return S_OK;
}

Status CSubSequenceManager::GetSize(std::uint64_t& size) const {
  size = 4 + m_subsequences.SizeOfAll();
  return S_OK;
}

Status CSubSequenceManager::Read(std::istream& stream) { return ReadFromStream(stream, *this); }
Status CSubSequenceManager::Write(std::ostream& stream) const {
  return WriteToStream(stream, *this);
}

Status CSubSequenceManager::Read(CSetupFileReader& reader) {
  m_modified.Set();  // what is loaded is not in the hardware
  return ReadRecords(reader, SUBSEQUENCE_LIST, m_subsequences);
}

Status CSubSequenceManager::Write(CByteWriter& writer) const {
  return WriteRecords(writer, SUBSEQUENCE_LIST, m_subsequences);
}

Status CSubSequenceManager::Changed(Status status) {
  if (!Failed(status)) m_modified.Set();
  return status;
}

}  // namespace quillpg
