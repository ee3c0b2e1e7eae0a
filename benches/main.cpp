// Runs every comparison and prints one line `ratio NAME VALUE` for each at the end:
//   packing    pattern words of a module over the conversion bit by bit, and over memcpy
//   compile    a program at the limits over linear name look-ups
//   group text cell values of a grid over the conversion channel by channel
//   grid       50 vectors of a large block over walks through rows and channels
//   vcd        played vectors to VCD text over a stream written bit by bit
//   play       10,000,000 played vectors over memcpy
//   lfsr       pseudo-random bits and fills over one step and one bit at a time
//   setup file blocks saved and loaded over calls of a stream for each field, and over write and
//   read
// Options are Google Benchmark's, for example --benchmark_filter=packing.

#include <benchmark/benchmark.h>

namespace quillpg::bench {
int RunAndPrintRatios();

// Each topic registers itself here and is called in main.
void RegisterCompileBenches();
void RegisterGroupTextBenches();
void RegisterVcdBenches();
void RegisterPackingBenches();
void RegisterPlayBenches();
void RegisterSetupFileBenches();
void RegisterShiftRegisterBenches();
void RegisterWaveformBenches();
}  // namespace quillpg::bench

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;

  quillpg::bench::RegisterCompileBenches();
  quillpg::bench::RegisterGroupTextBenches();
  quillpg::bench::RegisterVcdBenches();
  quillpg::bench::RegisterPackingBenches();
  quillpg::bench::RegisterPlayBenches();
  quillpg::bench::RegisterSetupFileBenches();
  quillpg::bench::RegisterShiftRegisterBenches();
  quillpg::bench::RegisterWaveformBenches();
  return quillpg::bench::RunAndPrintRatios();
}
