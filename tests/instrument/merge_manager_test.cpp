#include "instrument/merge_manager.h"

#include "support/instrument_fixture.h"
#include "support/program_builder.h"

#include <gtest/gtest.h>

#include <random>

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
      const auto* info = Find(*m_manager, &CMergeManager::GetInstrumentAt, i);
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
      if (!Instrument(i)) continue;
      text += Ask(*Instrument(i), &CInstrument::GetInstrumentName) + ":" +
              std::to_string(Ask(*Instrument(i), &CInstrument::GetNoOfModules));
    }
    return text.substr(std::min<std::size_t>(text.size(), 1));
  }

 private:
  CMergeManager* m_manager = nullptr;
};

TEST(MergeManager, EditsTheWorkingCopyAlone) {
  const std::tuple<const char*, Status, const char*> rows[] = {
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
  for (const auto& [steps, status, copy] : rows) {
    SCOPED_TRACE(steps);
    CMergeFixture engine(6);
    EXPECT_EQ(engine.Do(steps), status);
    EXPECT_EQ(engine.Copy(), copy);
    EXPECT_EQ(engine.System(), "*PG 1:1 PG 2:1 PG 3:1 PG 4:1 PG 5:1 PG 6:1");
  }
}

TEST(MergeManager, UpdateKeepsWhatHasTheSameModules) {
  CMergeFixture engine(4);
  CInstrument* first = engine.Instrument(0);
  CInstrument* last = engine.Instrument(3);
  CRecordingEventHandler handler;
  (void)last->SetEventHandler(&handler);
  (void)last->SetChannelMode(ChannelMode::Half);
  (void)last->SetChannelData(5, 0, 7, 0);
  CMergeManager& merger = engine.Merger();
  ASSERT_EQ(engine.Do("m2"), S_OK);
  // The names of the two that stay change places.
  (void)merger.SetInstrumentName(0, "PG 4");
  (void)merger.SetInstrumentName(2, "PG 1");
  Find(merger, &CMergeManager::GetModuleAt, 1)->clockDeskew = 2.5F;
  handler.events.clear();
  ASSERT_EQ(merger.Update(), S_OK);
  EXPECT_EQ(engine.System(), "PG 4:1 *PG 0:2 PG 1:1");
  EXPECT_EQ(engine.Instrument(0), first);
  EXPECT_EQ(engine.Instrument(2), last);
  EXPECT_EQ(handler.Take(), std::vector<std::string>{"OnInstrumentRenamed()"});
  EXPECT_EQ(Bit(*last, 5, 0, 7), 0);
  // Sent after the defaults of the new instrument.
  EXPECT_EQ(Ask(engine.Module(1), &CModule::GetClockDeskew), 2.5F);
  EXPECT_EQ(Ask(merger, &CMergeManager::GetMaxClockSpeed, 2), 268);
  EXPECT_EQ(Ask(merger, &CMergeManager::GetMaxChannelsPerModule, 2), 32);

  const CInstrument* merged = engine.Instrument(1);
  EXPECT_EQ(merger.Update(), S_OK);
  EXPECT_EQ(engine.Instrument(1), merged);
  EXPECT_EQ(engine.Do("u2"), S_OK);
  EXPECT_EQ(merger.Update(), S_OK);
  EXPECT_EQ(engine.System(), "PG 4:1 *PG 2:1 PG 3:1 PG 1:1");
  EXPECT_EQ(engine.Instrument(3), last);
  EXPECT_EQ(engine.Host().cursorDepth, 0);
}

// Whatever number of modules they are merged of: the pins show the pattern data of every channel.
TEST(MergeManager, MergedInstrumentsPlayAsOne) {
  for (const ChannelMode mode : {ChannelMode::Full, ChannelMode::Half}) {
    SCOPED_TRACE(GetDisplayText(mode));
    CMergeFixture engine(7);
    ASSERT_EQ(engine.Do("m1 m3 m4 m5 m6"), S_OK);
    ASSERT_EQ(engine.Merger().Update(), S_OK);
    ASSERT_EQ(engine.System(), "PG 0:2 *PG 4:5");
    const int perModule = mode == ChannelMode::Full ? 64 : 32;
    std::mt19937 random(7);
    std::vector<std::vector<std::uint64_t>> expected;
    for (const int position : {0, 1}) {
      CInstrument& instrument = *engine.Instrument(position);
      ASSERT_EQ(instrument.SetChannelMode(mode), S_OK);
      CProgramBuilder(instrument)
          .Block("a", 1001)
          .Block("b", 96)
          .Sub("s", {{"b", 1}, {"a", 2}})
          .Line({.output = "a", .repeat = 2})
          .Line({.output = "s"});
      const int channels = Ask(instrument, &CInstrument::GetBlockWidth);
      for (int i = 0; i < (1001 + 96) * channels; ++i) {
        const int block = i < 1001 * channels ? 0 : 1;
        const int vector = i / channels - 1001 * block;
        ASSERT_EQ(instrument.SetChannelData(i % channels, block, vector, random() & 1), S_OK);
      }
      for (int first = 0; first < channels; first += perModule) {
        std::vector<std::uint64_t>& words = expected.emplace_back();
        for (const int block : {0, 0, 1, 0, 0}) {
          for (int vector = 0; vector < (block == 0 ? 1001 : 96); ++vector) {
            words.push_back(0);
            for (int c = perModule - 1; c >= 0; --c) {
              words.back() = words.back() << 1 | Bit(instrument, first + c, block, vector);
            }
          }
        }
      }
    }
    CMemorySink sink;
    engine.Play(sink, 10'000, PlayEnd::Idle);
    ASSERT_EQ(expected.size(), 7U);
    for (int module = 0; module < 7; ++module) {
      EXPECT_TRUE(sink.Levels(module) == expected[static_cast<std::size_t>(module)]) << module;
    }
  }
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
  (void)engine.Simulation().SetModules(1);
  (void)engine.Modules().Initialize();
  EXPECT_EQ(merger.Update(), S_OK);
  EXPECT_EQ(engine.System(), "");
}

TEST(MergeManager, TheFrontEndMayDeleteInstrumentsWhileItIsToldOfAName) {
  CMergeFixture engine(3);
  CRecordingEventHandler handler;
  handler.onAny = [&engine] { (void)engine.Instruments().DeleteInstrumentAt(2); };
  (void)engine.Instrument(0)->SetEventHandler(&handler);
  handler.events.clear();
  for (int i = 0; i < 3; ++i) (void)engine.Merger().SetInstrumentName(i, std::to_string(i));
  EXPECT_EQ(engine.Merger().Update(), S_OK);
  EXPECT_EQ(engine.System(), "*0:1 1:1");
}

}  // namespace
}  // namespace quillpg
