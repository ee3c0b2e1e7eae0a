#include "instrument/merge_manager.h"

#include "hardware/module.h"
#include "hardware/module_manager.h"
#include "instrument/instrument.h"
#include "instrument/instrument_manager.h"
#include "quillpg/app_server.h"
#include "support/ask.h"
#include "support/instrument_fixture.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

namespace quillpg {
namespace {

// Instruments "PG 1", "PG 2" ... of one module each, and the dialog's working copy of them.
class CMergeFixture : public CEngineFixture {
 public:
  explicit CMergeFixture(int modules) : CEngineFixture(modules) {
    (void)Server().DefaultSystem();
    (void)Server().GetMergeManager(&m_manager);
  }
  ~CMergeFixture() { (void)Instruments().DeleteAll(); }

  CMergeManager& Merger() { return *m_manager; }
  CInstrument* Live(int position) {
    CInstrument* instrument = nullptr;
    (void)Instruments().GetInstrumentAt(position, &instrument);
    return instrument;
  }

  // "m3" merges, "u3" splits, "d3" deletes the instrument, "a3" adds one of one module; gives the
  // status of the last step.
  Status Do(const std::string& steps) {
    Status status = S_OK;
    for (std::size_t i = 0; i + 1 < steps.size(); i += 3) {
      const int number = steps[i + 1] - '0';
      status = steps[i] == 'm'   ? m_manager->Merge(number)
               : steps[i] == 'u' ? m_manager->UnMerge(number)
               : steps[i] == 'd' ? m_manager->DeleteInstrument(number)
                                 : m_manager->AddInstrument(0, number, 1);
    }
    return status;
  }

  // Names and module counts of the working copy, '*' before the current one.
  std::string Copy() {
    std::string text;
    const int current = Ask(*m_manager, &CMergeManager::GetCurrentInst);
    for (int i = 0; i < Ask(*m_manager, &CMergeManager::GetNoOfInstruments); ++i) {
      INSTRUMENT_INFO* info = nullptr;
      (void)m_manager->GetInstrumentAt(i, &info);
      text += i == current ? " *" : " ";
      text += info ? info->name + ":" + std::to_string(info->moduleCount) : "-";
    }
    return text.substr(std::min<std::size_t>(text.size(), 1));
  }

  // The same of the live instruments.
  std::string System() {
    std::string text;
    const int current = Ask(Instruments(), &CInstrumentManager::GetCurrentInst);
    for (int i = 0; i < Ask(Instruments(), &CInstrumentManager::GetNoOfInstruments); ++i) {
      text += i == current ? " *" : " ";
      if (!Live(i)) continue;
      text += Ask(*Live(i), &CInstrument::GetInstrumentName) + ":" +
              std::to_string(Ask(*Live(i), &CInstrument::GetNoOfModules));
    }
    return text.substr(std::min<std::size_t>(text.size(), 1));
  }

 private:
  CMergeManager* m_manager = nullptr;
};

TEST(MergeManager, EditsTheWorkingCopyAlone) {
  struct ROW {
    const char* steps;
    Status status;
    const char* copy;
  };
  const ROW rows[] = {
      {"m2 m3", S_OK, "PG 1:1 *PG 2:3 PG 5:1 PG 6:1"},
      {"m1 m2 m3 m4 m5", E_FAIL, "*PG 3:5 PG 6:1"},
      {"m1 m2 m4 m5 m3", E_FAIL, "PG 1:3 *PG 3:3"},
      {"m1 m1", E_FAIL, "*PG 0:2 PG 3:1 PG 4:1 PG 5:1 PG 6:1"},
      {"m0", E_FAIL, "*PG 1:1 PG 2:1 PG 3:1 PG 4:1 PG 5:1 PG 6:1"},
      {"m6", E_FAIL, "*PG 1:1 PG 2:1 PG 3:1 PG 4:1 PG 5:1 PG 6:1"},
      {"u0", S_OK, "*PG 1:1 PG 2:1 PG 3:1 PG 4:1 PG 5:1 PG 6:1"},
      {"u6", E_FAIL, "*PG 1:1 PG 2:1 PG 3:1 PG 4:1 PG 5:1 PG 6:1"},
      {"m2 m3 u1", E_FAIL, "PG 1:1 *PG 2:3 PG 5:1 PG 6:1"},
      {"m2 m3 u2", S_OK, "PG 1:1 *PG 3:1 PG 4:2 PG 5:1 PG 6:1"},
      {"m2 m3 u3", S_OK, "PG 1:1 *PG 3:2 PG 4:1 PG 5:1 PG 6:1"},
      {"a0", S_OK, "*PG 0:1 PG 1:1 PG 2:1 PG 3:1 PG 4:1 PG 5:1 PG 6:1"},
      {"a8", S_OK, "*PG 1:1 PG 2:1 PG 3:1 PG 4:1 PG 5:1 PG 6:1 - - PG 0:1"},
      {"d6", E_FAIL, "*PG 1:1 PG 2:1 PG 3:1 PG 4:1 PG 5:1 PG 6:1"},
      {"d0 d0 m4", E_FAIL, "*PG 3:1 PG 4:1 PG 5:1 PG 6:1"},  // no instrument holds module 4
  };
  for (const ROW& row : rows) {
    SCOPED_TRACE(row.steps);
    CMergeFixture engine(6);
    EXPECT_EQ(engine.Do(row.steps), row.status);
    EXPECT_EQ(engine.Copy(), row.copy);
    EXPECT_EQ(engine.System(), "*PG 1:1 PG 2:1 PG 3:1 PG 4:1 PG 5:1 PG 6:1");
  }
}

TEST(MergeManager, UpdateKeepsWhatHasTheSameModules) {
  CMergeFixture engine(4);
  CInstrument* first = engine.Live(0);
  CInstrument* last = engine.Live(3);
  CRecordingEventHandler handler;
  (void)last->SetEventHandler(&handler);
  (void)last->SetChannelMode(ChannelMode::Half);
  (void)last->SetChannelData(5, 0, 7, 0);
  CMergeManager& merger = engine.Merger();
  ASSERT_EQ(engine.Do("m2"), S_OK);
  // The names of the two that stay change places.
  (void)merger.SetInstrumentName(0, "PG 4");
  (void)merger.SetInstrumentName(2, "PG 1");
  MODULE_INFO* module = nullptr;
  (void)merger.GetModuleAt(1, &module);
  module->clockDeskew = 2.5F;
  handler.events.clear();
  ASSERT_EQ(merger.Update(), S_OK);
  EXPECT_EQ(engine.System(), "PG 4:1 *PG 0:2 PG 1:1");
  EXPECT_EQ(engine.Live(0), first);
  EXPECT_EQ(engine.Live(2), last);
  EXPECT_EQ(handler.Take(), std::vector<std::string>{"OnInstrumentRenamed()"});
  int bit = 1;
  EXPECT_EQ(last->GetChannelData(5, 0, 7, bit), S_OK);
  EXPECT_EQ(bit, 0);
  // Sent after the defaults of the new instrument.
  EXPECT_EQ(Ask(engine.Module(1), &CModule::GetClockDeskew), 2.5F);
  EXPECT_EQ(Ask(merger, &CMergeManager::GetMaxClockSpeed, 2), 268);
  EXPECT_EQ(Ask(merger, &CMergeManager::GetMaxChannelsPerModule, 2), 32);

  const CInstrument* merged = engine.Live(1);
  EXPECT_EQ(merger.Update(), S_OK);
  EXPECT_EQ(engine.Live(1), merged);
  EXPECT_EQ(engine.Do("u2"), S_OK);
  EXPECT_EQ(merger.Update(), S_OK);
  EXPECT_EQ(engine.System(), "PG 4:1 *PG 2:1 PG 3:1 PG 1:1");
  EXPECT_EQ(engine.Live(3), last);
  EXPECT_EQ(engine.Host().cursorDepth, 0);
}

TEST(MergeManager, UpdateRefusesAndSurvivesWhatIsGone) {
  CMergeFixture engine(3);
  CMergeManager& merger = engine.Merger();
  ASSERT_EQ(engine.Do("m1"), S_OK);
  {
    const CBusyMark busy(engine.Instruments());
    EXPECT_EQ(merger.Update(), E_FAIL);
  }
  EXPECT_EQ(engine.System(), "*PG 1:1 PG 2:1 PG 3:1");

  // The next discovery finds one module: entries that need more create nothing.
  CModuleManager* modules = nullptr;
  (void)engine.Server().GetModuleManager(&modules);
  (void)engine.Simulation().SetModules(1);
  (void)modules->Initialize();
  EXPECT_EQ(merger.Update(), S_OK);
  EXPECT_EQ(engine.System(), "");
}

TEST(MergeManager, TheFrontEndMayDeleteInstrumentsWhileItIsToldOfAName) {
  CMergeFixture engine(3);
  CRecordingEventHandler handler;
  handler.onAny = [&engine] { (void)engine.Instruments().DeleteInstrumentAt(2); };
  (void)engine.Live(0)->SetEventHandler(&handler);
  handler.events.clear();
  for (int i = 0; i < 3; ++i) (void)engine.Merger().SetInstrumentName(i, std::to_string(i));
  EXPECT_EQ(engine.Merger().Update(), S_OK);
  EXPECT_EQ(engine.System(), "*0:1 1:1");
}

}  // namespace
}  // namespace quillpg
