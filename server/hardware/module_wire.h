#pragma once

#include "base/text.h"
#include "quillpg/limits.h"

// How settings of a module travel to the hardware library.

namespace quillpg {

/// 'A' to 'D'; a blank for a pod that does not exist.
constexpr char PodLetter(int pod) {
  return pod >= 0 && pod < NUM_PODS ? static_cast<char>('A' + pod) : ' ';
}

/// A delay: nanoseconds in the model, rounded to three decimals when read; seconds on the way.
struct AsNanoseconds {
  template <typename Stored>
  static Stored ToStored(double seconds) {
    Stored rounded = 0;
    (void)ParseNumber(FixedDecimal(seconds * 1e9, 3), rounded);
    return rounded;
  }
  template <typename Wire>
  static Wire ToWire(double nanoseconds) {
    return nanoseconds * 1e-9;
  }
};

}  // namespace quillpg
