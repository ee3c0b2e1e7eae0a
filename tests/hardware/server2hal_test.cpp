#include "hardware/server2hal.h"

#include "support/instrument_fixture.h"
#include "support/program_builder.h"

#include <gmock/gmock.h>
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
  CServer2HAL& Bridge() { return *Find(Server(), &CAppServer::GetServer2HAL); }

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
  EXPECT_EQ(engine.Router().status.front(), "PG 1:Loading Event Definitions");
  EXPECT_EQ(engine.Host().cursorDepth, 0);
  EXPECT_EQ(engine.Sent(), Lines{});  // nothing changed since
}

TEST(Download, WritesOneRecordForEachLine) {
  const std::pair<LINE_TEXT, const char*> rows[] = {
      // The record of the second line; null: the name refers to nothing.
      {{.output = "b"}, "0,1,0,0,0,1"},
      {{.output = " S2 ", .repeat = 5, .waitFor = "E", .jumpIf = "aLways", .jumpTo = "l"},
       "-2,5,1,-1,0,1"},
      {{.output = "b", .label = "Me", .jumpTo = "me"}, "0,1,0,-1,1,1"},  // no condition: always
      {{.output = "b", .repeat = -7, .jumpIf = " e ", .signal = SignalValue::DontCare},
       "0,-7,0,1,0,2"},
      {{.output = "both"}, "1,1,0,0,0,1"},  // the block
      {{.output = ""}, nullptr},
      {{.output = "b", .jumpTo = "x"}, nullptr},
  };
  CDownloadFixture engine;
  for (const auto& [line, record] : rows) {
    SCOPED_TRACE(record ? record : line.output);
    CProgramBuilder program(engine.Instrument());
    program.Block("b").Block("both").Sub("both", {}).Sub("s2", {}).Event("e", {"1"});
    program.Line({.output = "b", .label = "L"}).Line(line);
    (void)engine.Simulation().TakeCalls();
    EXPECT_EQ(engine.Bridge().SendSequenceData(&engine.Instrument()), record ? S_OK : E_FAIL);
    EXPECT_EQ(
        engine.Simulation().TakeCalls(),
        record ? Lines{"0 DefineSequence(2,0,1,0,0,0,1," + std::string(record) + ")"} : Lines{});
  }
}

TEST(Download, SendsWhatChangedAndWhatRefersToIt) {
  CDownloadFixture engine;
  engine.build.Block("b").Sub("s", {{"b", 1}}).Event("e", {"1"}).Line({.output = "s"});
  (void)engine.Sent();
  (void)engine.Blocks().SetModified(1);
  const std::string sub = "0 DefineSubSequence(1,1,0,1)";
  const std::string sequence = "0 DefineSequence(1,-1,1,0,0,0,1)";
  const std::string data = "0 DataVectorsSM(0,0,10,0)";
  EXPECT_EQ(engine.Sent(),
            (Lines{sub, sequence, "0 DeleteAllBlocks()", "0 CreateDataBlock(0,40)", data}));
  (void)Program(engine).SubSequenceAt(0)->SetModified(1);
  EXPECT_EQ(engine.Sent(), (Lines{sub, sequence}));
  (void)engine.Events().SetModified(1);
  EXPECT_EQ(engine.Sent(), (Lines{"0 DefineEvent(1,111111111)", sequence}));
  (void)Program(engine).BlockAt(0)->SetChanged(1);  // neither deleted nor created
  EXPECT_EQ(engine.Sent(), Lines{data});
  (void)engine.Sequence().DeleteAll();
  (void)engine.Sequence().SetModified(1);
  EXPECT_EQ(engine.Sent(), Lines{});  // the old sequence stays
}

TEST(Download, AFailedStepKeepsItsFlagAndTheNextOneRuns) {
  CDownloadFixture engine(2);
  engine.build.Block("a", 1001).Block("b").Line({.output = "gone"});
  engine.Simulation().FailCall("DataVectorsSM");  // the rest of the block is left
  Lines calls = engine.Sent();
  calls.erase(calls.begin(), std::ranges::find(calls, "0 DataVectorsSM(0,0,245,0)"));
  EXPECT_EQ(calls, (Lines{"0 DataVectorsSM(0,0,245,0)", "0 DataVectorsSM(1,0,10,0)",
                          "1 DataVectorsSM(1,0,10,0)"}));
  EXPECT_EQ(engine.Sequence().IsModified(), 1);
  EXPECT_EQ(engine.Sent(), Lines{});  // the refused block counts as sent
}

TEST(Download, AbortLeavesTheRestToTheNextDownload) {
  CDownloadFixture engine;
  engine.build.Block("a", 1000).Block("b").Event("e", {"1"});
  engine.build.Sub("s", {{"a", 1}, {"b", 1}}).Line({.output = "a"}).Line({.output = "s"});
  (void)engine.Server().AbortDownload();  // without effect before a download
  // Yields: 1 event, 2-3 subsequence lines, 4-5 sequence lines, 6-7 blocks, then groups.
  engine.Host().AtYield(2, [&engine] { (void)engine.Server().AbortDownload(); });
  EXPECT_EQ(engine.Sent(PG_E_ABORTED), Lines{"0 DefineEvent(1,111111111)"});
  EXPECT_EQ(engine.Events().IsModified(), 0);
  EXPECT_EQ(engine.SubSequences().IsModified(), 1);
  engine.Host().AtYield(7, [&engine] { (void)engine.Server().AbortDownload(); });
  EXPECT_EQ(engine.Sent(PG_E_ABORTED).back(), "0 CreateDataBlock(1,40)");  // in the first group
  EXPECT_EQ(engine.Blocks().IsModified(), 1);
  EXPECT_EQ(engine.Host().cursorDepth, 0);
  engine.Host().onYield = nullptr;
  EXPECT_EQ(engine.Sent().back(), "0 DataVectorsSM(1,0,10,0)");
}

TEST(Download, AbortBetweenTwoModulesOwesTheSecondItsSubsequences) {
  CDownloadFixture engine(2);
  engine.build.Block("a").Sub("s", {{"a", 1}}).SetModified(0);
  (void)Program(engine).SubSequenceAt(0)->SetModified(1);
  engine.Host().AtYield(1, [&engine] { (void)engine.Server().AbortDownload(); });
  EXPECT_EQ(engine.Sent(PG_E_ABORTED), Lines{"0 DefineSubSequence(1,1,0,1)"});
  EXPECT_THAT(engine.Sent(), testing::Contains("1 DefineSubSequence(1,1,0,1)"));
}

TEST(Download, WhatIsEditedMeanwhileIsSentNextTime) {
  CDownloadFixture engine;
  engine.build.Block("a").Line({.output = "a"});
  engine.Host().AtYield(1, [&] { (void)Program(engine).LineAt(0)->SetRepeatCount(8); });
  (void)engine.Sent();
  EXPECT_EQ(engine.Sent(), Lines{"0 DefineSequence(1,0,8,0,0,0,1)"});
  engine.build.SetModified(1);
  engine.Host().AtYield(3, [&] { (void)engine.Instrument().SetChannelData(0, 0, 0, 1); });
  (void)engine.Sent();
  EXPECT_EQ(engine.Sent(), Lines{"0 DataVectorsSM(0,0,10,0)"});
  EXPECT_EQ(engine.Sent(), Lines{});
  for (const bool resized : {true, false}) {  // another size or width: to be created anew
    engine.build.SetModified(1);
    engine.Host().AtYield(3, [&engine, resized] {
      (void)(resized ? engine.Blocks().SetBlockSize(0, 44)
                     : engine.Instrument().SetChannelMode(ChannelMode::Half));
    });
    (void)engine.Sent();
    EXPECT_THAT(engine.Sent(), testing::Contains("0 DeleteAllBlocks()"));
  }
}

TEST(Download, EmptySlotsAreToldAndEndTheirStep) {
  CDownloadFixture engine;
  (void)engine.Events().InsertEvent(2, "e");
  EXPECT_EQ(engine.Bridge().SendEventData(&engine.Instrument()), PG_E_INTERNAL);
  EXPECT_EQ(engine.Host().boxes.size(), 1u);
}

TEST(Download, SkipsDisabledInstrumentsAndSurvivesDeletedOnes) {
  CEngineFixture engine(4);
  (void)engine.Server().DefaultSystem();
  engine.Simulation().LogCalls(true);
  (void)engine.Instrument(1)->EnableInstrument(0);
  engine.Host().onYield = [&] {
    if (engine.Router().titles.back() != "Sending PG 3.") return;
    engine.Host().onYield = nullptr;
    (void)engine.Instruments().DeleteInstrumentAt(2);  // the one at work and one before it
    (void)engine.Instruments().DeleteInstrumentAt(0);
    EXPECT_EQ(engine.Server().Compile(), E_FAIL);
  };
  EXPECT_EQ(engine.Server().Download(), S_OK);
  EXPECT_EQ(engine.Router().titles, (Lines{"Sending PG 1.", "Sending PG 3.", "Sending PG 4."}));
  EXPECT_EQ(engine.Host().boxes.size(), 1u);
  EXPECT_EQ(engine.Simulation().TakeCalls().back(), "3 DataVectorsSM(0,0,10,0)");
}

}  // namespace
}  // namespace quillpg
