#pragma once

#include "hardware/simulation/event_stimulus.h"
#include "quillpg/result_codes.h"

#include <cstdint>
#include <map>
#include <string_view>
#include <vector>

namespace quillpg {

/// One line of the sequence as it arrived; references are resolved only when it is played.
struct SEQUENCE_RECORD {
  std::int64_t output = 0;  ///< n block n, -k the subsequence that was defined as number k
  std::int64_t repeat = 0;  ///< 0 endless, below 0 once
  std::int64_t waitFor = 0;
  std::int64_t jumpIf = 0;  ///< 0 never, -1 always, n event n
  std::int64_t jumpTo = 0;  ///< line from 0
  std::int64_t signal = 0;
};

/// One line of a subsequence as it arrived.
struct SUBSEQUENCE_RECORD {
  std::int64_t block = 0;
  std::int64_t count = 0;  ///< below 1: once
};

/// The definitions that a module was sent. A definition that cannot be read (wrong number of
/// fields, something that is no number, an event row that is not nine characters long) gives E_FAIL
/// and leaves the one before in force.
class CPatternProgram {
 public:
  Status DefineSequence(int lines, std::string_view text);
  Status DefineSubSequence(int number, int lines, std::string_view text);
  Status DefineEvent(int number, std::string_view text);

  const std::vector<SEQUENCE_RECORD>& Sequence() const { return m_sequence; }
  /// Null for a number that was never defined.
  const std::vector<SUBSEQUENCE_RECORD>* SubSequence(std::int64_t number) const;
  /// Never true for a number that was never defined.
  const EVENT_TRUTH& Event(std::int64_t number) const;

 private:
  std::vector<SEQUENCE_RECORD> m_sequence;
  std::map<std::int64_t, std::vector<SUBSEQUENCE_RECORD>> m_subSequences;
  std::map<std::int64_t, EVENT_TRUTH> m_events;
};

}  // namespace quillpg
