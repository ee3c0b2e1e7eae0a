#include "command_line.h"

#include "base/text.h"
#include "exit_status.h"
#include "quillpg/limits.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <iostream>
#include <limits>
#include <string_view>
#include <utility>
#include <vector>

namespace quillpg::tool {
namespace {

const char* const kExitStatuses =
    "Exit status: 0 good, 1 the program has errors, 2 bad usage or unusable input, 3 the play "
    "ended\n"
    "waiting for an event that cannot come any more, 130 interrupted.";

void AddInput(CLI::App& app, INPUT_OPTIONS& input) {
  app.add_option("FILE", input.file, "A capture (VCD) or a setup file; recognised by its content")
      ->required();
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
    const bool good = ParseNumber(text, number) && number >= 1 && number <= most;
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

// The words of the command line for the test programs.
const std::pair<const char*, TestDataType> kTestPrograms[] = {
    {"walking-ones", TestDataType::WalkingOnes},
    {"cell", TestDataType::Cell},
    {"max-block-size", TestDataType::MaxBlockSize},
    {"max-blocks", TestDataType::MaxBlocks},
    {"max-subsequences", TestDataType::MaxSubSequences},
    {"max-events", TestDataType::MaxEvents},
    {"max-sequence-lines", TestDataType::MaxSequenceLines},
};

/// "0-1".
std::string ParseModules(std::string_view text, MERGE_OPTIONS& merge) {
  const std::size_t dash = std::min(text.find('-'), text.size());
  const bool good = ParseNumber(text.substr(0, dash), merge.first) && dash < text.size() &&
                    ParseNumber(text.substr(dash + 1), merge.last) && merge.last > merge.first;
  return good ? std::string() : std::string(text) + " is no range of modules such as 0-1";
}

/// Every command, with the options that it fills.
class CCommands {
 public:
  explicit CCommands(CLI::App& app) {
    m_commands.emplace_back(&AddRun(app, m_run), [this] { return COMMAND(m_run); });
    CLI::App& check = Add(app, "check", "Compile a program and print the findings", m_check);
    AddInput(check, m_check.input);
    Add(app, "modules", "List the modules of the mainframe", m_modules);
    AddConvert(Add(app, "convert", "Save a capture or a setup file as a setup file", m_convert));
    CLI::App& info = Add(app, "info", "Tell what a setup file holds", m_info);
    info.add_option("FILE", m_info.file, "A setup file")->required();
    CLI::App& dump = Add(app, "dump", "Print every field of a setup file with its offset", m_dump);
    dump.add_option("FILE", m_dump.file, "A setup file")->required();
    AddMerge(Add(app, "merge", "Merge modules of a system into one instrument", m_merge));
    AddTestData(Add(app, "testdata", "Save a generated test program", m_testData));
    CLI::App& simulation = Add(
        app, "sim-config", "Write the simulation configuration file for a setup file", m_simConfig);
    simulation.add_option("FILE", m_simConfig.file, "A setup file")->required();
    simulation.add_option("OUT", m_simConfig.out, "The configuration file, VISASTUB.INI")
        ->required();
  }

  std::optional<COMMAND> Parsed() const {
    for (const auto& [command, options] : m_commands) {
      if (command->parsed()) return options();
    }
    return std::nullopt;
  }

 private:
  template <typename Options>
  CLI::App& Add(CLI::App& app, const char* name, const char* what, Options& options) {
    CLI::App& command = *app.add_subcommand(name, what);
    command.footer(kExitStatuses);
    m_commands.emplace_back(&command, [&options] { return COMMAND(options); });
    return command;
  }

  void AddConvert(CLI::App& command) {
    AddInput(command, m_convert.input);
    command.add_option("OUT", m_convert.out, "The setup file to write")->required();
    command
        .add_option("--instrument", m_convert.instrument,
                    "Write a module file of this instrument instead of a system file")
        ->type_name("NAME");
    command.add_flag("--no-program", m_convert.noProgram, "Leave out blocks, sequence and events");
  }

  void AddMerge(CLI::App& command) {
    command.add_option("FILE", m_merge.file, "A setup file")->required();
    const auto parse = [this](const std::string& text) { return ParseModules(text, m_merge); };
    command
        .add_option("--modules", m_range, "First and last module, counted over the system from 0")
        ->required()
        ->type_name("A-B")
        ->check(CLI::Validator(parse, "", ""));
    command.add_option("OUT", m_merge.out, "The setup file to write")->required();
  }

  void AddTestData(CLI::App& command) {
    std::string kinds;
    for (const auto& [word, kind] : kTestPrograms)
      kinds.append(kinds.empty() ? "" : ", ").append(word);
    const auto choose = [this, kinds](const std::string& text) {
      for (const auto& [word, kind] : kTestPrograms) {
        if (text == word) m_testData.kind = kind;
        if (text == word) return std::string();
      }
      return text + " is none of " + kinds;
    };
    command.add_option("KIND", m_kind, kinds)->required()->check(CLI::Validator(choose, "", ""));
    command.add_option("OUT", m_testData.out, "The setup file to write")->required();
    command.add_option("--modules", m_testData.modules, "Modules of the instrument, 1 to 5")
        ->type_name("N")
        ->check(Positive(MAX_INSTRUMENT_MODULES));
    command.add_flag("--half", m_testData.half, "32 channels a module");
  }

  RUN_OPTIONS m_run;
  CHECK_OPTIONS m_check;
  MODULES_OPTIONS m_modules;
  CONVERT_OPTIONS m_convert;
  INFO_OPTIONS m_info;
  DUMP_OPTIONS m_dump;
  MERGE_OPTIONS m_merge;
  TEST_DATA_OPTIONS m_testData;
  SIM_CONFIG_OPTIONS m_simConfig;
  std::string m_range;
  std::string m_kind;
  std::vector<std::pair<const CLI::App*, std::function<COMMAND()>>> m_commands;
};

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

  const CCommands commands(app);

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    status = app.exit(error) == 0 ? STATUS_GOOD : STATUS_UNUSABLE;
    return std::nullopt;
  }
  if (std::optional<COMMAND> command = commands.Parsed()) return command;
  std::cerr << app.help();
  status = STATUS_UNUSABLE;
  return std::nullopt;
}

}  // namespace quillpg::tool
