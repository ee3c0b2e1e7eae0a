#include "plain/group_text.h"

#include "bench_instrument.h"
#include "ratio.h"

#include <cstddef>
#include <string>
#include <vector>

namespace quillpg::bench {

namespace {

constexpr int kVectors = 2000;

// The groups of a capture and one over all channels.
class CGroupTextBench {
 public:
  CGroupTextBench() {
    m_instrument.UseCaptureGroups();
    m_instrument.AddGroup("Wide", 0, 64);
    (void)m_instrument.AddRandomBlock(kVectors);
  }

  Work Read(const std::string& group, Radix radix) {
    return [this, group, radix] {
      for (int i = 0; i < kVectors; ++i) {
        (void)m_instrument.GetGroupData(group, kBlock, i, radix, m_text);
      }
    };
  }
  Work ReadPlain(const std::string& group, Radix radix) {
    return [this, group, radix] {
      const CPlainGroupText plain(m_instrument);
      for (int i = 0; i < kVectors; ++i) (void)plain.Get(group, kBlock, i, radix, m_text);
    };
  }
  Work Write(const std::string& group, Radix radix) {
    return [this, group, radix, texts = Texts(group, radix)] {
      for (int i = 0; i < kVectors; ++i) {
        (void)m_instrument.SetGroupData(group, kBlock, i, radix,
                                        texts[static_cast<std::size_t>(i)]);
      }
    };
  }
  Work WritePlain(const std::string& group, Radix radix) {
    return [this, group, radix, texts = Texts(group, radix)] {
      const CPlainGroupText plain(m_instrument);
      for (int i = 0; i < kVectors; ++i) {
        (void)plain.Set(group, kBlock, i, radix, texts[static_cast<std::size_t>(i)]);
      }
    };
  }

 private:
  static constexpr int kBlock = 1;  // after the default block

  std::vector<std::string> Texts(const std::string& group, Radix radix) {
    std::vector<std::string> texts(kVectors);
    for (int i = 0; i < kVectors; ++i) {
      (void)m_instrument.GetGroupData(group, kBlock, i, radix, texts[static_cast<std::size_t>(i)]);
    }
    return texts;
  }

  CBenchInstrument m_instrument;
  std::string m_text;
};

}  // namespace

void RegisterGroupTextBenches() {
  static CGroupTextBench bench;
  RegisterRatio("group_get_hex16_vs_plain", 12, bench.ReadPlain("Bus", Radix::Hex),
                bench.Read("Bus", Radix::Hex));
  RegisterRatio("group_get_dec64_vs_plain", 25, bench.ReadPlain("Wide", Radix::Decimal),
                bench.Read("Wide", Radix::Decimal));
  RegisterRatio("group_set_hex16_vs_plain", 6, bench.WritePlain("Bus", Radix::Hex),
                bench.Write("Bus", Radix::Hex));
  RegisterRatio("group_set_dec64_vs_plain", 60, bench.WritePlain("Wide", Radix::Decimal),
                bench.Write("Wide", Radix::Decimal));
}

}  // namespace quillpg::bench
