#pragma once

#include "exchange/capture_folding.h"
#include "exchange/capture_runs.h"
#include "exchange/piece_cutter.h"

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace quillpg {

/// Stores equal pieces once and joins pieces that follow one another until few enough are left.
///
/// A pair of pieces is joined wherever it occurs. Pairs whose joint block takes no more memory than
/// its two halves, since these are needed nowhere else, are joined always; others only as long as
/// there are too many lines, those first that cost the least memory for each line saved.
class CPieceJoiner {
 public:
  CPieceJoiner(const CCaptureRuns& runs, const std::vector<PIECE>& pieces);

  void JoinTo(std::int64_t mostLines);

  /// Blocks that are used and the lines that play them, repeats cut to what a line can hold.
  void GiveProgram(FOLDED_PROGRAM& program) const;

  /// Lines that the pieces take now.
  std::int64_t Lines() const;

 private:
  // A block played `repeat` times; `first` is where in the capture.
  struct TOKEN {
    std::int64_t first;
    int block;
    std::int64_t repeat;
  };
  struct PAIR_KEY {
    int blockA;
    int blockB;
    std::int64_t repeatA;
    std::int64_t repeatB;
    bool operator==(const PAIR_KEY&) const = default;
  };
  struct PAIR_HASH {
    std::size_t operator()(const PAIR_KEY& key) const;
  };
  // Two tokens that follow one another, wherever they do.
  struct PAIR {
    PAIR_KEY key;
    std::int64_t first;  // of the first occurrence
    std::int64_t count = 0;
    std::int64_t growth = 0;  // memory that joining costs
    std::int64_t saved = 0;   // lines
    int joined = -1;          // the joint block, once chosen
  };

  static std::int64_t LinesOf(std::int64_t repeat);
  static PAIR_KEY KeyOf(const TOKEN& a, const TOKEN& b);
  int FindOrAdd(std::int64_t first, std::int64_t size);
  void Append(std::vector<TOKEN>& tokens, const TOKEN& token) const;
  void CountPairs();
  void RatePairs();
  bool ChoosePairs(std::int64_t surplusLines);
  void JoinChosen();

  const CCaptureRuns& m_runs;
  std::vector<FOLDED_PROGRAM::BLOCK_SOURCE> m_blocks;
  std::unordered_multimap<std::uint64_t, int> m_blockOfHash;
  std::vector<TOKEN> m_tokens;
  std::vector<PAIR> m_pairs;
  std::unordered_map<PAIR_KEY, std::size_t, PAIR_HASH> m_pairOfKey;
};

}  // namespace quillpg
