#include "hardware/simulation/pin_driver.h"

#include "hardware/simulation/module_settings.h"
#include "hardware/simulation/pattern_memory.h"
#include "quillpg/engine_types.h"
#include "quillpg/limits.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace quillpg {
namespace {

constexpr int kHalfPodChannels = 8;
constexpr int kFullPodChannels = 16;

/// The settings of one module that make outputs high impedance, as masks over its word.
class CPinGate {
 public:
  explicit CPinGate(const CModuleSettings& settings) {
    const bool half = settings.Number(Setting::ChannelMode) == static_cast<int>(ChannelMode::Half);
    const int podChannels = half ? kHalfPodChannels : kFullPodChannels;
    const std::uint64_t pod = (std::uint64_t{1} << podChannels) - 1;
    const std::uint64_t all = half ? 0xFFFFFFFFU : ~std::uint64_t{0};
    m_always = settings.IsOn(Setting::OutputEnable) ? 0 : all;
    for (int p = 0; p < NUM_PODS; ++p) {
      const int place =
          CModuleSettings::Place(Setting::InhibitByData, static_cast<char>('A' + p), 0);
      if (settings.At(Setting::InhibitByData, place) == 0) continue;
      // Channel 4 + p of pod D inhibits pod p, pod D itself included.
      m_controls[m_controlCount++] = {(NUM_PODS - 1) * podChannels + 4 + p,
                                      pod << (p * podChannels)};
    }
  }

  bool IsOpen() const { return m_always == 0 && m_controlCount == 0; }

  std::uint64_t HighZ(std::uint64_t levels) const {
    std::uint64_t mask = m_always;
    for (std::size_t i = 0; i < m_controlCount; ++i) {
      if ((levels >> m_controls[i].bit) & 1U) mask |= m_controls[i].pod;
    }
    return mask;
  }

 private:
  struct CONTROL {
    int bit;            // channel that inhibits
    std::uint64_t pod;  // channels that it inhibits
  };
  std::uint64_t m_always = 0;
  std::array<CONTROL, NUM_PODS> m_controls{};
  std::size_t m_controlCount = 0;
};

}  // namespace

void CPinDriver::SetSources(const std::vector<PIN_SOURCE>& sources) {
  if (sources == m_sources) return;
  m_sources = sources;
  m_rows.clear();
}

std::uint64_t CPinDriver::Revision() const {
  std::uint64_t revision = 0;
  for (const PIN_SOURCE& source : m_sources) {
    revision += source.settings->Revision() + source.memory->Revision();
  }
  return revision;
}

std::int64_t CPinDriver::BlockSize(std::int64_t block) const {
  if (block < 0 || block > std::numeric_limits<int>::max() || m_sources.empty()) return 0;
  return m_sources.front().memory->Size(static_cast<int>(block));
}

const PIN_ROWS* CPinDriver::Rows(std::int64_t block) {
  const std::int64_t size = BlockSize(block);
  if (size == 0) return nullptr;
  if (const std::uint64_t revision = Revision(); revision != m_revision) {
    m_rows.clear();
    m_revision = revision;
  }
  const auto found = m_rows.find(static_cast<int>(block));
  if (found != m_rows.end()) return &found->second;

  PIN_ROWS rows;
  const std::size_t stride = m_sources.size();
  rows.size = size;
  rows.levels.resize(static_cast<std::size_t>(size) * stride);
  for (std::size_t i = 0; i < stride; ++i) {
    m_sources[i].memory->Unpack(static_cast<int>(block), rows.levels.data() + i, stride, size);
  }
  rows.highZ = HighZ(rows.levels);
  return &(m_rows[static_cast<int>(block)] = std::move(rows));
}

std::vector<std::uint64_t> CPinDriver::HighZ(const std::vector<std::uint64_t>& levels) const {
  std::vector<std::uint64_t> highZ;
  const std::size_t stride = m_sources.size();
  for (std::size_t i = 0; i < stride; ++i) {
    const CPinGate gate(*m_sources[i].settings);
    if (gate.IsOpen()) continue;
    highZ.resize(levels.size());
    for (std::size_t at = i; at < levels.size(); at += stride) {
      highZ[at] = gate.HighZ(levels[at]);
    }
  }
  return highZ;
}

}  // namespace quillpg
