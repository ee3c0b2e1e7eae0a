#include "check_command.h"
#include "command_line.h"
#include "exit_status.h"
#include "interrupt.h"
#include "modules_command.h"
#include "report.h"
#include "run_command.h"

#include <exception>
#include <new>

namespace {

using namespace quillpg::tool;

struct EXECUTE {
  int operator()(const RUN_OPTIONS& options) const { return RunRunCommand(options); }
  int operator()(const CHECK_OPTIONS& options) const { return RunCheckCommand(options); }
  int operator()(const MODULES_OPTIONS&) const { return RunModulesCommand(); }
};

}  // namespace

int main(int argc, char** argv) {
  try {
    CatchInterrupts();
    int status = STATUS_GOOD;
    const std::optional<COMMAND> command = ParseCommandLine(argc, argv, status);
    return command ? std::visit(EXECUTE{}, *command) : status;
  } catch (const std::bad_alloc&) {
    ReportError("out of memory");
  } catch (const std::exception& error) {
    ReportError(error.what());
  }
  return STATUS_UNUSABLE;
}
