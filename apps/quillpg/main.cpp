#include "command_line.h"
#include "commands.h"
#include "exit_status.h"
#include "interrupt.h"
#include "report.h"

#include <exception>
#include <new>
#include <optional>
#include <variant>

using namespace quillpg::tool;

int main(int argc, char** argv) {
  try {
    CatchInterrupts();
    int status = STATUS_GOOD;
    const std::optional<COMMAND> command = ParseCommandLine(argc, argv, status);
    if (!command) return status;
    return std::visit([](const auto& options) { return RunCommand(options); }, *command);
  } catch (const std::bad_alloc&) {
    ReportError("out of memory");
  } catch (const std::exception& error) {
    ReportError(error.what());
  }
  return STATUS_UNUSABLE;
}
