#include "commands.h"
#include "exit_status.h"
#include "interrupt.h"
#include "program_file.h"
#include "quillpg/app_server.h"
#include "report.h"
#include "server_session.h"
#include "terminal_router.h"

namespace quillpg::tool {

int RunCommand(const CHECK_OPTIONS& options) {
  CTerminalRouter router(!options.input.quiet && CTerminalRouter::OnTerminal());
  CServerSession session(router);
  CProgramFile file;
  const int loaded = file.Load(options.input, session, router);
  if (loaded != STATUS_GOOD) return loaded;

  const Status status = session.Server()->Compile();
  router.EraseBar();
  for (const std::string& line : router.OutputLines()) PrintLine(line);
  if (!FlushOutput()) return STATUS_UNUSABLE;
  if (Interrupted()) return InterruptStatus();
  return status == S_OK ? STATUS_GOOD : STATUS_PROGRAM_ERRORS;
}

}  // namespace quillpg::tool
