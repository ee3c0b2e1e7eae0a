#pragma once

#include "command_line.h"
#include "exchange/capture_import.h"
#include "exchange/vcd_writer.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillpg::tool {

class CServerSession;
class CTerminalRouter;

/// The FILE of a command line: recognised by its content, loaded into the session's server.
class CProgramFile {
 public:
  /// Gives the exit status. What is wrong, and the notices, are on standard error then; `router` is
  /// told of the progress.
  int Load(const INPUT_OPTIONS& options, CServerSession& session, CTerminalRouter& router);

  /// Vectors that the file's own play lasts; none for a program that ends by itself or never.
  std::optional<std::int64_t> Length() const { return m_length; }

  /// What the dump of the pins holds: one entry for each instrument.
  const std::vector<VCD_INSTRUMENT>& Instruments() const { return m_instruments; }

  /// A line for the user: what was made of the file.
  std::string Summary() const { return m_summary; }

 private:
  int LoadSetup(const INPUT_OPTIONS& options, CServerSession& session);
  int LoadCapture(const INPUT_OPTIONS& options, CServerSession& session, CTerminalRouter& router);
  int RefuseCapture(Status status, const INPUT_OPTIONS& options, std::string_view hint = {});
  void Summarize();

  CCaptureImport m_import;
  std::optional<std::int64_t> m_length;
  std::vector<VCD_INSTRUMENT> m_instruments;
  std::string m_summary;
};

}  // namespace quillpg::tool
