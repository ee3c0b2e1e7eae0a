#pragma once

namespace quillpg::tool {

/// Prints one row for each module that was discovered. Gives the exit status.
int RunModulesCommand();

}  // namespace quillpg::tool
