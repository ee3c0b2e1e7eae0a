// Reads any bytes as a value change dump and folds what comes out: a file that is taken must give a
// program that is as long as its grid says.

#include "exchange/vcd_reader.h"

#include "exchange/capture_folding.h"
#include "exchange/capture_grid.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

namespace {

void Check(bool holds) {
  if (!holds) std::abort();
}

void FoldAll(const quillpg::CAPTURE& capture, const quillpg::SAMPLE_GRID& grid) {
  quillpg::FOLDED_PROGRAM program;
  constexpr int kMinSize = 40;
  constexpr int kGranularity = 4;
  const quillpg::CCaptureFolding folding(kMinSize, kGranularity);
  if (quillpg::Failed(folding.Fold(capture, grid, program))) return;
  std::int64_t length = 0;
  for (const auto& line : program.lines) {
    length += program.blocks[static_cast<std::size_t>(line.block)].size * line.repeat;
  }
  Check(length == (grid.vectors < kMinSize ? kMinSize : grid.vectors));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::istringstream stream(std::string(reinterpret_cast<const char*>(data), size));
  quillpg::CVcdReader reader;
  quillpg::CAPTURE capture;
  const quillpg::Status status = reader.Read(stream, "fuzz", 0, capture);
  Check(quillpg::Failed(status) == !reader.GetErrorText().empty());
  if (quillpg::Failed(status)) return 0;
  quillpg::CCaptureGrid finder;
  quillpg::SAMPLE_GRID grid;
  if (!quillpg::Failed(finder.Find(capture, quillpg::RATIO{}, grid))) FoldAll(capture, grid);
  return 0;
}
