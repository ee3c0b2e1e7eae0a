#pragma once

#include "exchange/capture_runs.h"

#include <cstdint>
#include <unordered_map>
#include <vector>

namespace quillpg {

/// A stretch of a capture that is played several times, one after the other.
struct PIECE {
  std::int64_t first = 0;  ///< its first vector
  std::int64_t size = 0;   ///< vectors of one pass
  std::int64_t repeat = 1;
};

/// Cuts a capture into pieces of at least a minimum size, where its content says so: equal content
/// is cut equally, wherever it stands, so that equal pieces come out.
///
/// A constant stretch of twice the minimum or more becomes a short piece that is repeated. Anything
/// else is cut at the change point whose surroundings have the lowest hash within a window, which
/// depends on nothing but the surroundings.
class CPieceCutter {
 public:
  CPieceCutter(const CCaptureRuns& runs, int minSize) : m_runs(runs), m_minSize(minSize) {}

  /// The pieces in order; together they are the capture, but a capture below the minimum size gives
  /// one piece of that size.
  std::vector<PIECE> Cut();

 private:
  bool IsIdle(std::size_t run) const { return m_runs.Size(run) >= 2 * m_minSize; }
  std::int64_t FindCut(std::int64_t from, std::size_t run) const;
  std::uint64_t Surroundings(std::size_t run) const;
  void AddIdle(std::int64_t first, std::int64_t size, std::uint64_t rowHash);
  void AddConstant(std::int64_t& first, std::int64_t size, std::int64_t repeat,
                   std::uint64_t rowHash);

  const CCaptureRuns& m_runs;
  std::int64_t m_minSize;
  std::vector<PIECE> m_pieces;
  // Sizes of the constant pieces so far, by what they hold.
  std::unordered_map<std::uint64_t, std::vector<std::int64_t>> m_constants;
};

}  // namespace quillpg
