#include "compiler/compiler.h"

#include "base/byte_stream.h"
#include "base/setup_file_reader.h"
#include "hardware/server2hal.h"
#include "plain/compiler.h"
#include "plain/random_program.h"
#include "support/instrument_fixture.h"
#include "support/program_builder.h"

#include <gmock/gmock.h>

namespace quillpg {
namespace {

using Lines = std::vector<std::string>;

class Compiler : public testing::Test {
 protected:
  Compiler() : m_build(m_engine.Instrument()) {}

  CCompiler& Subject() { return *Find(m_engine.Server(), &CAppServer::GetCompiler); }
  const Lines& Output() { return m_engine.Router().output; }
  // Compiles; the output window without its first line and its last.
  Lines Findings(Status expected) {
    EXPECT_EQ(m_engine.Server().Compile(), expected);
    const Lines& all = Output();
    return all.size() < 2 ? Lines{"no output"} : Lines(all.begin() + 1, all.end() - 1);
  }

  CInstrumentFixture m_engine;
  CProgramBuilder m_build;
  CProgramView m_program{m_engine.Instrument()};
};

bool HasError(const Lines& findings) {
  return std::ranges::any_of(
      findings, [](const std::string& line) { return line.find("error") != line.npos; });
}

// The printed forms. What else can be wrong differs in the name alone: the plain check knows it.
TEST_F(Compiler, FindsWhatIsWrong) {
  m_build.Block("always").Block("b").Line({.output = "b"}).Line({.output = "100%d%s"});
  m_build.Line({.output = " b", .jumpIf = "Never"}).Sub("s", {{"", 0}}).Event("", {});
  const Lines expected = {
      "Block List [Line:1][Column:1] : error : always is a keyword. Not allowed...",
      "Block List [Line:1][Column:1] : warning : always is declared but not referenced",
      "Sequence List [Line:2][Column:4] : error : 100%d%s undefined",
      "Sequence List [Line:3][Column:4] : error :  b undefined",  // blocks: blanks count
      "Sequence List [Line:3][Column:9] : error : Jump To must be specified...",
      "Sub Sequence List [Line:1][Column:1] : warning : s is declared but not referenced",
      "Sub Sequence Definition [Line:1][Column:1] : error : Block name is empty",
      "Sub Sequence Definition [Line:1][Column:3] : error : 0 invalid",
      "Event List [Line:1][Column:1] : error : Event name is empty",
      "Event List [Line:1][Column:1] : error : < Empty Name > is declared but definition is not "
      "present"};
  EXPECT_EQ(Findings(E_FAIL), expected);

  CProgramBuilder(m_engine.Instrument()).Block("b");
  EXPECT_EQ(Findings(E_FAIL).back(), "Sequence List : error : Sequence List is empty");
}

TEST_F(Compiler, AcceptsASoundProgram) {
  m_build.Block("b").Block("b2").Block("c").Sub("s", {{"C", 65536}}).Event("e", {"1XXXXXXXX"});
  m_build.Line({.output = " s ", .label = "top", .waitFor = "NONE"}).Line({.output = "b"});
  m_build.Line(
      {.output = "b2", .repeat = 0, .waitFor = " E ", .jumpIf = "always", .jumpTo = "TOP"});
  EXPECT_EQ(Findings(S_OK), Lines{});
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
    const Lines expected = CPlainCompiler(m_engine.Instrument()).Check();
    ASSERT_EQ(Findings(HasError(expected) ? E_FAIL : S_OK), expected);
  }
}

TEST_F(Compiler, TellsTheFrontEndWhatItDoes) {
  m_build.Block("b").Block("a b").Line({.output = "B"}).Line({.output = ""});
  EXPECT_EQ(m_engine.Server().Compile(), E_FAIL);
  const CRecordingRouter& router = m_engine.Router();
  EXPECT_EQ(router.clears, 1);
  EXPECT_EQ(Output().front(), "Compiling PG 1...");
  EXPECT_EQ(Output().back(), "2 error(s), 1 warning(s)...");
  EXPECT_EQ(router.percents, (std::vector<int>{0, 50, 0, 50}));
  EXPECT_TRUE(m_program.BlockAt(0)->IsBlockUsed());
  EXPECT_FALSE(m_program.BlockAt(1)->IsBlockUsed());
}

TEST_F(Compiler, FindsTheRecordOfAnOutputLine) {
  m_build.Block("b").Line({.output = "b"}).Line({.output = "x"});
  EXPECT_EQ(m_engine.Server().Compile(), E_FAIL);
  CompileErrorInfo info;
  EXPECT_EQ(Subject().GetCompileErrorInfo(0, info), E_FAIL);  // "Compiling PG 1..."
  ASSERT_EQ(Subject().GetCompileErrorInfo(1, info), S_OK);
  EXPECT_EQ(std::tie(info.line, info.column, info.instrumentIndex, info.itemIndex),
            std::tuple(3, 4, 0, -1));  // the line is one more than printed
  EXPECT_EQ(std::tie(info.section, info.errorType, info.error),
            std::tuple(Section::SequenceList, ErrorType::Error, CompileError::Undefined));
  EXPECT_EQ(Subject().GetCompileErrorInfo(2, info), E_FAIL);
  EXPECT_EQ(Subject().GetCompileErrorInfo(-1, info), E_FAIL);

  // The router goes while the first block is checked: what follows is counted and not told.
  const Lines told = {"Compiling PG 1..."};
  m_engine.Host().AtYield(1, [this] { (void)m_engine.Server().SetMessageRouter(nullptr); });
  EXPECT_EQ(m_engine.Server().Compile(), E_FAIL);
  EXPECT_EQ(Output(), told);
  EXPECT_EQ(m_engine.Server().Compile(), E_FAIL);  // without one: all findings share line 0
  ASSERT_EQ(Subject().GetCompileErrorInfo(0, info), S_OK);
  EXPECT_EQ(info.text, "x");
}

TEST_F(Compiler, ChecksOnlyWhatChanged) {
  m_build.Block("").Line({.output = "gone"}).Sub("", {}).Event("", {"1"}).SetModified(0);
  EXPECT_EQ(m_engine.Server().Compile(), S_OK);
  EXPECT_EQ(Output(), (Lines{"Compiling PG 1...", "0 error(s), 0 warning(s)..."}));
  (void)m_engine.Events().SetModified(1);
  EXPECT_EQ(Findings(E_FAIL), Lines{"Event List [Line:1][Column:1] : error : Event name is empty"});
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
  EXPECT_EQ(Findings(E_FAIL), Lines{tooBig});
  (void)m_engine.Blocks().MoveUp(1);  // nothing to keep yet: 131072 + 131068
  EXPECT_EQ(m_engine.Server().Compile(), S_OK);
}

TEST_F(Compiler, EndsWhenTheExpandedSequenceIsTooLong) {
  m_build.Block("b").Event("", {"1"});
  m_build.Sub("s", std::vector<std::pair<std::string, int>>(250, {"b", 1}));
  m_build.Line({.output = "s", .repeat = 16});
  EXPECT_EQ(Findings(E_FAIL), Lines{"Event List [Line:1][Column:1] : error : Event name is empty"});
  m_build.Line({.output = "b"});
  EXPECT_EQ(Findings(E_FAIL),  // and no look at the events
            Lines{"Sequence List [Line:2][Column:1] : error : No. of sequence lines including the "
                  "referred subsequences exceeds 4000 lines."});
}

// A list takes no more than its limit, but for those that a file holds.
TEST_F(Compiler, RefusesListsThatAFileMadeTooLong) {
  using Pairs = std::vector<std::pair<std::string, int>>;
  for (int i = 0; i < MAX_BLOCKS; ++i) m_build.Block("b").Line({.output = "b"});
  m_build.Sub("s", Pairs(MAX_SUBSEQUENCE_LINES, {"b", 1}));
  for (int i = 1; i < MAX_SUBSEQUENCES; ++i) m_build.Sub("t", {});
  m_build.Event("e", Lines(MAX_EVENT_DEFINITIONS, "1"));
  for (int i = 1; i < MAX_EVENTS; ++i) m_build.Event("f", {});
  const auto tooLong = [this] {
    Lines findings = Findings(E_FAIL);
    std::erase_if(findings, [](auto& line) { return line.find("invalid range") == line.npos; });
    return findings;
  };
  EXPECT_EQ(tooLong(), Lines{});
  const auto readAgain = [](auto& list) {
    CByteWriter writer;
    EXPECT_EQ(list.Write(writer), S_OK);
    CSetupFileReader reader(writer.Written());
    EXPECT_EQ(list.Read(reader), S_OK);
  };
  readAgain(*m_program.SubSequenceAt(0));
  readAgain(*m_program.EventAt(0));
  EXPECT_EQ(tooLong(),
            (Lines{"Sub Sequence List [Line:1][Column:1] : error : < Empty Name > invalid range",
                   "Event List [Line:1][Column:0] : error : < Empty Name > invalid range"}));
  readAgain(m_engine.Blocks());
  readAgain(m_engine.Sequence());
  readAgain(m_engine.SubSequences());
  readAgain(m_engine.Events());
  Lines found = tooLong();
  EXPECT_EQ(found.size(), 8U);  // the long ones stand there twice now
  for (const char* list : {"Block", "Sequence", "Sub Sequence", "Event"}) {
    EXPECT_THAT(
        found,
        testing::Contains(
            list + std::string(" List [Line:1][Column:1] : error : < Empty Name > invalid range")));
  }
}

TEST_F(Compiler, AbortsAtTheNextObject) {
  m_build.Block("").Block("").Block("").Line({.output = ""});
  (void)m_engine.Server().AbortCompilation();  // without effect before a run
  m_engine.Host().AtYield(2, [this] { (void)m_engine.Server().AbortCompilation(); });
  EXPECT_EQ(Findings(PG_E_ABORTED).size(), 2u);
  EXPECT_EQ(Output().back(), "Compilation Aborted...");
  EXPECT_EQ(m_engine.Host().cursorDepth, 0);
}

TEST_F(Compiler, TellsOfAMissingObject) {
  (void)m_engine.Events().InsertEvent(3, "e");
  (void)m_build.Block("b").Line({.output = "b"});
  EXPECT_EQ(m_engine.Server().Compile(), S_OK);  // no error was counted
  EXPECT_EQ(m_engine.Host().BoxTexts(),
            Lines{"Internal Application error has occured.\nClose the application and try again."});
}

TEST_F(Compiler, SeesWhatIsEditedWhileItYields) {
  m_build.Block("a").Block("b").Line({.output = "a"}).Line({.output = "b"});
  m_engine.Host().AtYield(1, [this] {
    (void)m_engine.Blocks().SetBlockName(1, "c");
    (void)m_program.LineAt(0)->SetOutput("C");
  });
  EXPECT_EQ(Findings(E_FAIL), Lines{"Sequence List [Line:2][Column:4] : error : b undefined"});
}

TEST_F(Compiler, RefusesToBeNestedAndSurvivesADeletedInstrument) {
  m_build.Block("b").Line({.output = "b"});
  std::vector<Status> nested;
  m_engine.Host().AtYield(1, [&] {
    nested = {m_engine.Server().Compile(), m_engine.Server().Download(),
              m_engine.Server().DefaultSystem()};
  });
  EXPECT_EQ(m_engine.Server().Compile(), S_OK);
  EXPECT_EQ(nested, std::vector<Status>(3, E_FAIL));

  m_engine.Host().AtYield(1, [this] { (void)m_engine.Instruments().DeleteInstrument("pg 1"); });
  EXPECT_EQ(m_engine.Server().Compile(), S_OK);
  EXPECT_EQ(m_engine.Host().boxes.size(), 1u);
}

// As a front end would that pumps messages in its router: the n-th call deletes what is at work.
TEST(CompileAndDownload, SurviveARouterThatDeletes) {
  for (const bool download : {false, true}) {
    for (const bool instrument : {false, true}) {
      int at = 1;
      for (int calls = 0; calls >= at - 1; ++at) {  // until a run is over before it
        SCOPED_TRACE(at);
        CInstrumentFixture engine;
        CProgramBuilder build(engine.Instrument());
        build.Block("always").Block("b").Sub("none", {{"b", 0}, {"always", 0}});
        build.Line({.output = "none", .repeat = -1}).Event("never", {"1"}).Event("e", {});
        calls = 0;
        engine.Router().onCall = [&] {
          if (++calls != at) return;
          if (instrument) (void)engine.Instruments().DeleteInstrumentAt(0);
          if (!instrument) CProgramBuilder(engine.Instrument());
        };
        (void)(download ? engine.Server().Download() : engine.Server().Compile());
        EXPECT_LE(engine.Host().boxes.size(), 1u);
        EXPECT_EQ(engine.Host().cursorDepth, 0);
      }
      EXPECT_GT(at, 10);
    }
  }
}

}  // namespace
}  // namespace quillpg
