#pragma once

namespace quillpg::tool {

/// From here on Ctrl-C and a termination request set a flag that the engine's yields and the play
/// look at, so that everything ends in order. A second one ends the process at once.
void CatchInterrupts();

/// True once the user wants the tool to end.
bool Interrupted();

/// The exit status of an interrupted run: 130 after Ctrl-C.
int InterruptStatus();

}  // namespace quillpg::tool
