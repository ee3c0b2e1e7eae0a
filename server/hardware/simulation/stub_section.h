#pragma once

#include "quillpg/api.h"

#include <string>
#include <string_view>

// The sections of a simulation configuration file: one for each simulated module, with the answer
// to every query. The generator of the file writes them, and a simulated module without a file
// answers from its own.

namespace quillpg {

/// What differs between the sections of two pattern generators.
struct STUB_SECTION {
  int slot = 0;
  int logicalAddress = 0;
  bool option = false;    ///< the memory option is fitted
  std::string_view pods;  ///< comma-separated keywords, pods A to D
};

QUILLPG_API void AppendPatternGeneratorSection(const STUB_SECTION& section, std::string& text);

/// An expansion interface is declared, but answers nothing.
QUILLPG_API void AppendExpansionSection(int slot, std::string& text);

}  // namespace quillpg
