// Playing 10,000,000 vectors of 64 channels into a sink that counts them, over memcpy of as many
// words. The block is unpacked anew each time, as after a download.

#include "hardware/simulation/simulated_hardware.h"
#include "hardware/simulation/vector_sink.h"
#include "ratio.h"

#include <cstdint>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

namespace quillpg::bench {
namespace {

constexpr int kBlockSize = 1000000;
constexpr int kUnits = kBlockSize / 4;
constexpr std::int64_t kVectors = 10 * std::int64_t{kBlockSize};

struct COUNTING_SINK : CVectorSink {
  void OnRun(const VECTOR_RUN& run) override { vectors += run.count * run.repeat; }
  std::int64_t vectors = 0;
};

struct PLAY {
  PLAY() : words(std::size_t{kUnits} * 16), from(kVectors), to(kVectors) {
    std::mt19937 random(1);
    for (std::uint16_t& word : words) word = static_cast<std::uint16_t>(random());
    for (std::uint64_t& word : from) word = random();
    (void)hardware.Control().SetModules(1, true);
    hardware.Control().AddVectorSink(&sink);
    CSorrelModule& module = Module();
    (void)module.EnableOutput(1);
    (void)module.CreateDataBlock(0, kBlockSize);
    (void)module.DataVectorsSM(words.data(), 0, 0, kUnits, 0);
    (void)module.DefineSequence(1, "0,10,0,0,0,1");
  }

  CSorrelModule& Module() { return *hardware.Control().HardwareModule(0); }

  void Play() {
    (void)Module().DataVectorsSM(words.data(), 0, 0, 1, 0);
    (void)Module().Initiate();
    (void)Module().Start();
    (void)hardware.Control().Clock(kVectors);
  }

  void Copy() { std::memcpy(to.data(), from.data(), from.size() * sizeof from[0]); }

  CSimulatedHardware hardware;
  COUNTING_SINK sink;
  std::vector<std::uint16_t> words;
  std::vector<std::uint64_t> from;
  std::vector<std::uint64_t> to;
};

}  // namespace

void RegisterPlayBenches() {
  const auto play = std::make_shared<PLAY>();
  RegisterCost(
      "play_over_memcpy", [play] { play->Play(); }, [play] { play->Copy(); });
}

}  // namespace quillpg::bench
