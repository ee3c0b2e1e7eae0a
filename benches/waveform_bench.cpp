#include "bench_instrument.h"
#include "plain/group_text.h"
#include "program/block_manager.h"
#include "program/group_manager.h"
#include "program/waveform_manager.h"
#include "ratio.h"

#include <cstddef>
#include <string>
#include <vector>

namespace quillpg::bench {

namespace {

constexpr int kVectors = 262140;
constexpr int kShown = 50;
constexpr int kBlock = 1;  // after the default block

// A grid that shows 50 vectors of a large block, 2450 cells: the groups of a capture, of which pod
// A's are inhibited now and then.
class CWaveformBench {
 public:
  CWaveformBench() {
    (void)m_instrument.SetInhibitByPodD(0, 0, 1);
    m_instrument.UseCaptureGroups();
    (void)m_instrument.Program().Groups()->GetGroupNames(m_names);
    m_rows = m_instrument.AddRandomBlock(kVectors).GetWaveformManager();
  }

  Work Paint() {
    return [this] {
      ForEachCell([this](const std::string& name, int vector) {
        int row = -1;
        int group = -1;
        (void)m_rows->GetRowFromGroup(name, row);
        (void)m_rows->GetGroupId(row, group);
        (void)m_rows->GetGroupData(kBlock, group, vector, Radix::Hex, m_text);
      });
    };
  }

  // A walk through the rows, the value bit by bit, the mask channel by channel.
  Work PaintPlain() {
    return [this] {
      const CPlainGroupText plain(m_instrument);
      ForEachCell([&](const std::string& name, int vector) {
        if (!HasGroupRow(name)) return;
        (void)plain.Get(name, kBlock, vector, Radix::Hex, m_text);
        Mark(name, vector);
      });
    };
  }

 private:
  template <typename Visit>
  void ForEachCell(Visit&& visit) const {
    for (int i = 0; i < kShown; ++i) {
      for (const std::string& name : m_names) visit(name, kVectors / 2 + i);
    }
  }

  bool HasGroupRow(const std::string& name) const {
    for (int i = 0; const CWaveformData* row = m_rows->Row(i); ++i) {
      if (row->waveType == WaveType::Group && EqualNoCase(row->groupName, name)) return true;
    }
    return false;
  }

  void Mark(const std::string& name, int vector) {
    GROUP* group = nullptr;
    (void)m_instrument.Program().Groups()->GetGroup(name, &group);
    const int channels = group->GetNoOfChannels();
    std::vector<int> digits(m_text.size());
    for (int i = 0; i < channels; ++i) {
      int channel = -1;
      int mask = 0;
      group->GetChannelId(channels - 1 - i, channel);
      (void)m_instrument.GetChannelInhibitMask(channel, kBlock, vector, mask);
      digits[digits.size() - 1 - static_cast<std::size_t>(i / 4)] |= mask << i % 4;
    }
    for (std::size_t i = 0; i < digits.size(); ++i) {
      if (digits[i] != 0) m_text[i] = digits[i] == 15 ? 'Z' : '?';
    }
  }

  CBenchInstrument m_instrument;
  CWaveformManager* m_rows = nullptr;
  std::vector<std::string> m_names;
  std::string m_text;
};

}  // namespace

void RegisterWaveformBenches() {
  static CWaveformBench bench;
  RegisterRatio("grid_repaint_vs_plain", 2, bench.PaintPlain(), bench.Paint());
}

}  // namespace quillpg::bench
