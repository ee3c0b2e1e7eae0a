#pragma once

#include "persistence/field_tracer.h"
#include "persistence/fixed_section.h"
#include "quillpg/engine_types.h"
#include "quillpg/limits.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace quillpg {

/// One instrument as a setup file describes it.
struct SETUP_FILE_INSTRUMENT {
  std::string name;
  ChannelMode channelMode = ChannelMode::Full;
  std::vector<std::array<PodType, NUM_PODS>> pods;  ///< of each module
  int groups = 0;
  int blocks = 0;
  int sequenceLines = 0;
  int subsequences = 0;
  int events = 0;
  std::uint64_t size = 0;  ///< bytes of its records
};

/// What a setup file holds, and where reading it ended.
struct SETUP_FILE_CONTENTS {
  FIXED_SECTION fixedSection;
  std::vector<SETUP_FILE_INSTRUMENT> instruments;  ///< those that were reached
  std::uint64_t bytesRead = 0;                     ///< what lies behind belongs to no record
  std::string failedField;  ///< "instrument 0 / block 2 / block size"; empty for none
  std::uint64_t failedOffset = 0;
};

/// Walks a setup file field by field without a model: no instrument, no module, no hardware. Tells
/// `visit`, which may be empty, of every field. PG_E_NOT_SETUP_FILE, E_UNEXPECTED (fixed section)
/// or PG_E_INSTRUMENT_RECORD for a file that ends or goes wrong; `contents` then holds what was
/// read.
QUILLPG_API Status WalkSetupFile(std::span<const std::uint8_t> bytes,
                                 const CFieldTracer::Visit& visit, SETUP_FILE_CONTENTS& contents);

}  // namespace quillpg
