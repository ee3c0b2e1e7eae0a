#include "exchange/capture_folding.h"

#include "base/guard.h"
#include "exchange/capture_runs.h"
#include "exchange/piece_cutter.h"
#include "exchange/piece_joiner.h"
#include "instrument/mode_limits.h"
#include "quillpg/limits.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace quillpg {
namespace {

// The compiler counts the padding of the last block that needed one again for every block behind it
// that needs none: blocks that need none come first.
void SortForMemory(FOLDED_PROGRAM& program, int granularity) {
  std::vector<int> order(program.blocks.size());
  std::iota(order.begin(), order.end(), 0);
  std::stable_partition(order.begin(), order.end(), [&](int block) {
    return program.blocks[static_cast<std::size_t>(block)].size % granularity == 0;
  });
  std::vector<FOLDED_PROGRAM::BLOCK_SOURCE> sorted;
  std::vector<int> places(order.size());
  for (const int block : order) {
    places[static_cast<std::size_t>(block)] = static_cast<int>(sorted.size());
    sorted.push_back(program.blocks[static_cast<std::size_t>(block)]);
  }
  program.blocks = std::move(sorted);
  for (FOLDED_PROGRAM::LINE& line : program.lines) {
    line.block = places[static_cast<std::size_t>(line.block)];
  }
}

}  // namespace

Status CCaptureFolding::Fold(const CAPTURE& capture, const SAMPLE_GRID& grid,
                             FOLDED_PROGRAM& program) const {
  if (grid.first.empty() || grid.vectors <= 0) return E_FAIL;
  return GuardAllocation(
      [&]() -> Status {
        const CCaptureRuns runs(capture, grid);
        CPieceJoiner joiner(runs, CPieceCutter(runs, m_minSize).Cut());
        joiner.JoinTo(MAX_SEQUENCE_LINES);
        if (joiner.Lines() > MAX_SEQUENCE_LINES) return PG_E_LIMIT;
        FOLDED_PROGRAM folded;
        joiner.GiveProgram(folded);
        SortForMemory(folded, m_granularity);
        CBlockMemory memory(m_granularity);
        for (const FOLDED_PROGRAM::BLOCK_SOURCE& block : folded.blocks) memory.Add(block.size);
        folded.memory = memory.Vectors();
        program = std::move(folded);
        return S_OK;
      },
      E_OUTOFMEMORY);
}

}  // namespace quillpg
