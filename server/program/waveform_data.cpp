#include "program/waveform_data.h"

#include "app/setup_stream.h"
#include "base/setup_file_format.h"
namespace quillpg {

std::uint64_t CWaveformData::GetSize() const { return channelName.size() + groupName.size() + 30; }

Status CWaveformData::Read(std::istream& stream) { return ReadFromStream(stream, *this); }
Status CWaveformData::Write(std::ostream& stream) const { return WriteToStream(stream, *this); }

Status CWaveformData::Read(CSetupFileReader& reader) {
  LayOutWaveformRow(reader, *this);
  return reader.GetStatus();
}

Status CWaveformData::Write(CByteWriter& writer) const {
  LayOutWaveformRow(writer, *this);
  return writer.GetStatus();
}

}  // namespace quillpg
