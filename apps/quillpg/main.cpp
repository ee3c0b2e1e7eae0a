#include "check_command.h"
#include "command_line.h"
#include "convert_command.h"
#include "exit_status.h"
#include "info_command.h"
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
  int operator()(const INFO_OPTIONS& options) const { return RunInfoCommand(options); }
  int operator()(const DUMP_OPTIONS& options) const { return RunDumpCommand(options); }
  int operator()(const CONVERT_OPTIONS& options) const { return RunConvertCommand(options); }
  int operator()(const MERGE_OPTIONS& options) const { return RunMergeCommand(options); }
  int operator()(const TEST_DATA_OPTIONS& options) const { return RunTestDataCommand(options); }
  int operator()(const SIM_CONFIG_OPTIONS& options) const { return RunSimConfigCommand(options); }
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
