#pragma once

#include "base/guard.h"
#include "base/setup_file_reader.h"

#include <istream>
#include <ostream>
#include <string>

// The stream forms of Read and Write: thin shells over those that work on a buffer.

namespace quillpg {

/// How the records of a file of version `fileVersion` are read by software of `softwareVersion`. An
/// empty file version is a new one.
SETUP_FILE_FORM FormOfVersion(const std::string& fileVersion, const std::string& softwareVersion);

/// The form of the file that the root's file manager read or wrote last.
SETUP_FILE_FORM CurrentSetupFileForm();

/// Reads `record` from where the stream stands and leaves the stream behind it. A failure sets the
/// failbit, so that records that follow read nothing instead of garbage.
template <typename Record, typename... Args>
Status ReadFromStream(std::istream& stream, Record& record, Args... args) {
  return GuardAllocation(
      [&] {
        CSetupFileReader reader(stream, CurrentSetupFileForm());
        const Status status = record.Read(reader, args...);
        if (Failed(status)) stream.setstate(std::ios::failbit);
        return status;
      },
      PG_E_INSTRUMENT_RECORD);
}

/// Writes `record`, also as far as it goes when it fails; E_FAIL for a stream that takes no more.
template <typename Record>
Status WriteToStream(std::ostream& stream, const Record& record) {
  return GuardAllocation([&] {
    CByteWriter writer;
    const Status status = record.Write(writer);
    const auto bytes = writer.Written();
    stream.write(reinterpret_cast<const char*>(bytes.data()),
                 static_cast<std::streamsize>(bytes.size()));
    return stream.good() ? status : E_FAIL;
  });
}

}  // namespace quillpg
