#include "program/waveform_data.h"

namespace quillpg {

std::uint64_t CWaveformData::GetSize() const { return channelName.size() + groupName.size() + 30; }

// Not built yet.
Status CWaveformData::Read(std::istream& /*stream*/) { return E_FAIL; }
// Not built yet.
Status CWaveformData::Write(std::ostream& /*stream*/) const { return E_FAIL; }

}  // namespace quillpg
