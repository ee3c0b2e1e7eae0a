#pragma once

#include "quillpg/api.h"

namespace quillpg {

class CStubFile;
struct SIMULATED_MODULE;

/// Takes over who module `module` of the file says it is, its option and pods, and the settings
/// that it starts with. What the file does not answer, or answers unreadably, stays.
QUILLPG_API void ApplyStubAnswers(const CStubFile& file, int module, SIMULATED_MODULE& target);

}  // namespace quillpg
