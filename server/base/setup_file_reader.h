#pragma once

#include "base/byte_stream.h"

namespace quillpg {

/// What a file's version and the way it is loaded change about reading its records.
struct SETUP_FILE_FORM {
  /// Groups have their channel-names text and blocks their waveform rows.
  bool hasNamesAndRows = true;
  /// The channel-names texts are made anew, over a text just read too.
  bool rebuildsNames = false;
  /// Records are read only to get past them: blocks leave their pattern data out.
  bool stepsOver = false;
  /// The blocks that are there go once the groups are read: nothing need bring them into step.
  bool replacesBlocks = false;
};

/// Reads the records of a setup file.
class CSetupFileReader : public CByteReader {
 public:
  explicit CSetupFileReader(std::span<const std::uint8_t> bytes, const SETUP_FILE_FORM& form = {})
      : CByteReader(bytes), m_form(form) {}
  explicit CSetupFileReader(std::istream& stream, const SETUP_FILE_FORM& form = {})
      : CByteReader(stream), m_form(form) {}

  const SETUP_FILE_FORM& Form() const { return m_form; }
  void SetForm(const SETUP_FILE_FORM& form) { m_form = form; }

 private:
  SETUP_FILE_FORM m_form;
};

}  // namespace quillpg
