#pragma once

#include "exchange/capture.h"
#include "exchange/capture_grid.h"
#include "quillpg/api.h"
#include "quillpg/result_codes.h"

#include <cstdint>
#include <vector>

namespace quillpg {

/// A capture as a program: blocks cut out of it and the lines that play them.
struct FOLDED_PROGRAM {
  struct BLOCK_SOURCE {
    std::int64_t first = 0;  ///< first vector in the capture
    std::int64_t size = 0;   ///< vectors; beyond the capture's end its last vector goes on
  };
  struct LINE {
    int block = 0;
    int repeat = 1;
  };
  std::vector<BLOCK_SOURCE> blocks;
  std::vector<LINE> lines;
  std::int64_t memory = 0;  ///< vectors that the blocks take, as the compiler counts them
};

/// Cuts a capture into blocks so that equal stretches are stored once and repeats are counted.
///
/// Long constant stretches become one short block that is repeated. The rest is cut where its
/// content says so (equal content is then cut equally, wherever it stands), equal pieces are
/// stored once, and pieces are joined again, cheapest first, until the lines suffice. Playing the
/// lines gives the capture exactly.
class QUILLPG_API CCaptureFolding {
 public:
  /// `minSize` is the smallest block, `granularity` what the compiler rounds block sizes up to.
  CCaptureFolding(int minSize, int granularity) : m_minSize(minSize), m_granularity(granularity) {}

  /// PG_E_LIMIT when the capture needs more lines or blocks than a program can have.
  Status Fold(const CAPTURE& capture, const SAMPLE_GRID& grid, FOLDED_PROGRAM& program) const;

 private:
  int m_minSize;
  int m_granularity;
};

}  // namespace quillpg
