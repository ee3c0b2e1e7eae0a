#pragma once

#include "exchange/capture.h"
#include "instrument/mode_limits.h"
#include "quillpg/api.h"
#include "quillpg/limits.h"
#include "quillpg/result_codes.h"

#include <cstdint>
#include <functional>
#include <istream>
#include <string>
#include <string_view>

namespace quillpg {

/// Reads value change dumps (IEEE 1364, four states) of any writer: changes on one line or on many,
/// identifiers of any characters, ranges, blanks in names, values ahead of the first stamp.
///
/// x and z (and their nine-state kin) are taken for 0, with one notice a signal; real, string and
/// event variables are left out with a notice each. Variables that share an identifier and a width
/// are one net: they share their channels.
///
/// The file is read once through a buffer; memory grows with its change points, of which only so
/// many are taken as 256 MiB hold. Nothing is allocated for a width that a file merely declares.
class QUILLPG_API CVcdReader {
 public:
  /// Called now and then with the percentage read (0 when the length is unknown); false aborts.
  using Progress = std::function<bool(int percent)>;

  /// Widest capture that is taken: all modules merged into one instrument.
  static constexpr int MAX_BITS = MAX_INSTRUMENT_MODULES * FULL_LIMITS.ChannelsPerModule();

  void SetProgress(Progress progress) { m_progress = std::move(progress); }

  /// Reads the file at `path`. PG_E_FILE_NOT_OPENED, PG_E_LIMIT (too many
  /// channels or change points), PG_E_ABORTED, or E_FAIL for a file that is no sound value change
  /// dump; GetErrorText then says why, with file and line. `capture` is untouched on failure.
  Status ReadFile(const std::string& path, CAPTURE& capture);

  /// The same from a stream; `name` stands for the file in messages, `length` is its size in bytes
  /// or 0.
  Status Read(std::istream& stream, const std::string& name, std::int64_t length, CAPTURE& capture);

  const std::string& GetErrorText() const { return m_errorText; }

  /// True when a file that begins with `head` can only be meant as a value change dump.
  static bool IsVcd(std::string_view head);

 private:
  Progress m_progress;
  std::string m_errorText;
};

}  // namespace quillpg
