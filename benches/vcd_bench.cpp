// Played vectors to text in memory: 1,000,000 vectors of 64 channels, a tenth of the channels
// toggling in each, against a writer that looks at every bit and prints into a stream.

#include "exchange/vcd_text.h"
#include "exchange/vcd_writer.h"
#include "ratio.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <random>
#include <sstream>
#include <vector>

namespace quillpg::bench {

namespace {

constexpr int kChannels = 64;
constexpr std::int64_t kVectors = 1000000;

std::vector<std::uint64_t> MakeRows() {
  std::mt19937_64 random(1);
  std::uniform_real_distribution<double> chance(0.0, 1.0);
  std::vector<std::uint64_t> rows;
  std::uint64_t row = 0;
  for (std::int64_t i = 0; i < kVectors; ++i) {
    std::uint64_t toggled = 0;
    for (int c = 0; c < kChannels; ++c) {
      toggled |= static_cast<std::uint64_t>(chance(random) < 0.1) << c;
    }
    rows.push_back(row ^= toggled);
  }
  return rows;
}

VCD_INSTRUMENT MakeInstrument() {
  VCD_INSTRUMENT instrument;
  instrument.name = "bench";
  instrument.period = {1, 1000000};
  for (int c = 0; c < kChannels; ++c) {
    instrument.signals.push_back({"D" + std::to_string(c), "", {c}});
  }
  return instrument;
}

std::string WritePlain(const std::vector<std::uint64_t>& rows) {
  std::ostringstream out;
  for (std::size_t v = 0; v < rows.size(); ++v) {
    bool stamped = false;
    for (int c = 0; c < kChannels; ++c) {
      const auto bit = rows[v] >> c & 1;
      if (v > 0 && bit == (rows[v - 1] >> c & 1)) continue;
      if (!stamped) out << '#' << v << '\n';
      stamped = true;
      out << bit << VcdIdentifier(c) << '\n';
    }
  }
  out << '#' << rows.size() << '\n';
  return out.str();
}

void WriteEngine(const std::vector<std::uint64_t>& rows, const VCD_INSTRUMENT& instrument,
                 std::string& text) {
  text.clear();
  CVcdWriter writer;
  (void)writer.OpenText(text, instrument, {});
  VECTOR_RUN run{};
  run.moduleCount = 1;
  run.count = static_cast<std::int64_t>(rows.size());
  run.repeat = 1;
  run.levels = rows.data();
  writer.OnRun(run);
  (void)writer.Commit();
}

}  // namespace

void RegisterVcdBenches() {
  const auto rows = std::make_shared<const std::vector<std::uint64_t>>(MakeRows());
  RegisterRatio(
      "vcd_write_vs_stream", 20, [rows] { benchmark::DoNotOptimize(WritePlain(*rows)); },
      [rows, instrument = MakeInstrument(), text = std::make_shared<std::string>()] {
        WriteEngine(*rows, instrument, *text);
        benchmark::DoNotOptimize(text->data());
      });
}

}  // namespace quillpg::bench
