#include "instrument/instrument_manager.h"

#include "program/clipboard_info.h"
#include "quillpg/grid_window.h"
#include "quillpg/limits.h"
#include "support/instrument_fixture.h"

#include <gtest/gtest.h>

#include <climits>

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
  CInstrument* At(int position) { return m_engine.Instrument(position); }
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

TEST_F(InstrumentManager, FindsTheInstrumentAndTheModuleOfASlot) {
  (void)List().AddInstrument(Make("none"));
  (void)List().AddInstrument(Make("two", 0, 2));
  (void)List().AddInstrumentAt(3, Make("two more", 3, 2));  // behind an empty entry
  const struct {
    int slot, instrument, module;  // -1 for none
  } rows[] = {{2, -1, -1}, {3, 1, 0},    {4, 1, -1},        {5, 1, 1},
              {6, 1, -1},  {7, -1, -1},  {9, 3, 0},         {11, 3, 1},
              {12, 3, -1}, {13, -1, -1}, {INT_MAX, -1, -1}, {INT_MIN, -1, -1}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.slot);
    int position = 9;
    EXPECT_EQ(List().GetInstrumentPos(row.slot, position),
              row.instrument < 0 ? PG_E_SLOT_EMPTY : S_OK);
    EXPECT_EQ(position, row.instrument);
    EXPECT_EQ(List().GetModulePos(row.slot, position), row.module < 0 ? E_FAIL : S_OK);
    EXPECT_EQ(position, row.module);
    std::string text;
    EXPECT_EQ(List().GetModuleProperties(row.slot, text), row.module < 0 ? PG_E_SLOT_EMPTY : S_OK);
  }
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

TEST_F(InstrumentManager, TheClipboardForgetsADestroyedInstrument) {
  CClipboardInfo* clipboard = Find(m_engine.Server(), &CAppServer::GetClipboardInfo);
  const std::function<void()> deletions[] = {
      [this] { (void)List().DeleteAll(); },
      [this] { (void)List().DeleteInstrumentAt(0); },
      [this] { (void)List().DeleteInstrument("PG 1"); },
  };
  CGrid doomed;
  CGrid other;
  for (const auto& remove : deletions) {
    for (const bool source : {false, true}) {
      (void)List().Default();
      doomed.instrument = At(0);
      (void)clipboard->SetSourceWnd(source ? &doomed : &other);
      (void)clipboard->SetTargetWnd(source ? &other : &doomed);
      clipboard->contentType = ContentType::Block;
      remove();
      EXPECT_EQ(clipboard->contentType, ContentType::None);
      EXPECT_EQ(clipboard->GetSourceWnd(), source ? nullptr : &other);
      EXPECT_EQ(clipboard->GetTargetWnd(), source ? &other : nullptr);
    }
  }
  (void)clipboard->SetTargetWnd(nullptr);  // the grid goes before the engine
}

}  // namespace
}  // namespace quillpg
