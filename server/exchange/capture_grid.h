#pragma once

#include "exchange/capture.h"
#include "quillpg/api.h"
#include "quillpg/engine_types.h"
#include "quillpg/result_codes.h"

#include <cstdint>
#include <string>
#include <vector>

namespace quillpg {

/// The sample grid of a capture: one vector for each period from its first change point on.
struct SAMPLE_GRID {
  RATIO period;                     ///< seconds
  std::vector<std::int64_t> first;  ///< for each change point that is played: its vector, rising
  std::vector<std::size_t> point;   ///< and its place in CAPTURE::stamps
  std::int64_t vectors = 0;         ///< length of the capture
  std::int64_t merged = 0;          ///< change points that fell into the vector of a later one
};

/// Finds the grid on which a capture was sampled. In this order:
/// 1. a period that the user gives: every stamp goes to the nearest vector;
/// 2. the rate that the capture's comment states, or a multiple of its period that is the stamps'
///    common step, if every stamp is a rounded multiple of it;
/// 3. the greatest common divisor of all stamps, if the clock can play it;
/// 4. the longest period of which every stamp is a rounded (or cut) multiple; before 3 where many
///    stamps speak for it and 3 gives tens of millions of vectors.
class QUILLPG_API CCaptureGrid {
 public:
  /// `period` in seconds, not set: found. E_FAIL, with the clock's range in the text, when
  /// there is none that the clock can play; PG_E_LIMIT for a capture too long for the period.
  Status Find(const CAPTURE& capture, RATIO period, SAMPLE_GRID& grid);

  /// For a capture that does not fit: the longest period of which every stamp is a rounded
  /// multiple, although a shorter one divides them. E_FAIL, with `grid` untouched, without one.
  Status FindCoarser(const CAPTURE& capture, SAMPLE_GRID& grid);

  const std::string& GetErrorText() const { return m_errorText; }

 private:
  std::string m_errorText;
};

/// True when the internal clock can run at this period, in this mode or in one of them.
QUILLPG_API bool CanClock(RATIO period, ChannelMode mode);
QUILLPG_API bool CanClock(RATIO period);

}  // namespace quillpg
