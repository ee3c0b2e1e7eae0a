#include "instrument/instrument_manager.h"

#include "hardware/module_manager.h"
#include "instrument/instrument.h"
#include "program/clipboard_info.h"
#include "quillpg/app_server.h"
#include "quillpg/grid_window.h"
#include "quillpg/limits.h"
#include "support/ask.h"
#include "support/instrument_fixture.h"

#include <climits>
#include <gtest/gtest.h>

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

TEST_F(InstrumentManager, TheDefaultSystemHasOneInstrumentForEachModule) {
  EXPECT_EQ(Current(), 0);
  (void)List().SetComment("old");
  (void)List().SetFileName("old");
  (void)List().AddInstrument(Make("old"));
  EXPECT_EQ(List().Default(), S_OK);
  EXPECT_EQ(NamesOfAll(), (Names{"PG 1", "PG 2", "PG 3", "PG 4", "PG 5"}));
  EXPECT_EQ(Current(), 0);
  EXPECT_EQ(Ask(List(), &CInstrumentManager::GetComment), "");
  EXPECT_EQ(Ask(List(), &CInstrumentManager::GetFileName), "");
  EXPECT_EQ(Ask(*At(4), &CInstrument::GetNoOfModules), 1);
  EXPECT_EQ(m_engine.Host().cursorDepth, 0);

  EXPECT_EQ(List().Initialize(nullptr), S_OK);  // stores it and leaves the list alone
  EXPECT_EQ(Count(), 5);
  EXPECT_EQ(List().Initialize(), S_OK);
  EXPECT_EQ(Count(), 0);
  EXPECT_EQ(Current(), -1);
  CInstrument* current = At(0);
  EXPECT_EQ(List().GetCurrentInstrument(&current), S_OK);
  EXPECT_EQ(current, nullptr);
}

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

TEST_F(InstrumentManager, DeletesByNameAndPositionAndLeavesTheCurrentPosition) {
  (void)List().Default();
  (void)List().SetCurrentInst(4);
  EXPECT_EQ(List().DeleteInstrument("pg 2"), S_OK);
  EXPECT_EQ(List().DeleteInstrument("pg 2"), E_FAIL);
  EXPECT_EQ(List().DeleteInstrumentAt(0), S_OK);
  EXPECT_EQ(List().DeleteInstrumentAt(3), E_FAIL);
  EXPECT_EQ(List().DeleteInstrumentAt(-1), E_FAIL);
  EXPECT_EQ(Count(), 3);
  EXPECT_EQ(Current(), 4);
  CInstrument* current = At(0);
  EXPECT_EQ(List().GetCurrentInstrument(&current), S_OK);
  EXPECT_EQ(current, nullptr);
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

TEST_F(InstrumentManager, LooksUpNamesAndObjects) {
  (void)List().Default();
  CInstrument* found = nullptr;
  int position = 0;
  EXPECT_EQ(List().GetInstrument("pg 2", &found), S_OK);
  EXPECT_EQ(found, At(1));
  EXPECT_EQ(List().GetInstrumentPos(std::string("pG 3"), position), S_OK);
  EXPECT_EQ(position, 2);
  EXPECT_EQ(List().GetInstrumentPos(At(4), position), S_OK);
  EXPECT_EQ(position, 4);

  EXPECT_EQ(List().GetInstrument("PG", &found), E_FAIL);
  EXPECT_EQ(found, nullptr);
  EXPECT_EQ(List().GetInstrumentPos(std::string(" PG 1"), position), E_FAIL);
  EXPECT_EQ(position, -1);
  (void)List().AddInstrumentAt(7, Make("x"));  // the null entries are no match for null
  EXPECT_EQ(List().GetInstrumentPos(static_cast<CInstrument*>(nullptr), position), E_FAIL);
  EXPECT_EQ(position, -1);
  EXPECT_EQ(List().GetInstrument("PG 1", nullptr), E_FAIL);
  EXPECT_EQ(List().GetInstrumentAt(0, nullptr), E_FAIL);
}

TEST_F(InstrumentManager, FindsSlotsAndNumbersModules) {
  (void)List().AddInstrument(Make("none"));
  (void)List().AddInstrument(Make("pair", 0, 2));      // slots 3 and 5
  (void)List().AddInstrumentAt(3, Make("one", 2, 1));  // slot 7
  const struct {
    int slot;
    int instrument;  // -1: PG_E_SLOT_EMPTY
    int module;      // -1: E_FAIL, as in the second slot of a module
  } rows[] = {{2, -1, -1}, {3, 1, 0},  {4, 1, -1},  {5, 1, 1},   {6, 1, -1},
              {7, 3, 0},   {8, 3, -1}, {9, -1, -1}, {-1, -1, -1}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.slot);
    int position = -2;
    EXPECT_EQ(List().GetInstrumentPos(row.slot, position),
              row.instrument < 0 ? PG_E_SLOT_EMPTY : S_OK);
    EXPECT_EQ(position, row.instrument);
    EXPECT_EQ(List().GetModulePos(row.slot, position), row.module < 0 ? E_FAIL : S_OK);
    EXPECT_EQ(position, row.module);
    std::string text;
    EXPECT_EQ(List().GetModuleProperties(row.slot, text), row.module < 0 ? PG_E_SLOT_EMPTY : S_OK);
  }
  const struct {
    int position;
    int first;  // -1: E_FAIL
    int last;
  } numbers[] = {{-1, -1, -1}, {0, -1, -1}, {1, 0, 1}, {2, -1, -1}, {3, 2, 2}, {4, -1, -1}};
  for (const auto& row : numbers) {
    SCOPED_TRACE(row.position);
    int id = -2;
    EXPECT_EQ(List().GetFirstModuleId(row.position, id), row.first < 0 ? E_FAIL : S_OK);
    EXPECT_EQ(id, row.first);
    EXPECT_EQ(List().GetLastModuleId(row.position, id), row.last < 0 ? E_FAIL : S_OK);
    EXPECT_EQ(id, row.last);
  }
}

TEST_F(InstrumentManager, CountsInstrumentsOfAFrame) {
  std::vector<SIMULATED_MODULE> modules(2);
  modules[0].slot = 3;
  modules[1].slot = 5;
  modules[1].frame = 1;
  ASSERT_EQ(m_engine.Simulation().SetModules(modules), S_OK);
  CModuleManager* manager = nullptr;
  (void)m_engine.Server().GetModuleManager(&manager);
  (void)manager->Initialize();
  (void)List().Default();
  (void)List().AddInstrumentAt(4, Make("no module"));
  for (const auto& [frame, count] : {std::pair(0, 1), std::pair(1, 1), std::pair(2, 0)}) {
    EXPECT_EQ(Ask(List(), &CInstrumentManager::GetNoOfInstruments, frame), count);
  }
}

TEST_F(InstrumentManager, SumsSizes) {
  (void)List().AddInstrument(Make("a"));
  (void)List().AddInstrumentAt(2, Make("longer"));
  unsigned long first = 0;
  unsigned long last = 0;
  unsigned long size = 0;
  EXPECT_EQ(List().GetSize(first, 1, 0), S_OK);
  EXPECT_EQ(List().GetSize(last, 1, 2), S_OK);
  EXPECT_EQ(List().GetSize(size, 1, -1), S_OK);
  EXPECT_GT(first, 0u);
  EXPECT_EQ(size, first + last);
  EXPECT_EQ(List().GetSize(size, 1, 1), S_OK);
  EXPECT_EQ(size, 0u);
  for (const int bad : {-2, 3}) {
    size = 7;
    EXPECT_EQ(List().GetSize(size, 1, bad), E_FAIL);
    EXPECT_EQ(size, 0u);
  }
}

TEST_F(InstrumentManager, AsksTheHardwareLibrary) {
  m_engine.Simulation().Mainframe().expansions = 2;
  EXPECT_EQ(Ask(List(), &CInstrumentManager::GetNoOfExpansions), 2);
  EXPECT_EQ(Ask(List(), &CInstrumentManager::GetControllerProperties, 0), "");
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
