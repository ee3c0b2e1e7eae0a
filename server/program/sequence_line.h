#pragma once

#include "program/program_row.h"
#include "quillpg/api.h"
#include "quillpg/engine_types.h"
#include "quillpg/result_codes.h"

#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>

namespace quillpg {

class CByteWriter;
class CSetupFileReader;

/// One line of the main program. It holds names and text as the user typed them; the compiler
/// resolves and checks them. Every setter marks the line modified.
struct QUILLPG_API SEQUENCE_LINE : CProgramRow {
  SEQUENCE_LINE() : CProgramRow(true) {}

  /// Restores the defaults: repeat 1, signal 1, no texts, modified.
  Status Initialize();

  int GetRepeatCount() const { return m_repeatCount; }  ///< how often the output is played
  SignalValue GetSignalValue() const { return m_signalValue; }
  const std::string& GetLabel() const { return m_label; }      ///< target of jumps
  const std::string& GetWaitFor() const { return m_waitFor; }  ///< event awaited before playing
  const std::string& GetOutput() const { return m_output; }    ///< block or subsequence played
  const std::string& GetJumpIf() const { return m_jumpIf; }    ///< event that makes it jump
  const std::string& GetJumpTo() const { return m_jumpTo; }    ///< label jumped to

  Status SetRepeatCount(int count);
  Status SetSignalValue(SignalValue value);
  Status SetLabel(const std::string& text);
  Status SetWaitFor(const std::string& text);
  Status SetOutput(const std::string& text);
  Status SetJumpIf(const std::string& text);
  Status SetJumpTo(const std::string& text);

  /// True when all five texts are empty; repeat count and signal do not count.
  bool IsEmpty() const;

  /// Bytes in a setup file.
  std::uint64_t GetSize() const;
  Status Read(std::istream& stream);
  Status Read(CSetupFileReader& reader);
  Status Write(std::ostream& stream) const;
  Status Write(CByteWriter& writer) const;

 private:
  Status SetText(std::string& field, const std::string& text);

  int m_repeatCount = 1;
  SignalValue m_signalValue = SignalValue::High;
  std::string m_label;
  std::string m_waitFor;
  std::string m_output;
  std::string m_jumpIf;
  std::string m_jumpTo;
};

inline std::string_view NameOf(const SEQUENCE_LINE& line) { return line.GetLabel(); }

}  // namespace quillpg
