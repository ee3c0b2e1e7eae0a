#include "plain/group_text.h"

#include "hardware/module_manager.h"
#include "instrument/instrument.h"
#include "quillpg/app_server.h"
#include "ratio.h"

#include <cstddef>
#include <memory>
#include <random>
#include <vector>

namespace quillpg::bench {

namespace {

constexpr int kVectors = 2000;

// One module in FULL mode with the signals of a capture of 64 lines: 48 of one line, a bus of 16;
// and one group over all channels.
class CGroupTextBench {
 public:
  CGroupTextBench() {
    CAppServer* server = nullptr;
    (void)CAppServer::GetServer(&server);
    CModuleManager* modules = nullptr;
    (void)server->GetModuleManager(&modules);
    CModule* module = nullptr;
    (void)modules->GetModuleAt(0, &module);
    (void)m_instrument.Initialize();
    (void)m_instrument.AddModule(module);
    (void)m_instrument.Default();
    (void)m_instrument.GetGroupManager(&m_groups);
    (void)m_instrument.GetBlockManager(&m_blocks);
    (void)m_groups->DeleteAllGroups();
    for (int line = 0; line < 48; ++line) AddGroup("D" + std::to_string(line), line, 1);
    AddGroup("Bus", 48, 16);
    AddGroup("Wide", 0, 64);
    (void)m_blocks->AddBlock("Data", kVectors);
    FillBlock();
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

  void AddGroup(const std::string& name, int lowest, int channels) {
    (void)m_groups->AddGroup(name);
    for (int i = channels - 1; i >= 0; --i) {
      (void)m_instrument.AddChannelToGroup(name, lowest + i, -1);
    }
  }

  void FillBlock() {
    BLOCK* block = nullptr;
    (void)m_blocks->GetBlock(kBlock, &block);
    std::mt19937 random(4711);
    for (std::size_t i = 0; i < kVectors * block->RowBytes(); ++i) {
      block->Data()[i] = static_cast<std::uint8_t>(random());
    }
  }

  std::vector<std::string> Texts(const std::string& group, Radix radix) {
    std::vector<std::string> texts(kVectors);
    for (int i = 0; i < kVectors; ++i) {
      (void)m_instrument.GetGroupData(group, kBlock, i, radix, texts[static_cast<std::size_t>(i)]);
    }
    return texts;
  }

  CInstrument m_instrument;
  CGroupManager* m_groups = nullptr;
  CBlockManager* m_blocks = nullptr;
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
