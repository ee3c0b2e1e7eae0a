#pragma once

#include "quillpg/api.h"
#include "quillpg/engine_types.h"
#include "quillpg/result_codes.h"

#include <cstdint>
#include <iosfwd>
#include <string>

namespace quillpg {

class CByteWriter;
class CSetupFileReader;

/// One row of a block's waveform grid.
class QUILLPG_API CWaveformData {
 public:
  /// Bytes in a setup file.
  std::uint64_t GetSize() const;
  Status Read(std::istream& stream);
  Status Read(CSetupFileReader& reader);
  Status Write(std::ostream& stream) const;
  Status Write(CByteWriter& writer) const;

  int flag = 1;             ///< the front end's, kept and saved
  int channel = -1;         ///< -1 on a group row
  std::string channelName;  ///< name of the channel or inhibit control; empty on a group row
  int groupIndex = -1;      ///< position of the row's group in the group manager
  std::string groupName;
  int reserved = 0;  ///< kept and saved
  WaveType waveType = WaveType::Channel;
};

}  // namespace quillpg
