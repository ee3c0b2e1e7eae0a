// Pseudo-random data from a shift register: the bits of one stream over one step at a time, and 64
// channels of a block over steps and bits one at a time. The register has 32 stages, the longest.

#include "bench_instrument.h"
#include "hardware/shift_register_generator.h"
#include "program/block_manager.h"
#include "ratio.h"

#include <cstdint>
#include <numeric>
#include <vector>

namespace quillpg::bench {

namespace {

constexpr int kStreamBits = 1 << 22;
constexpr int kChannels = 64;
constexpr int kVectors = 262144;  // more than the smallest memory holds, as a fill before a resize

class CShiftRegisterBench {
 public:
  CShiftRegisterBench() : m_words(kStreamBits / 64), m_channels(kChannels) {
    std::iota(m_channels.begin(), m_channels.end(), 0);
    m_generator.setNumRegister(32);
    m_generator.setMaximumTapSetting(1);
    (void)m_instrument.Program().BlockAt(0)->ResizeBlock(kVectors, '\0');
  }

  void StreamPlain() {
    for (int i = 0; i < kStreamBits; ++i) {
      std::uint64_t& word = m_words[static_cast<std::size_t>(i / 64)];
      word = word >> 1 | static_cast<std::uint64_t>(m_generator.getNextData()) << 63;
    }
  }
  void Stream() { m_generator.getNextWords(m_words, kStreamBits); }

  void FillPlain() {
    for (int channel = 0; channel < kChannels; ++channel) {
      for (int vector = 0; vector < kVectors; ++vector) {
        (void)m_instrument.SetChannelData(channel, 0, vector, m_generator.getNextData());
      }
    }
  }
  void Fill() { (void)m_instrument.FillChannelData(m_channels, 0, 0, kVectors - 1, m_generator); }

 private:
  CBenchInstrument m_instrument;
  CShiftRegisterGenerator m_generator;
  std::vector<std::uint64_t> m_words;
  std::vector<int> m_channels;
};

}  // namespace

void RegisterShiftRegisterBenches() {
  static CShiftRegisterBench bench;
  RegisterRatio(
      "lfsr_vs_plain", 500, [] { bench.StreamPlain(); }, [] { bench.Stream(); });
  RegisterRatio(
      "lfsr_fill_vs_plain", 120, [] { bench.FillPlain(); }, [] { bench.Fill(); });
}

}  // namespace quillpg::bench
