#pragma once

#include "quillpg/api.h"
#include "quillpg/engine_types.h"
#include "quillpg/result_codes.h"

#include <cstdint>
#include <string>
#include <vector>

namespace quillpg {

class CByteWriter;
class CFieldTracer;
class CSetupFileReader;

/// One instrument of a setup file, as the fixed section lists it.
struct INSTRUMENT_ENTRY {
  std::int32_t modules = -1;  ///< -1: not given yet
  std::string name;
};

/// What stands at the start of every setup file: who wrote it, and for which modules.
struct QUILLPG_API FIXED_SECTION {
  std::int32_t programDataSaved = 0;  ///< truth value: programs follow the groups
  FileType fileType = FileType::System;
  std::string productName;
  std::string softwareVersion;
  std::string comment;
  std::string dateSaved;  ///< local time, "%m/%d/%y %I:%M %p"
  std::vector<INSTRUMENT_ENTRY> instruments;
  std::vector<std::int32_t> memoryDepths;  ///< vectors, one for each module

  /// Back to an empty record.
  void Clear();
  /// Modules of all entries; negative counts as none.
  std::int64_t ModuleCount() const;

  /// Replaces the record by the next one. PG_E_NOT_SETUP_FILE when the bytes are not `product`
  /// (case ignored) and a zero byte: nothing but the product name read is kept then, and nothing
  /// further is read. E_UNEXPECTED for a truncated or absurd record, which is cleared.
  Status Read(CSetupFileReader& reader, const std::string& product);
  Status Read(CFieldTracer& tracer, const std::string& product);
  Status Write(CByteWriter& writer) const;
  /// Bytes that Write produces.
  std::uint64_t GetSize() const;
};

}  // namespace quillpg
