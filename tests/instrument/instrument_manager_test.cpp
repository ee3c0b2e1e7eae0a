#include "instrument/instrument_manager.h"

#include "instrument/instrument.h"
#include "program/clipboard_info.h"
#include "quillpg/app_server.h"
#include "quillpg/grid_window.h"
#include "quillpg/limits.h"
#include "support/ask.h"
#include "support/instrument_fixture.h"

#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <memory>

namespace quillpg {
namespace {

using Names = std::vector<std::string>;

// Five modules in slots 3, 5, 7, 9 and 11; no instruments yet.
class InstrumentManager : public testing::Test {
 protected:
  CInstrumentManager& List() { return m_engine.Instruments(); }
  int Count() { return Ask(List(), &CInstrumentManager::GetNoOfInstruments); }
  Names NamesOfAll() { return Ask(List(), &CInstrumentManager::GetInstrumentNames); }
  int Current() { return Ask(List(), &CInstrumentManager::GetCurrentInst); }
  CInstrument* At(int position) {
    CInstrument* instrument = nullptr;
    EXPECT_EQ(List().GetInstrumentAt(position, &instrument), S_OK);
    return instrument;
  }
  // A new instrument over the modules from `first` on; the caller's until it is added.
  CInstrument* Make(const std::string& name, int first = 0, int modules = 0) {
    auto* instrument = new CInstrument();
    (void)instrument->Initialize();
    (void)instrument->SetInstrumentName(name);
    for (int i = 0; i < modules; ++i) (void)instrument->AddModule(&m_engine.Module(first + i));
    return instrument;
  }

  CEngineFixture m_engine{5};
};

TEST_F(InstrumentManager, GrowsWithEmptyEntriesAndRefusesWhatItCannotHold) {
  EXPECT_EQ(List().AddInstrument(Make("a")), S_OK);
  EXPECT_EQ(List().AddInstrument(Make("b")), S_OK);
  EXPECT_EQ(List().AddInstrumentAt(5, Make("c")), S_OK);
  EXPECT_EQ(List().AddInstrumentAt(1, Make("d")), S_OK);
  EXPECT_EQ(Count(), 7);
  EXPECT_EQ(NamesOfAll(), (Names{"a", "d", "b", "c"}));
  EXPECT_EQ(At(3), nullptr);
  EXPECT_EQ(At(-1), nullptr);
  EXPECT_EQ(At(7), nullptr);

  EXPECT_EQ(List().AddInstrument(nullptr), E_FAIL);
  EXPECT_EQ(List().AddInstrumentAt(0, nullptr), E_FAIL);
  const std::unique_ptr<CInstrument> refused(Make("e"));
  for (const int position : {-1, MAX_LIST_POSITIONS, INT_MAX}) {
    EXPECT_EQ(List().AddInstrumentAt(position, refused.get()), E_FAIL) << position;
  }
  EXPECT_EQ(Count(), 7);
  // Walks step over the empty entries.
  EXPECT_EQ(List().ReInitialize(), S_OK);
  EXPECT_EQ(m_engine.Server().Run(), S_OK);
  EXPECT_EQ(m_engine.Server().Compile(), S_OK);
  EXPECT_EQ(m_engine.Server().Download(), S_OK);
}

// The same instrument may be listed twice: whatever destroys it must do so once.
TEST_F(InstrumentManager, DestroysAnInstrumentOnce) {
  CInstrument* twice = Make("twice");
  for (int i = 0; i < 2; ++i) (void)List().AddInstrument(twice);
  EXPECT_EQ(List().DeleteInstrumentAt(0), S_OK);
  EXPECT_EQ(Count(), 1);
  EXPECT_EQ(At(0), nullptr);
  twice = Make("again");
  for (int i = 0; i < 3; ++i) (void)List().AddInstrument(twice);
  EXPECT_EQ(List().DeleteAll(), S_OK);
  EXPECT_EQ(Count(), 0);
}

class CWindow : public CSorrelGridWnd {
 public:
  explicit CWindow(CInstrument* instrument) : m_instrument(instrument) {}
  void GetInstrument(CInstrument** instrument) override { *instrument = m_instrument; }

 private:
  CInstrument* m_instrument;
};

TEST_F(InstrumentManager, TheClipboardForgetsADestroyedInstrument) {
  CClipboardInfo* clipboard = nullptr;
  (void)m_engine.Server().GetClipboardInfo(&clipboard);
  const std::function<void()> deletions[] = {
      [this] { (void)List().DeleteAll(); },
      [this] { (void)List().DeleteInstrumentAt(0); },
      [this] { (void)List().DeleteInstrument("PG 1"); },
  };
  for (const auto& remove : deletions) {
    (void)List().Default();
    CWindow doomed(At(0));
    CWindow other(nullptr);
    (void)clipboard->SetSourceWnd(&doomed);
    (void)clipboard->SetTargetWnd(&other);
    clipboard->contentType = ContentType::Block;
    remove();
    EXPECT_EQ(clipboard->contentType, ContentType::None);
    EXPECT_EQ(clipboard->GetSourceWnd(), nullptr);
    EXPECT_EQ(clipboard->GetTargetWnd(), &other);

    (void)List().Default();
    CWindow target(At(0));
    (void)clipboard->SetTargetWnd(&target);
    clipboard->contentType = ContentType::Event;
    remove();
    EXPECT_EQ(clipboard->contentType, ContentType::None);
    EXPECT_EQ(clipboard->GetTargetWnd(), nullptr);
  }
}

}  // namespace
}  // namespace quillpg
