#include "hardware/server2hal.h"

#include "hardware/simulation/call_sink.h"
#include "instrument/instrument_manager.h"
#include "plain/packer.h"
#include "program/program_view.h"
#include "quillpg/app_server.h"
#include "support/instrument_fixture.h"
#include "support/program_builder.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace quillpg {
namespace {

using Lines = std::vector<std::string>;

// An instrument of several modules whose calls are logged from the first download on.
class CDownloadFixture : public CInstrumentFixture {
 public:
  explicit CDownloadFixture(int modules = 1) : CInstrumentFixture(modules), build(Instrument()) {
    Simulation().LogCalls(true);
  }

  // Downloads; the calls that this makes.
  Lines Sent(Status expected = S_OK) {
    (void)Simulation().TakeCalls();
    EXPECT_EQ(Server().Download(), expected);
    return Simulation().TakeCalls();
  }
  CServer2HAL& Bridge() {
    CServer2HAL* bridge = nullptr;
    (void)Server().GetServer2HAL(&bridge);
    return *bridge;
  }

  CProgramBuilder build;
};

CProgramView Program(CInstrumentFixture& engine) { return CProgramView(engine.Instrument()); }

TEST(Download, SendsEventsSubsequencesSequenceAndBlocksInThisOrder) {
  CDownloadFixture engine(2);
  engine.build.Block("a").Block("b", 44);
  engine.build.Event("e", {"01X101010", "111111111"}).Event("none", {});
  engine.build.Sub("s", {{"B", 2}, {"a", 3}}).Sub("t", {});
  engine.build.Line({.output = "t",
                     .repeat = 5,
                     .label = "Top",
                     .waitFor = "e",
                     .jumpIf = "Always",
                     .jumpTo = "end",
                     .signal = SignalValue::Low});
  engine.build.Line({.output = "A", .label = "end"});
  EXPECT_EQ(engine.Sent(),
            (Lines{"0 DefineEvent(1,01X101010|111111111)", "0 DefineEvent(2,)",
                   "0 DefineSubSequence(1,2,1,2,0,3)", "0 DefineSubSequence(2,0,)",
                   "1 DefineSubSequence(1,2,1,2,0,3)", "1 DefineSubSequence(2,0,)",
                   "0 DefineSequence(2,-2,5,1,-1,1,0,0,1,0,0,0,1)",
                   "1 DefineSequence(2,-2,5,1,-1,1,0,0,1,0,0,0,1)", "0 DeleteAllBlocks()",
                   "0 CreateDataBlock(0,40)", "0 CreateDataBlock(1,44)", "1 DeleteAllBlocks()",
                   "1 CreateDataBlock(0,40)", "1 CreateDataBlock(1,44)",
                   "0 DataVectorsSM(0,0,10,0)", "1 DataVectorsSM(0,0,10,0)",
                   "0 DataVectorsSM(1,0,11,0)", "1 DataVectorsSM(1,0,11,0)"}));
  EXPECT_EQ(engine.Router().titles, Lines{"Sending PG 1."});
  EXPECT_EQ(engine.Router().status,
            (Lines{"PG 1:Loading Event Definitions", "PG 1:Loading Sub-sequence Definitions",
                   "PG 1:Loading Sequence Definition", "PG 1:Loading Pattern Data",
                   "PG 1:Loading Complete"}));
  EXPECT_EQ(engine.Host().cursorDepth, 0);

  EXPECT_EQ(engine.Sent(), Lines{});  // nothing changed since
}

TEST(Download, WritesOneRecordForEachLine) {
  const struct {
    LINE_TEXT line;
    const char* record;  // of the second line; null: the name refers to nothing
  } rows[] = {
      {{.output = "b"}, "0,1,0,0,0,1"},
      {{.output = " S2 ", .repeat = 5, .waitFor = "E", .jumpIf = "aLways", .jumpTo = "l"},
       "-2,5,1,-1,0,1"},
      {{.output = "b", .waitFor = "nOne", .jumpIf = "Never", .jumpTo = "L"}, "0,1,0,0,0,1"},
      {{.output = "b", .label = "Me", .jumpTo = "me"}, "0,1,0,-1,1,1"},  // no condition: always
      {{.output = "b", .repeat = -7, .jumpIf = " e ", .signal = SignalValue::DontCare},
       "0,-7,0,1,0,2"},
      {{.output = "both"}, "1,1,0,0,0,1"},  // the block
      {{.output = "x"}, nullptr},
      {{.output = ""}, nullptr},
      {{.output = "b", .waitFor = "x"}, nullptr},
      {{.output = "b", .jumpIf = "x"}, nullptr},
      {{.output = "b", .jumpTo = "x"}, nullptr},
      {{.output = "b", .waitFor = "Always"}, nullptr},
  };
  CDownloadFixture engine;
  for (const auto& row : rows) {
    SCOPED_TRACE(row.record ? row.record : row.line.output);
    CProgramBuilder program(engine.Instrument());
    program.Block("b").Block("both").Sub("both", {}).Sub("s2", {}).Event("e", {"1"});
    program.Line({.output = "b", .label = "L"}).Line(row.line);
    (void)engine.Simulation().TakeCalls();
    EXPECT_EQ(engine.Bridge().SendSequenceData(&engine.Instrument()), row.record ? S_OK : E_FAIL);
    EXPECT_EQ(engine.Simulation().TakeCalls(),
              row.record ? Lines{"0 DefineSequence(2,0,1,0,0,0,1," + std::string(row.record) + ")"}
                         : Lines{});
    EXPECT_EQ(engine.Sequence().IsModified(), row.record ? 0 : 1);
  }
}

TEST(Download, SendsWhatChangedAndWhatRefersToIt) {
  const struct {
    const char* what;
    void (*change)(CInstrumentFixture&);
    Lines operations;
  } rows[] = {
      {"the block list",
       [](CInstrumentFixture& f) { (void)f.Blocks().SetBlockName(0, "B"); },
       {"DefineSubSequence", "DefineSequence", "DeleteAllBlocks", "CreateDataBlock",
        "DataVectorsSM"}},
      {"a subsequence",
       [](CInstrumentFixture& f) { (void)Program(f).SubSequenceAt(0)->SetModified(1); },
       {"DefineSubSequence", "DefineSequence"}},
      {"the events",
       [](CInstrumentFixture& f) { (void)f.Events().SetModified(1); },
       {"DefineEvent", "DefineSequence"}},
      {"the sequence",
       [](CInstrumentFixture& f) { (void)f.Sequence().SetModified(1); },
       {"DefineSequence"}},
      {"a block alone: neither deleted nor created",
       [](CInstrumentFixture& f) { (void)Program(f).BlockAt(0)->SetChanged(1); },
       {"DataVectorsSM"}},
      {"no sequence: the old one stays",
       [](CInstrumentFixture& f) {
         (void)f.Sequence().DeleteAll();
         (void)f.Sequence().SetModified(1);
       },
       {}},
  };
  CDownloadFixture engine;
  engine.build.Block("b").Sub("s", {{"b", 1}}).Event("e", {"1"}).Line({.output = "s"});
  (void)engine.Sent();
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    row.change(engine);
    Lines operations = engine.Sent();
    for (std::string& call : operations) call = call.substr(2, call.find('(') - 2);
    EXPECT_EQ(operations, row.operations);
  }
}

// Keeps the words of the transfers.
class CWordSink : public CCallSink {
 public:
  void OnCall(const MODULE_CALL& call) override {
    for (const std::uint16_t word : call.words) words.push_back(word);
  }
  std::vector<std::uint16_t> words;
};

TEST(Download, SendsThePackedWordsOfEveryModule) {
  const struct {
    ChannelMode mode;
    int size;
  } rows[] = {{ChannelMode::Full, 1001}, {ChannelMode::Half, 20}, {ChannelMode::Half, 0}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.size);
    CDownloadFixture engine(2);
    (void)engine.Instrument().SetChannelMode(row.mode);
    CProgramBuilder(engine.Instrument()).Block("b", row.size);
    BLOCK* block = Program(engine).BlockAt(0);
    const auto bytes = static_cast<std::size_t>(row.size) * block->RowBytes();
    for (std::size_t i = 0; i < bytes; ++i) block->Data()[i] = static_cast<std::uint8_t>(i * 37);

    CWordSink sink;
    engine.Simulation().AddCallSink(&sink);
    (void)engine.Simulation().TakeCalls();
    EXPECT_EQ(engine.Bridge().SendBlockData(&engine.Instrument()), S_OK);
    engine.Simulation().RemoveCallSink(&sink);

    Lines calls = {"0 DeleteAllBlocks()", FormatText("0 CreateDataBlock(0,%d)", {row.size}),
                   "1 DeleteAllBlocks()", FormatText("1 CreateDataBlock(0,%d)", {row.size})};
    std::vector<std::uint16_t> words;
    const bool abort = false;
    for (const PACK_RUN& run : SplitIntoRuns(row.mode, row.size)) {
      for (int module = 0; module < 2; ++module) {
        calls.push_back(
            FormatText("%d DataVectorsSM(0,%d,%d,0)", {module, run.firstUnit, run.unitCount}));
        const std::size_t start = words.size();
        words.resize(start + static_cast<std::size_t>(run.unitCount) * WORDS_PER_UNIT);
        (void)PackPlain({block->Data(), block->RowBytes(), row.size}, row.mode, run.kind,
                        module * GetChannelsPerModule(row.mode), run.firstVector,
                        run.unitCount / GetBitArrange(row.mode, run.kind).unitsPerGroup, abort,
                        words.data() + start);
      }
    }
    EXPECT_EQ(engine.Simulation().TakeCalls(), calls);
    EXPECT_EQ(sink.words, words);
  }
}

TEST(Download, LeavesTheRestOfABlockThatTheLibraryRefuses) {
  CDownloadFixture engine(2);
  engine.build.Block("a", 1001).Block("b").Line({.output = "a"});
  engine.Simulation().FailCall("DataVectorsSM");
  Lines calls = engine.Sent();
  calls.erase(calls.begin(), std::ranges::find(calls, "0 DataVectorsSM(0,0,245,0)"));
  EXPECT_EQ(calls, (Lines{"0 DataVectorsSM(0,0,245,0)", "0 DataVectorsSM(1,0,10,0)",
                          "1 DataVectorsSM(1,0,10,0)"}));
  EXPECT_EQ(engine.Sent(), Lines{});  // the refused block counts as sent
}

TEST(Download, AFailedStepKeepsItsFlagAndTheNextOneRuns) {
  CDownloadFixture engine;
  engine.build.Block("b").Sub("s", {{"gone", 1}}).Line({.output = "gone"});
  EXPECT_EQ(engine.Sent(),
            (Lines{"0 DeleteAllBlocks()", "0 CreateDataBlock(0,40)", "0 DataVectorsSM(0,0,10,0)"}));
  EXPECT_EQ(engine.SubSequences().IsModified(), 1);
  EXPECT_EQ(engine.Sequence().IsModified(), 1);
  EXPECT_EQ(engine.Blocks().IsModified(), 0);
  EXPECT_EQ(engine.Router().status.back(), "PG 1:Loading Complete");
}

TEST(Download, AbortLeavesTheRestToTheNextDownload) {
  CDownloadFixture engine;
  engine.build.Block("a", 1000).Block("b").Event("e", {"1"});
  engine.build.Sub("s", {{"a", 1}, {"b", 1}}).Line({.output = "a"}).Line({.output = "s"});
  const auto abortAt = [&engine](int yield) {
    engine.Host().AtYield(yield, [&engine] { (void)engine.Server().AbortDownload(); });
    (void)engine.Server().AbortDownload();  // without effect before a download
    const Lines calls = engine.Sent(PG_E_ABORTED);
    EXPECT_EQ(engine.Host().cursorDepth, 0);
    return calls;
  };
  // Yields: 1 event, 2-3 subsequence lines, 4-5 sequence lines, 6-7 blocks, then groups.
  EXPECT_EQ(abortAt(2), Lines{"0 DefineEvent(1,111111111)"});
  EXPECT_EQ(engine.Events().IsModified(), 0);
  EXPECT_EQ(engine.SubSequences().IsModified(), 1);
  EXPECT_EQ(abortAt(3), Lines{"0 DefineSubSequence(1,2,0,1,1,1)"});  // at the sequence's 1st line
  EXPECT_EQ(engine.Sequence().IsModified(), 1);
  EXPECT_EQ(engine.Blocks().IsModified(), 1);
  // The modified block list lets subsequences and sequence be sent again.
  EXPECT_EQ(abortAt(5), (Lines{"0 DefineSubSequence(1,2,0,1,1,1)",
                               "0 DefineSequence(2,0,1,0,0,0,1,-1,1,0,0,0,1)",
                               "0 DeleteAllBlocks()", "0 CreateDataBlock(0,1000)"}));
  EXPECT_EQ(abortAt(7).back(), "0 CreateDataBlock(1,40)");  // in the first block's first group
  EXPECT_EQ(engine.Blocks().IsModified(), 1);
  engine.Host().onYield = nullptr;
  EXPECT_EQ(engine.Sent().back(), "0 DataVectorsSM(1,0,10,0)");
  EXPECT_EQ(engine.Blocks().IsModified(), 0);
}

TEST(Download, WhatIsEditedMeanwhileIsSentNextTime) {
  CDownloadFixture engine;
  engine.build.Block("a").Event("e", {"1"}).Sub("s", {{"a", 1}}).Line({.output = "s"});
  const struct {
    int yield;
    void (*edit)(CInstrumentFixture&);
    const char* sentAgain;
  } rows[] = {
      {1,
       [](CInstrumentFixture& f) {
         EVENT_DEFINITION* row = nullptr;
         (void)Program(f).EventAt(0)->GetEventDefinition(0, &row);
         (void)row->SetEventDefBit(0, 'X');
       },
       "0 DefineEvent(1,X11111111)"},
      {2,
       [](CInstrumentFixture& f) {
         SUBSEQUENCE_LINE* line = nullptr;
         (void)Program(f).SubSequenceAt(0)->GetSubSequenceLine(0, &line);
         (void)line->SetRepeatCount(9);
       },
       "0 DefineSubSequence(1,1,0,9)"},
      {3, [](CInstrumentFixture& f) { (void)Program(f).LineAt(0)->SetRepeatCount(8); },
       "0 DefineSequence(1,-1,8,0,0,0,1)"},
      {4, [](CInstrumentFixture& f) { (void)f.Blocks().AddBlock("new", 40); },
       "0 CreateDataBlock(1,40)"},
      {7,  // two blocks by now: in the first one's data
       [](CInstrumentFixture& f) { (void)f.Instrument().SetChannelData(0, 0, 0, 1); },
       "0 DataVectorsSM(0,0,10,0)"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.sentAgain);
    engine.build.SetModified(1);
    engine.Host().AtYield(row.yield, [&] { row.edit(engine); });
    (void)engine.Sent();
    engine.Host().onYield = nullptr;
    const Lines again = engine.Sent();
    EXPECT_NE(std::ranges::find(again, row.sentAgain), again.end());
    EXPECT_EQ(engine.Sent(), Lines{});
  }
}

TEST(Download, EmptySlotsAreToldAndEndTheirStep) {
  CDownloadFixture engine;
  engine.build.Block("b");
  const struct {
    Status (*insert)(CInstrumentFixture&);
    Status (CServer2HAL::*step)(CInstrument*);
    Status status;
  } rows[] = {
      {[](CInstrumentFixture& f) { return f.Events().InsertEvent(2, "e"); },
       &CServer2HAL::SendEventData, PG_E_INTERNAL},
      {[](CInstrumentFixture& f) { return f.SubSequences().InsertSubSequence(2, "s"); },
       &CServer2HAL::SendSubSequenceData, E_FAIL},
      {[](CInstrumentFixture& f) { return f.Sequence().InsertSequenceLine(2, "l"); },
       &CServer2HAL::SendSequenceData, E_FAIL},
      {[](CInstrumentFixture& f) { return f.Blocks().InsertBlock("c", 40, 3); },
       &CServer2HAL::SendBlockData, PG_E_INTERNAL},
  };
  for (const auto& row : rows) {
    ASSERT_EQ(row.insert(engine), S_OK);
    EXPECT_EQ((engine.Bridge().*row.step)(&engine.Instrument()), row.status);
    EXPECT_EQ((engine.Bridge().*row.step)(nullptr), E_FAIL);
  }
  EXPECT_EQ(engine.Host().boxes.size(), std::size(rows));
}

TEST(Download, SkipsDisabledInstrumentsAndSurvivesDeletedOnes) {
  CEngineFixture engine(4);
  (void)engine.Server().DefaultSystem();
  engine.Simulation().LogCalls(true);
  CInstrument* second = nullptr;
  (void)engine.Instruments().GetInstrumentAt(1, &second);
  (void)second->EnableInstrument(0);
  const CProgramView skipped(*second);
  (void)skipped.Sequence()->SetModified(0);
  (void)skipped.SubSequences()->SetModified(0);
  engine.Host().onYield = [&] {
    if (engine.Router().titles.back() != "Sending PG 3.") return;
    engine.Host().onYield = nullptr;
    (void)engine.Instruments().DeleteInstrumentAt(2);  // the one at work and one before it
    (void)engine.Instruments().DeleteInstrumentAt(0);
    EXPECT_EQ(engine.Server().Compile(), E_FAIL);
  };
  EXPECT_EQ(engine.Server().Download(), S_OK);
  EXPECT_EQ(engine.Router().titles, (Lines{"Sending PG 1.", "Sending PG 3.", "Sending PG 4."}));
  EXPECT_EQ(skipped.Sequence()->IsModified(), 1);  // passed on before the instrument is skipped
  EXPECT_EQ(engine.Host().boxes.size(), 1u);
  EXPECT_EQ(engine.Simulation().TakeCalls().back(), "3 DataVectorsSM(0,0,10,0)");
}

TEST(Download, FormatsEventLevels) {
  EXPECT_EQ(CServer2HAL::FormatEventSigVal(SignalValue::Low), '0');
  EXPECT_EQ(CServer2HAL::FormatEventSigVal(SignalValue::High), '1');
  EXPECT_EQ(CServer2HAL::FormatEventSigVal(static_cast<SignalValue>(-3)), 'X');
}

}  // namespace
}  // namespace quillpg
