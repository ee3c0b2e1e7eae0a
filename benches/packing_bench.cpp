// Pattern words of whole modules: over the conversion bit by bit, and over memcpy of the bytes.

#include "hardware/pattern_packer.h"
#include "plain/packer.h"
#include "quillpg/host_services.h"
#include "quillpg/limits.h"
#include "ratio.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

namespace quillpg::bench {

namespace {

constexpr int kYieldBatch = 64;  // groups packed between two turns of the message loop

const volatile bool kAbort = false;

// A block of random data at the memory limit and the words of one transfer.
struct JOB {
  JOB(ChannelMode channelMode, int modules)
      : mode(channelMode),
        moduleCount(modules),
        size(static_cast<int>(DEFAULT_MEMORY_DEPTH) * (channelMode == ChannelMode::Half ? 2 : 1)),
        rowBytes(static_cast<std::size_t>(modules * GetChannelsPerModule(channelMode) / 8)),
        data(rowBytes * static_cast<std::size_t>(size)),
        copy(data.size()),
        words(std::size_t{MAX_TRANSFER_UNITS} * WORDS_PER_UNIT),
        runs(SplitIntoRuns(channelMode, size)) {
    std::mt19937 random(1);
    for (std::uint8_t& byte : data) byte = static_cast<std::uint8_t>(random());
  }

  PATTERN_ROWS Rows() const { return {data.data(), rowBytes, size}; }

  // Calls `pack` for each run of each module, as the download does.
  template <typename Pack>
  void ForEachRun(Pack&& pack) {
    for (const PACK_RUN& run : runs) {
      const int groups = run.unitCount / GetBitArrange(mode, run.kind).unitsPerGroup;
      for (int module = 0; module < moduleCount; ++module) {
        pack(run, module * GetChannelsPerModule(mode), groups);
      }
    }
  }

  void PackEngine() {
    ForEachRun([&](const PACK_RUN& run, int base, int groups) {
      CPatternPacker(mode, run.kind).Pack(Rows(), base, run.firstVector, groups, words);
    });
  }

  void PackBitByBit() {
    ForEachRun([&](const PACK_RUN& run, int base, int groups) {
      PackPlain(Rows(), mode, run.kind, base, run.firstVector, groups, kAbort, words.data());
    });
  }

  // One turn of a message loop that has nothing to do for every group, in batches.
  void PackWithYields() {
    CHostServices& host = CHostServices::Get();
    ForEachRun([&](const PACK_RUN& run, int base, int groups) {
      const CPatternPacker packer(mode, run.kind);
      for (int done = 0; done < groups; done += kYieldBatch) {
        const int count = std::min(groups - done, kYieldBatch);
        packer.Pack(Rows(), base, run.firstVector + done * packer.VectorsPerGroup(), count,
                    std::span(words).subspan(static_cast<std::size_t>(done) *
                                             static_cast<std::size_t>(packer.WordsPerGroup())));
        for (int i = 0; i < count; ++i) host.YieldToMessageLoop();
      }
    });
  }

  void Copy() { std::memcpy(copy.data(), data.data(), data.size()); }

  ChannelMode mode;
  int moduleCount;
  int size;
  std::size_t rowBytes;
  std::vector<std::uint8_t> data;
  std::vector<std::uint8_t> copy;
  std::vector<std::uint16_t> words;
  std::vector<PACK_RUN> runs;
};

}  // namespace

void RegisterPackingBenches() {
  const auto full = std::make_shared<JOB>(ChannelMode::Full, 1);
  const auto half = std::make_shared<JOB>(ChannelMode::Half, 1);
  const auto merged = std::make_shared<JOB>(ChannelMode::Full, 5);
  const auto engine = [](const auto& job) { return [job] { job->PackEngine(); }; };
  const auto plain = [](const auto& job) { return [job] { job->PackBitByBit(); }; };
  const auto copy = [](const auto& job) { return [job] { job->Copy(); }; };

  RegisterRatio("packing_full_vs_plain", 250, plain(full), engine(full));
  RegisterRatio("packing_half_vs_plain", 220, plain(half), engine(half));
  RegisterCost("packing_full_vs_memcpy", engine(full), copy(full));
  RegisterCost("packing_merged_vs_memcpy", engine(merged), copy(merged));
  RegisterCost(
      "packing_yields_vs_packing", [full] { full->PackWithYields(); }, engine(full));
}

}  // namespace quillpg::bench
