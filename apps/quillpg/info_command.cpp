#include "base/text.h"
#include "commands.h"
#include "exit_status.h"
#include "report.h"
#include "setup_file.h"

#include <cinttypes>
#include <cstdio>

namespace quillpg::tool {
namespace {

// Texts of a file must not reach the terminal as they are.
std::string Shown(const std::string& text) { return CFieldTracer::Escaped(text); }

std::string_view Known(std::string_view displayText) {
  return displayText.empty() ? "?" : displayText;
}

void PrintInstrument(std::size_t index, const SETUP_FILE_INSTRUMENT& instrument, bool program) {
  PrintLine("instrument " + std::to_string(index) + ": '" + Shown(instrument.name) + "', " +
            Counted(static_cast<std::int64_t>(instrument.pods.size()), "module") + ", " +
            std::string(Known(GetDisplayText(instrument.channelMode))) + ", " +
            Grouped(static_cast<std::int64_t>(instrument.size)) + " bytes");
  for (std::size_t m = 0; m < instrument.pods.size(); ++m) {
    std::string line = "  module " + std::to_string(m) + ": pods A to D";
    for (const PodType pod : instrument.pods[m])
      line.append(" ").append(Known(GetDisplayText(pod)));
    PrintLine(line);
  }
  std::string content = "  " + Counted(instrument.groups, "group");
  if (program) {
    content += ", " + Counted(instrument.blocks, "block") + ", " +
               Counted(instrument.sequenceLines, "sequence line") + ", " +
               Counted(instrument.subsequences, "subsequence") + ", " +
               Counted(instrument.events, "event");
  }
  PrintLine(content);
}

// A file that goes wrong is unusable, yet what was read is shown first.
int Finish(const std::string& path, const CSetupFile& file) {
  const bool printed = FlushOutput();
  if (const std::string damage = file.Damage(); !damage.empty()) {
    return Refuse(path + ": the file goes wrong in " + damage);
  }
  return printed ? STATUS_GOOD : STATUS_UNUSABLE;
}

}  // namespace

int RunCommand(const INFO_OPTIONS& options) {
  CSetupFile file;
  const int status = file.Read(options.file);
  if (status != STATUS_GOOD) return status;
  const FIXED_SECTION& head = file.Contents().fixedSection;
  const bool program = head.programDataSaved != 0;
  PrintLine(options.file + ": " + (head.fileType == FileType::Module ? "module" : "system") +
            " file of " + head.productName + " " + Shown(head.softwareVersion) + ", saved " +
            Shown(head.dateSaved));
  PrintLine("comment: " + Shown(head.comment));
  PrintLine(std::string("program: ") + (program ? "saved" : "not saved"));
  PrintLine("size: " + Grouped(static_cast<std::int64_t>(file.Bytes().size())) + " bytes");
  std::string depths = "memory depths:";
  for (const std::int32_t depth : head.memoryDepths) depths += " " + Grouped(depth);
  PrintLine(depths);
  for (std::size_t i = 0; i < file.Contents().instruments.size(); ++i) {
    PrintInstrument(i, file.Contents().instruments[i], program);
  }
  return Finish(options.file, file);
}

int RunCommand(const DUMP_OPTIONS& options) {
  CSetupFile file;
  const int status = file.Read(options.file);
  if (status != STATUS_GOOD) return status;
  const auto print = [](const SETUP_FIELD& field) {
    char place[48];
    (void)std::snprintf(place, sizeof place, "%08" PRIX64 " %6" PRIu64 "  ", field.offset,
                        field.size);
    PrintLine(std::string(place)
                  .append(field.record)
                  .append(field.record.empty() ? "" : " / ")
                  .append(field.name)
                  .append(": ")
                  .append(field.value));
  };
  SETUP_FILE_CONTENTS contents;
  const auto* bytes = reinterpret_cast<const std::uint8_t*>(file.Bytes().data());
  // The walk's status is the one of the first walk: Finish tells it.
  (void)WalkSetupFile({bytes, file.Bytes().size()}, print, contents);
  const auto rest = file.Bytes().size() - contents.bytesRead;
  if (rest > 0 && file.Damage().empty()) {
    ReportNotice(options.file + ": " + Counted(static_cast<std::int64_t>(rest), "byte") +
                 " behind the last record");
  }
  return Finish(options.file, file);
}

}  // namespace quillpg::tool
