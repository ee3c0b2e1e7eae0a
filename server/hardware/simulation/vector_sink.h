#pragma once

#include "quillpg/api.h"

#include <cstdint>

namespace quillpg {

/// What one sequencer drove for a run of vectors: a master module and the modules that follow it.
/// Channel c of a module is bit c of its word; in HALF mode bits 32 to 63 are 0.
struct VECTOR_RUN {
  int module;                   ///< the master's index over the whole system
  int moduleCount;              ///< words of a row: the master, then its followers in order
  std::int64_t firstVector;     ///< vectors this sequencer clocked since Start before this run
  std::int64_t count;           ///< rows in `levels`, at least 1
  std::int64_t repeat;          ///< how often the rows are played, one pass after the other
  const std::uint64_t* levels;  ///< `count` rows of `moduleCount` words, valid during the call
  /// Always null or exactly of the shape of `levels`: 1 bits are high impedance, whatever `levels`
  /// says of them. Null when nothing is.
  const std::uint64_t* highZ;
  int line;    ///< the sequence line that plays, or that waits while the last vector is held
  int signal;  ///< level of the signal output: 0, 1, any other value is x
};

/// Takes what the simulated modules play. The runs of one sequencer come in order and without a
/// gap: `firstVector` is the sum of `count * repeat` so far. Held vectors (waits) come as runs of
/// one row; an idle sequencer brings none.
///
/// With several sequencers the one that is behind in time (vectors x clock period) plays next, in
/// slices, so that none is ever ahead of another by more than SEQUENCER_SLICE vectors of its own.
class QUILLPG_API CVectorSink {
 public:
  virtual ~CVectorSink() = default;

  /// Do not call into the modules, their memory or the clock from here.
  virtual void OnRun(const VECTOR_RUN& run) = 0;
};

/// Most vectors that a sequencer plays at a time while others play too.
inline constexpr std::int64_t SEQUENCER_SLICE = 65536;

}  // namespace quillpg
