#pragma once

#include "program/program_row.h"
#include "quillpg/api.h"
#include "quillpg/limits.h"
#include "quillpg/result_codes.h"

#include <array>
#include <cstdint>
#include <iosfwd>
#include <string_view>

namespace quillpg {

class CByteWriter;
class CSetupFileReader;

/// One row of an event: a character for the signal input (position 0) and for the event bits E7
/// (position 1) down to E0 (position 8), two bits for each pod from D to A. The characters are not
/// checked.
struct QUILLPG_API EVENT_DEFINITION : CProgramRow {
  EVENT_DEFINITION() : CProgramRow(false) { m_pattern.fill('1'); }

  /// Sets all nine characters to '1'; the modified flag stays.
  Status Initialize();

  /// Marks the row modified always; a position outside 0 to 8 stores nothing.
  Status SetEventDefBit(int position, char character);
  /// The digit '0' for a position outside 0 to 8.
  char GetEventDefBit(int position) const;
  /// The nine characters in position order, as the hardware takes them.
  std::string_view Pattern() const { return {m_pattern.data(), m_pattern.size()}; }

  /// Bytes in a setup file.
  std::uint64_t GetSize() const;
  Status Read(std::istream& stream);
  Status Read(CSetupFileReader& reader);
  Status Write(std::ostream& stream) const;
  Status Write(CByteWriter& writer) const;

 private:
  std::array<char, EVENT_INPUTS> m_pattern;
};

}  // namespace quillpg
