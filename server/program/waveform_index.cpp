#include "program/waveform_index.h"

namespace quillpg {

namespace {

using LIST = CWaveformIndex::LIST;

bool IsSame(const std::weak_ptr<WAVEFORM_ROWS>& known, const LIST& rows) {
  return !known.owner_before(rows) && !rows.owner_before(known);
}

const std::string& NameOfRow(const CWaveformData& row) {
  return row.waveType == WaveType::Group ? row.groupName : row.channelName;
}

template <typename Test>
int Walk(const WAVEFORM_ROWS& rows, Test&& test) {
  for (int i = 0; i < rows.Count(); ++i) {
    const CWaveformData* row = rows.At(i);
    if (row && test(*row)) return i;
  }
  return -1;
}

}  // namespace

int CWaveformIndex::Find(const LIST& rows, WaveType type, std::string_view name) {
  const auto kind = static_cast<std::size_t>(type);  // a negative one becomes a large one
  if (kind >= kTypes) return -1;
  if (!name.empty() && Refresh(rows)) return m_names[kind].First(name);
  return Walk(*rows, [&](const CWaveformData& row) {
    return row.waveType == type && EqualNoCase(NameOfRow(row), name);
  });
}

int CWaveformIndex::FindChannel(const LIST& rows, int channel) {
  if (Refresh(rows)) {
    const auto found = m_channels.find(channel);
    return found == m_channels.end() ? -1 : found->second;
  }
  return Walk(*rows, [&](const CWaveformData& row) {
    return row.waveType == WaveType::Channel && row.channel == channel;
  });
}

// False when the rows are to be walked.
bool CWaveformIndex::Refresh(const LIST& rows) {
  if (IsSame(m_handedOut, rows)) return false;
  if (IsSame(m_indexed, rows) && m_revision == rows->Revision()) return true;
  m_indexed.reset();
  const Status built = GuardAllocation([&] {
    Build(*rows);
    return S_OK;
  });
  if (Failed(built)) return false;
  m_indexed = rows;
  m_revision = rows->Revision();
  return true;
}

void CWaveformIndex::Build(const WAVEFORM_ROWS& rows) {
  for (CNameIndex& names : m_names) names.Clear();
  m_channels.clear();
  for (int i = 0; i < rows.Count(); ++i) {
    const CWaveformData* row = rows.At(i);
    if (!row) continue;
    const auto kind = static_cast<std::size_t>(row->waveType);
    if (kind < kTypes) m_names[kind].Add(NameOfRow(*row), i);
    if (row->waveType == WaveType::Channel) m_channels.try_emplace(row->channel, i);
  }
}

}  // namespace quillpg
