#include "command_line.h"

#include "exit_status.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <cstdint>
#include <iostream>
#include <limits>

namespace quillpg::tool {
namespace {

const char* const kExitStatuses =
    "Exit status: 0 good, 1 the program has errors, 2 bad usage or unusable input, 3 the play "
    "ended\n"
    "waiting for an event that cannot come any more, 130 interrupted.";

void AddInput(CLI::App& app, INPUT_OPTIONS& input) {
  app.add_option("FILE", input.file, "A capture (VCD); recognised by its content")->required();
  app.add_option("--period", input.period,
                 "Sample period of the capture, with unit (62.5ns, 1us) or in seconds; without it "
                 "the period is found in the time stamps")
      ->type_name("T");
  app.add_flag("-q,--quiet", input.quiet, "No progress bar and no summary");
}

/// A whole number from 1 to `most`; CLI11's own conversion cuts what is too large.
CLI::Validator Positive(std::int64_t most) {
  const auto check = [most](const std::string& text) {
    std::int64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, fault] = std::from_chars(text.data(), end, number);
    const bool good = fault == std::errc() && stop == end && number >= 1 && number <= most;
    return good ? std::string() : text + " is no whole number from 1 to " + std::to_string(most);
  };
  return {check, "", ""};
}

CLI::App& AddRun(CLI::App& app, RUN_OPTIONS& run) {
  CLI::App& command = *app.add_subcommand("run", "Check, download and play a program");
  AddInput(command, run.input);
  command.add_option("--vcd", run.vcd, "Write what the pins do as VCD")->type_name("OUT");
  command
      .add_option("--trace", run.trace,
                  "Write every call that reaches a module, one JSON object a line")
      ->type_name("OUT");
  command
      .add_option("--stimulus", run.stimulus,
                  "Event inputs: lines 'vector TAB nine characters 0/1' (signal, E7 .. E0)")
      ->type_name("FILE");
  command
      .add_option("--max-vectors", run.maxVectors,
                  "Play so many vectors at most; without it a capture is played for its own length")
      ->check(Positive(std::numeric_limits<std::int64_t>::max()))
      ->type_name("N");
  command.add_option("--step", run.step, "Play in step mode, N vectors a step")
      ->check(Positive(std::numeric_limits<int>::max()))
      ->type_name("N");
  command.add_flag("--bits", run.bits, "VCD: one scalar per channel instead of vectors");
  command.add_flag("--annotate", run.annotate,
                   "VCD: sequence line and signal output as extra signals");
  command.footer(kExitStatuses);
  return command;
}

}  // namespace

std::optional<COMMAND> ParseCommandLine(int argc, const char* const* argv, int& status) {
  CLI::App app{
      "Plays pattern programs on a mainframe of digital pattern generators, simulated ones "
      "without hardware.",
      "quillpg"};
  app.set_version_flag("--version", "quillpg " QUILLPG_PACKAGE_VERSION);
  app.require_subcommand(0, 1);  // none is refused below, after a misspelt one was named
  app.footer("quillpg COMMAND --help tells the options of a command.\n" +
             std::string(kExitStatuses));

  RUN_OPTIONS run;
  CHECK_OPTIONS check;
  const CLI::App& runCommand = AddRun(app, run);
  CLI::App& checkCommand = *app.add_subcommand("check", "Compile a program and print the findings");
  AddInput(checkCommand, check.input);
  checkCommand.footer(kExitStatuses);
  const CLI::App& modulesCommand =
      *app.add_subcommand("modules", "List the modules of the mainframe");

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    status = app.exit(error) == 0 ? STATUS_GOOD : STATUS_UNUSABLE;
    return std::nullopt;
  }
  if (runCommand.parsed()) return run;
  if (checkCommand.parsed()) return check;
  if (modulesCommand.parsed()) return MODULES_OPTIONS{};
  std::cerr << app.help();
  status = STATUS_UNUSABLE;
  return std::nullopt;
}

}  // namespace quillpg::tool
