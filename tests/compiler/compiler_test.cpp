#include "compiler/compiler.h"

#include "hardware/server2hal.h"
#include "instrument/instrument_manager.h"
#include "plain/compiler.h"
#include "plain/random_program.h"
#include "quillpg/app_server.h"
#include "support/instrument_fixture.h"
#include "support/program_builder.h"

#include <gtest/gtest.h>

#include <functional>

namespace quillpg {
namespace {

using Lines = std::vector<std::string>;

class Compiler : public testing::Test {
 protected:
  Compiler() : m_build(m_engine.Instrument()) {}

  CCompiler& Subject() {
    CCompiler* compiler = nullptr;
    (void)m_engine.Server().GetCompiler(&compiler);
    return *compiler;
  }
  const Lines& Output() { return m_engine.Router().output; }
  // The output window without its first line and its last.
  Lines Findings() {
    const Lines& all = Output();
    return all.size() < 2 ? Lines{"no output"} : Lines(all.begin() + 1, all.end() - 1);
  }
  // Runs `action` in the yield with that number, from 1 on.
  void AtYield(int number, std::function<void()> action) {
    m_engine.Host().yields = 0;
    m_engine.Host().onYield = [this, number, action = std::move(action)] {
      if (m_engine.Host().yields == number) action();
    };
  }

  CInstrumentFixture m_engine;
  CProgramBuilder m_build;
};

constexpr const char* kName32 = "abcdefghijklmnopqrstuvwxyz012345";
constexpr const char* kName33 = "abcdefghijklmnopqrstuvwxyz0123456";

struct FINDINGS_ROW {
  const char* what;
  void (*build)(CProgramBuilder&);
  Lines expected;
};

const FINDINGS_ROW kFindings[] = {
    {"a sound program",
     [](CProgramBuilder& p) {
       p.Block("b").Block(kName32).Sub("s", {{"B", 65536}}).Event("e", {"1XXXXXXXX"});
       p.Line({.output = "s", .label = "top", .waitFor = "NONE"});
       p.Line(
           {.output = kName32, .repeat = 0, .waitFor = " E ", .jumpIf = "always", .jumpTo = "TOP"});
     },
     {}},
    {"an empty sequence has neither line nor column",
     [](CProgramBuilder&) {},
     {"Sequence List : error : Sequence List is empty"}},
    {"block names",
     [](CProgramBuilder& p) {
       p.Block("always").Block("").Block("a b").Block(kName33).Block("x").Block("X");
       p.Line({.output = "x"});
     },
     {"Block List [Line:1][Column:1] : error : always is a keyword. Not allowed...",
      "Block List [Line:1][Column:1] : warning : always is declared but not referenced",
      "Block List [Line:2][Column:1] : error : Block name is empty",
      "Block List [Line:3][Column:1] : error : a b invalid",
      "Block List [Line:3][Column:1] : warning : a b is declared but not referenced",
      "Block List [Line:4][Column:1] : error : abcdefghijklmnopqrstuvwxyz0123456 invalid",
      "Block List [Line:4][Column:1] : warning : abcdefghijklmnopqrstuvwxyz0123456 is declared "
      "but not referenced",
      "Block List [Line:5][Column:1] : error : x already defined",
      "Block List [Line:6][Column:1] : error : X already defined"}},
    {"block sizes, of an unnamed block too",
     [](CProgramBuilder& p) { p.Block("b", 39).Block("", -1).Line({.output = "b"}); },
     {"Block List [Line:1][Column:2] : error : 39 invalid",
      "Block List [Line:2][Column:1] : error : Block name is empty",
      "Block List [Line:2][Column:2] : error : -1 invalid"}},
    {"a percent sign survives",
     [](CProgramBuilder& p) { p.Block("b").Line({.output = "100%d%s"}).Line({.output = "b"}); },
     {"Sequence List [Line:1][Column:4] : error : 100%d%s undefined"}},
    {"labels",
     [](CProgramBuilder& p) {
       p.Block("b").Line({.output = "b", .label = "L"}).Line({.output = "b", .label = "l"});
       p.Line({.output = "b", .label = "none"}).Line({.output = "b", .label = "a b"});
     },
     {"Sequence List [Line:1][Column:1] : error : L already defined",
      "Sequence List [Line:2][Column:1] : error : l already defined",
      "Sequence List [Line:3][Column:1] : error : none is a keyword. Not allowed...",
      "Sequence List [Line:4][Column:1] : error : a b invalid"}},
    {"outputs, repeats and wait-for",
     [](CProgramBuilder& p) {
       p.Block("b").Block("both").Sub("both", {{"b", 1}});
       p.Line({.output = ""}).Line({.output = "both"}).Line({.output = "b", .repeat = -1});
       p.Line({.output = "b", .repeat = 65537, .waitFor = "Always"}).Line({.output = " b"});
     },
     {"Sequence List [Line:1][Column:4] : error : Output name is empty",
      "Sequence List [Line:2][Column:4] : error : both A block and a subsequence cannot have the "
      "same name. ",
      "Sequence List [Line:3][Column:6] : error : -1 invalid",
      "Sequence List [Line:4][Column:2] : error : Always undefined",
      "Sequence List [Line:4][Column:6] : error : 65537 invalid",
      "Sequence List [Line:5][Column:4] : error :  b undefined"}},  // blocks: blanks count
    {"jumps",
     [](CProgramBuilder& p) {
       p.Block("b").Line({.output = "b", .jumpIf = "Never"});
       p.Line({.output = "b", .jumpIf = "nobody"}).Line({.output = "b", .jumpTo = "nowhere"});
       p.Line({.output = "b", .jumpIf = "None", .jumpTo = "nowhere"});
     },
     {"Sequence List [Line:1][Column:9] : error : Jump To must be specified...",
      "Sequence List [Line:2][Column:7] : error : nobody undefined",
      "Sequence List [Line:3][Column:9] : error : nowhere undefined",
      "Sequence List [Line:4][Column:7] : error : None undefined"}},
    {"subsequences",
     [](CProgramBuilder& p) {
       p.Block("b").Line({.output = "b"}).Line({.output = " s "});
       p.Sub("s", {{"s", 1}, {"", 0}, {"b", -1}, {"B", 65537}}).Sub("unused", {}).Sub(" ", {});
     },
     {"Sub Sequence Definition [Line:1][Column:1] : error : s undefined",
      "Sub Sequence Definition [Line:2][Column:1] : error : Block name is empty",
      "Sub Sequence Definition [Line:2][Column:3] : error : 0 invalid",
      "Sub Sequence Definition [Line:3][Column:3] : error : -1 invalid",
      "Sub Sequence Definition [Line:4][Column:3] : error : 65537 invalid",
      "Sub Sequence List [Line:2][Column:1] : warning : unused is declared but not referenced",
      "Sub Sequence List [Line:2][Column:1] : error : unused is declared but definition is not "
      "present",
      "Sub Sequence List [Line:3][Column:1] : error : Sub-sequence name is empty"}},
    {"a block that only a subsequence plays is used",
     [](CProgramBuilder& p) {
       p.Block("b").Sub("s", {{"b", 1}}).Line({.output = "s"});
     },
     {}},
    {"events",
     [](CProgramBuilder& p) {
       p.Block("b").Line({.output = "b", .waitFor = "e"});
       p.Event("e", {}).Event("unused", {"111111111"}).Event("", {}).Event("Never", {"1"});
     },
     {"Event List [Line:1][Column:1] : error : e is declared but definition is not present",
      "Event List [Line:2][Column:1] : warning : unused is declared but not referenced",
      "Event List [Line:3][Column:1] : error : Event name is empty",
      "Event List [Line:3][Column:1] : error : < Empty Name > is declared but definition is not "
      "present",
      "Event List [Line:4][Column:1] : error : Never is a keyword. Not allowed...",
      "Event List [Line:4][Column:1] : warning : Never is declared but not referenced"}},
};

TEST_F(Compiler, FindsWhatIsWrong) {
  for (const FINDINGS_ROW& row : kFindings) {
    SCOPED_TRACE(row.what);
    CProgramBuilder program(m_engine.Instrument());
    row.build(program);
    const bool errors = std::ranges::any_of(
        row.expected, [](const std::string& line) { return line.find("error") != line.npos; });
    EXPECT_EQ(m_engine.Server().Compile(), errors ? E_FAIL : S_OK);
    EXPECT_EQ(Findings(), row.expected);
  }
}

TEST_F(Compiler, AgreesWithThePlainCheck) {
  for (unsigned seed = 0; seed < 300; ++seed) {
    SCOPED_TRACE(seed);
    const auto upTo = [seed](unsigned shift, unsigned most) {
      return static_cast<int>((seed * 2654435761u >> shift) % (most + 1));
    };
    const PROGRAM_SHAPE shape{upTo(3, 12), upTo(7, 12), upTo(11, 5),
                              upTo(13, 5), upTo(17, 4), 2 + upTo(19, 30)};
    CRandomProgram(shape, seed).Build(m_engine.Instrument());
    (void)m_engine.Server().Compile();
    ASSERT_EQ(Findings(), CPlainCompiler(m_engine.Instrument()).Check());
  }
}

TEST_F(Compiler, TellsTheFrontEndWhatItDoes) {
  m_build.Block("b").Block("a b").Line({.output = "b"}).Line({.output = ""});
  EXPECT_EQ(m_engine.Server().Compile(), E_FAIL);
  const CRecordingRouter& router = m_engine.Router();
  EXPECT_EQ(router.clears, 1);
  EXPECT_EQ(Output().front(), "Compiling PG 1...");
  EXPECT_EQ(Output().back(), "2 error(s), 1 warning(s)...");
  EXPECT_EQ(router.titles, Lines{"Compiling PG 1..."});
  EXPECT_EQ(
      router.messages,
      (Lines{"Checking PG 1 Block Definition...", "Checking PG 1 Sequence Definition...",
             "Checking PG 1 Sub Sequence Definition...", "Checking PG 1 Event Definition..."}));
  EXPECT_EQ(router.percents, (std::vector<int>{0, 50, 0, 50}));
  EXPECT_EQ(m_engine.Host().cursorDepth, 0);
  int errors = 0;
  int warnings = 0;
  (void)Subject().GetNoOfErrors(errors);
  (void)Subject().GetNoOfWarnings(warnings);
  EXPECT_EQ(errors, 2);
  EXPECT_EQ(warnings, 1);
  EXPECT_EQ(m_engine.Host().yields, 4);
}

TEST_F(Compiler, FindsTheRecordOfAnOutputLine) {
  m_build.Block("b").Line({.output = "b"}).Line({.output = "s"}).Sub("s", {{"b", 1}, {"?", 1}});
  (void)m_engine.Server().Compile();
  m_build.Line({.output = "b", .label = "100%"}).Line({.output = "x"});
  EXPECT_EQ(m_engine.Server().Compile(), E_FAIL);
  CompileErrorInfo info;
  EXPECT_EQ(Subject().GetCompileErrorInfo(0, info), E_FAIL);  // "Compiling PG 1..."
  ASSERT_EQ(Subject().GetCompileErrorInfo(1, info), S_OK);
  EXPECT_EQ(info.line, 5);  // one more than printed
  EXPECT_EQ(info.column, 4);
  EXPECT_EQ(info.instrumentIndex, 0);
  EXPECT_EQ(info.itemIndex, -1);
  EXPECT_EQ(info.instrumentName, "PG 1");
  EXPECT_EQ(info.text, "x");
  EXPECT_EQ(info.section, Section::SequenceList);
  EXPECT_EQ(info.errorType, ErrorType::Error);
  EXPECT_EQ(info.error, CompileError::Undefined);
  ASSERT_EQ(Subject().GetCompileErrorInfo(2, info), S_OK);
  EXPECT_EQ(info.section, Section::SubSequenceDefinition);
  EXPECT_EQ(info.line, 2);
  EXPECT_EQ(info.itemIndex, 0);
  EXPECT_EQ(Subject().GetCompileErrorInfo(3, info), E_FAIL);
  EXPECT_EQ(Subject().GetCompileErrorInfo(-1, info), E_FAIL);
}

TEST_F(Compiler, ChecksOnlyWhatChanged) {
  m_build.Block("").Line({.output = "gone"}).Sub("", {}).Event("", {"1"});
  const struct {
    Status (*mark)(CInstrumentFixture&);
    const char* first;
  } rows[] = {
      {[](CInstrumentFixture& f) { return f.Blocks().SetModified(1); }, "Block List"},
      {[](CInstrumentFixture& f) { return f.Sequence().SetModified(1); }, "Sequence List"},
      {[](CInstrumentFixture& f) { return f.SubSequences().SetModified(1); }, "Sub Sequence List"},
      {[](CInstrumentFixture& f) { return f.Events().SetModified(1); }, "Event List"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.first);
    m_build.SetModified(0);
    (void)row.mark(m_engine);
    EXPECT_EQ(m_engine.Server().Compile(), E_FAIL);
    ASSERT_EQ(Findings().size(), 1u);
    EXPECT_TRUE(Findings()[0].starts_with(row.first));
  }
  m_build.SetModified(0);
  EXPECT_EQ(m_engine.Server().Compile(), S_OK);
  EXPECT_EQ(Output(), (Lines{"Compiling PG 1...", "0 error(s), 0 warning(s)..."}));
  m_build.SetModified(1);
  (void)m_engine.Instrument().EnableInstrument(0);
  EXPECT_EQ(m_engine.Server().Compile(), S_OK);
  EXPECT_EQ(Output(), Lines{"0 error(s), 0 warning(s)..."});
}

// 131066 is padded by 2. The aligned block adds the same 2 once more, which decides.
TEST_F(Compiler, KeepsThePaddingOfTheLastUnalignedBlock) {
  const char* tooBig = "Block List : error : Total block size exceeds the module depth";
  m_build.Block("a", 131066).Block("b", 131068).Line({.output = "a"}).Line({.output = "b"});
  EXPECT_EQ(m_engine.Server().Compile(), S_OK);
  (void)m_engine.Blocks().SetBlockSize(1, 131072);
  EXPECT_EQ(m_engine.Server().Compile(), E_FAIL);
  EXPECT_EQ(Findings(), Lines{tooBig});
  (void)m_engine.Blocks().MoveUp(1);  // nothing to keep yet: 131072 + 131068
  EXPECT_EQ(m_engine.Server().Compile(), S_OK);
}

TEST_F(Compiler, EndsWhenTheExpandedSequenceIsTooLong) {
  m_build.Block("b").Event("", {"1"});
  m_build.Sub("s", std::vector<std::pair<std::string, int>>(250, {"b", 1}));
  m_build.Line({.output = "s", .repeat = 16});
  EXPECT_EQ(m_engine.Server().Compile(), E_FAIL);
  EXPECT_EQ(Findings(), Lines{"Event List [Line:1][Column:1] : error : Event name is empty"});
  m_build.Line({.output = "b"});
  EXPECT_EQ(m_engine.Server().Compile(), E_FAIL);
  EXPECT_EQ(Findings(),  // and no look at the events
            Lines{"Sequence List [Line:2][Column:1] : error : No. of sequence lines including the "
                  "referred subsequences exceeds 4000 lines."});
  for (int i = 2; i < MAX_SEQUENCE_LINES; ++i) m_build.Line({.output = "b"});
  EXPECT_EQ(m_engine.Server().Compile(), E_FAIL);
  EXPECT_EQ(Findings().size(), 1u);  // a full list is not tested: the event again
}

TEST_F(Compiler, AbortsAtTheNextObject) {
  m_build.Block("").Block("").Block("").Line({.output = ""});
  (void)m_engine.Server().AbortCompilation();  // without effect before a run
  AtYield(2, [this] { (void)m_engine.Server().AbortCompilation(); });
  EXPECT_EQ(m_engine.Server().Compile(), PG_E_ABORTED);
  EXPECT_EQ(Findings().size(), 2u);
  EXPECT_EQ(Output().back(), "Compilation Aborted...");
  EXPECT_EQ(m_engine.Host().cursorDepth, 0);
  m_engine.Host().onYield = nullptr;
  EXPECT_EQ(m_engine.Server().Compile(), E_FAIL);
}

TEST_F(Compiler, TellsOfAMissingObject) {
  const auto lists = {
      +[](CInstrumentFixture& f) { return f.Blocks().InsertBlock("b", 40, 3); },
      +[](CInstrumentFixture& f) { return f.Sequence().InsertSequenceLine(3, "l"); },
      +[](CInstrumentFixture& f) { return f.SubSequences().InsertSubSequence(3, "s"); },
      +[](CInstrumentFixture& f) { return f.Events().InsertEvent(3, "e"); },
  };
  for (const auto insert : lists) {
    CProgramBuilder program(m_engine.Instrument());
    program.SetModified(0);
    ASSERT_EQ(insert(m_engine), S_OK);
    m_engine.Host().boxes.clear();
    EXPECT_EQ(m_engine.Server().Compile(), S_OK);  // no error was counted
    EXPECT_EQ(m_engine.Host().BoxTexts(),
              Lines{"Internal Application error has occured.\nClose the application and try "
                    "again."});
  }
}

TEST_F(Compiler, SeesWhatIsEditedWhileItYields) {
  m_build.Block("a").Block("b").Line({.output = "a"}).Line({.output = "b"});
  AtYield(1, [this] {
    (void)m_engine.Blocks().SetBlockName(1, "c");
    SEQUENCE_LINE* line = nullptr;
    (void)m_engine.Sequence().GetSequenceLine(0, &line);
    (void)line->SetOutput("C");
  });
  EXPECT_EQ(m_engine.Server().Compile(), E_FAIL);
  EXPECT_EQ(Findings(), Lines{"Sequence List [Line:2][Column:4] : error : b undefined"});
  AtYield(1, [this] { (void)m_engine.Blocks().DeleteAll(); });
  EXPECT_EQ(m_engine.Server().Compile(), E_FAIL);
  EXPECT_EQ(Findings().size(), 3u);  // block "a" is unused, both outputs are undefined
}

TEST_F(Compiler, RefusesToBeNestedAndSurvivesADeletedInstrument) {
  m_build.Block("b").Line({.output = "b"});
  Status compile = S_OK;
  Status download = S_OK;
  Status defaults = S_OK;
  AtYield(1, [&] {
    compile = m_engine.Server().Compile();
    download = m_engine.Server().Download();
    defaults = m_engine.Server().DefaultSystem();
  });
  EXPECT_EQ(m_engine.Server().Compile(), S_OK);
  EXPECT_EQ(compile, E_FAIL);
  EXPECT_EQ(download, E_FAIL);
  EXPECT_EQ(defaults, E_FAIL);
  EXPECT_EQ(Output().back(), "0 error(s), 0 warning(s)...");

  AtYield(1, [this] { (void)m_engine.Instruments().DeleteInstrument("pg 1"); });
  EXPECT_EQ(m_engine.Server().Compile(), S_OK);
  EXPECT_EQ(m_engine.Host().boxes.size(), 1u);
}

TEST_F(Compiler, WorksWithoutARouter) {
  m_build.Block("");
  (void)m_engine.Server().SetMessageRouter(nullptr);
  EXPECT_EQ(m_engine.Server().Compile(), E_FAIL);
  CompileErrorInfo info;
  ASSERT_EQ(Subject().GetCompileErrorInfo(0, info), S_OK);  // all findings share line 0
  EXPECT_EQ(info.error, CompileError::NameEmpty);
  EXPECT_EQ(info.section, Section::BlockList);
}

TEST_F(Compiler, MarksTheBlocksThatAreUsed) {
  m_build.Block("a").Block("b").Line({.output = "A"});
  EXPECT_EQ(m_engine.Server().Compile(), S_OK);
  for (const bool used : {true, false}) {
    BLOCK* block = nullptr;
    (void)m_engine.Blocks().GetBlock(used ? 0 : 1, &block);
    EXPECT_EQ(block->IsBlockUsed(), used ? 1 : 0);
  }
}

}  // namespace
}  // namespace quillpg
