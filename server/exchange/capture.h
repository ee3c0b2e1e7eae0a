#pragma once

#include "exchange/sample_period.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace quillpg {

/// One variable of a capture.
struct CAPTURE_SIGNAL {
  std::string name;   ///< as the file bears it, words joined by one blank, without the range
  std::string range;  ///< "[7:0]" or "[3]" as the file bears it; empty without one
  int width = 1;
  int firstBit = 0;  ///< least significant bit's place in a row; it becomes the channel number
};

/// A capture as read: what every signal holds from each change point on.
struct CAPTURE {
  std::string file;  ///< name for messages
  std::vector<CAPTURE_SIGNAL> signals;
  int bits = 0;          ///< channels in a row
  int wordsPerRow = 0;   ///< 64 channels a word, channel c is bit c mod 64 of word c / 64
  int tickExponent = 0;  ///< a tick is 10^tickExponent seconds
  RATIO statedRate;      ///< sample rate in Hz that a comment states; not set without one
  std::vector<std::int64_t> stamps;  ///< change points in ticks, rising; the first is the start
  std::vector<std::uint64_t> rows;   ///< wordsPerRow words for each change point
  std::int64_t end = 0;              ///< last stamp of the file, in ticks
  std::vector<std::string> notices;  ///< what was left out or taken for 0, for the user

  /// The last stamp carried changes: the last sample has no end of its own.
  bool EndsWithChanges() const { return !stamps.empty() && stamps.back() == end; }
  const std::uint64_t* Row(std::size_t point) const {
    return rows.data() + point * static_cast<std::size_t>(wordsPerRow);
  }
};

}  // namespace quillpg
