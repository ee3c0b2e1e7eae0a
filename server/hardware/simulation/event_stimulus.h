#pragma once

#include "quillpg/api.h"
#include "quillpg/result_codes.h"

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace quillpg {

/// The event inputs from vector `vector` on.
struct STIMULUS_LINE {
  std::int64_t vector;  ///< counted over every clock since Start, held vectors included
  std::string levels;   ///< nine characters 0 or 1: signal input, then E7 to E0
};

/// For which of the 512 combinations of the nine inputs an event is true. Input i (the i-th
/// character of a pattern) is bit i of the index.
using EVENT_TRUTH = std::bitset<512>;

/// The levels at the event inputs over time. Before the first line every input is 0; a line holds
/// until the next one.
class QUILLPG_API CEventStimulus {
 public:
  /// Answer of the searches: not at any vector to come.
  static constexpr std::int64_t NEVER = std::numeric_limits<std::int64_t>::max();

  /// Replaces the stimulus. E_FAIL, nothing changed, unless the vectors rise from 0 or more on and
  /// every line has nine characters 0 or 1.
  Status Set(const std::vector<STIMULUS_LINE>& lines);

  bool IsTrue(const EVENT_TRUTH& event, std::int64_t vector) const;
  // The first vector in question from `from` to before `end`, or NEVER.

  /// At which the event is true.
  std::int64_t FirstTrue(const EVENT_TRUTH& event, std::int64_t from,
                         std::int64_t end = NEVER) const;
  /// At which the event is true and was false one vector before. Before vector 0 all inputs are 0.
  std::int64_t FirstEdge(const EVENT_TRUTH& event, std::int64_t from,
                         std::int64_t end = NEVER) const;

 private:
  struct STEP {
    std::int64_t vector;
    std::size_t inputs;  // the nine levels as an index of EVENT_TRUTH
  };
  std::size_t StepAt(std::int64_t vector) const;

  std::vector<STEP> m_steps{{-1, 0}};  // the first is what was before vector 0
};

}  // namespace quillpg
