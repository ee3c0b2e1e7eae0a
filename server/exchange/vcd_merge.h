#pragma once

#include "exchange/vcd_output.h"
#include "quillpg/result_codes.h"

#include <string>
#include <vector>

namespace quillpg {

/// Merges the change sections in the files `parts` by their stamps into one; equal stamps become
/// one. E_FAIL for a part that cannot be read.
Status MergeChanges(const std::vector<std::string>& parts, CVcdOutput& output);

}  // namespace quillpg
