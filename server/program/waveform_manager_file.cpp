#include "app/setup_stream.h"
#include "base/setup_file_list.h"
#include "program/waveform_manager.h"

// The rows in a setup file, where they are four bytes in five: equal lists are read and written as
// a whole.

namespace quillpg {

Status CWaveformManager::GetSize(std::uint64_t& size) const {
  size = 4 + m_rows->SizeOfAll();
  return S_OK;
}

Status CWaveformManager::Read(std::istream& stream) { return ReadFromStream(stream, *this); }
Status CWaveformManager::Write(std::ostream& stream) const { return WriteToStream(stream, *this); }

Status CWaveformManager::Read(CSetupFileReader& reader, WAVEFORM_ROWS_IMAGE* lastRows) {
  if (lastRows && lastRows->rows && reader.SkipIfNext(lastRows->bytes)) {
    m_rows = lastRows->rows;
    return S_OK;
  }
  const Status status = GuardAllocation([&] {
    const std::uint64_t start = reader.Offset();
    m_rows = std::make_shared<WAVEFORM_ROWS>();
    const Status read = ReadRecords(reader, ROW_LIST, *m_rows);
    if (Failed(read) || !lastRows) return read;
    const auto bytes = reader.Since(start);
    lastRows->rows = m_rows;
    lastRows->bytes.assign(bytes.begin(), bytes.end());
    return read;
  });
  if (Failed(status)) reader.Refuse(ROW_LIST.record);
  return reader.GetStatus();
}

Status CWaveformManager::Write(CByteWriter& writer, WAVEFORM_ROWS_IMAGE* lastRows) const {
  if (!lastRows) return WriteRecords(writer, ROW_LIST, *m_rows);
  const Status status = GuardAllocation([&] {
    if (lastRows->rows != m_rows) {
      CByteWriter image;
      const Status written = WriteRecords(image, ROW_LIST, *m_rows);
      if (Failed(written)) return written;
      const auto bytes = image.Written();
      lastRows->bytes.assign(bytes.begin(), bytes.end());
      lastRows->rows = m_rows;
    }
    writer.Bytes(ROW_LIST.record, lastRows->bytes);
    return S_OK;
  });
  if (Failed(status)) writer.Fail();
  return writer.GetStatus();
}

}  // namespace quillpg
