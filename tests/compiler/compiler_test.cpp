#include "compiler/compiler.h"

#include "hardware/server2hal.h"
#include "instrument/instrument_manager.h"
#include "plain/compiler.h"
#include "plain/random_program.h"
#include "program/program_view.h"
#include "quillpg/app_server.h"
#include "support/instrument_fixture.h"
#include "support/program_builder.h"

#include <gtest/gtest.h>

#include <sstream>
#include <tuple>

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

constexpr const char* kName32 = "abcdefghijklmnopqrstuvwxyz012345";
constexpr const char* kName33 = "abcdefghijklmnopqrstuvwxyz0123456";

// One of each kind. Most other mistakes differ in the name alone: the plain check knows them all.
const struct FINDINGS_ROW {
  const char* what;
  void (*build)(CProgramBuilder&);
  Lines expected;
} kFindings[] = {
    {"a sound program, its third block played by a subsequence alone",
     [](CProgramBuilder& p) {
       p.Block("b").Block(kName32).Block("c").Sub("s", {{"C", 65536}}).Event("e", {"1XXXXXXXX"});
       p.Line({.output = " s ", .label = "top", .waitFor = "NONE"}).Line({.output = "b"});
       p.Line(
           {.output = kName32, .repeat = 0, .waitFor = " E ", .jumpIf = "always", .jumpTo = "TOP"});
     },
     {}},
    {"an empty sequence has neither line nor column",
     [](CProgramBuilder&) {},
     {"Sequence List : error : Sequence List is empty"}},
    {"blocks",
     [](CProgramBuilder& p) {
       p.Block("always").Block("", -1).Block(kName33, 39).Block("x").Block("X");
       p.Line({.output = "x"}).Line({.output = kName33});
     },
     {"Block List [Line:1][Column:1] : error : always is a keyword. Not allowed...",
      "Block List [Line:1][Column:1] : warning : always is declared but not referenced",
      "Block List [Line:2][Column:1] : error : Block name is empty",
      "Block List [Line:2][Column:2] : error : -1 invalid",
      "Block List [Line:3][Column:1] : error : abcdefghijklmnopqrstuvwxyz0123456 invalid",
      "Block List [Line:3][Column:2] : error : 39 invalid",
      "Block List [Line:4][Column:1] : error : x already defined",
      "Block List [Line:5][Column:1] : error : X already defined"}},
    {"the sequence",
     [](CProgramBuilder& p) {
       p.Block("b").Block("both").Sub("both", {{"b", 1}});
       p.Line({.output = ""}).Line({.output = "both"});
       p.Line({.output = "100%d%s", .label = "none"}).Line({.output = " b", .waitFor = "Always"});
       p.Line({.output = "b", .repeat = 65537, .jumpIf = "Never"});
       p.Line({.output = "b", .jumpIf = "None", .jumpTo = "nowhere"});
     },
     {"Sequence List [Line:1][Column:4] : error : Output name is empty",
      "Sequence List [Line:2][Column:4] : error : both A block and a subsequence cannot have the "
      "same name. ",
      "Sequence List [Line:3][Column:1] : error : none is a keyword. Not allowed...",
      "Sequence List [Line:3][Column:4] : error : 100%d%s undefined",
      "Sequence List [Line:4][Column:2] : error : Always undefined",
      "Sequence List [Line:4][Column:4] : error :  b undefined",  // blocks: blanks count
      "Sequence List [Line:5][Column:6] : error : 65537 invalid",
      "Sequence List [Line:5][Column:9] : error : Jump To must be specified...",
      "Sequence List [Line:6][Column:7] : error : None undefined"}},
    {"subsequences and events",
     [](CProgramBuilder& p) {
       p.Block("b").Line({.output = "b", .waitFor = "e"}).Line({.output = "s"});
       p.Sub("s", {{"s", 1}, {"", 0}}).Sub("unused", {}).Sub(" ", {});
       p.Event("e", {"1"}).Event("", {});
     },
     {"Sub Sequence Definition [Line:1][Column:1] : error : s undefined",
      "Sub Sequence Definition [Line:2][Column:1] : error : Block name is empty",
      "Sub Sequence Definition [Line:2][Column:3] : error : 0 invalid",
      "Sub Sequence List [Line:2][Column:1] : warning : unused is declared but not referenced",
      "Sub Sequence List [Line:2][Column:1] : error : unused is declared but definition is not "
      "present",
      "Sub Sequence List [Line:3][Column:1] : error : Sub-sequence name is empty",
      "Event List [Line:2][Column:1] : error : Event name is empty",
      "Event List [Line:2][Column:1] : error : < Empty Name > is declared but definition is not "
      "present"}},
};

bool HasError(const Lines& findings) {
  return std::ranges::any_of(
      findings, [](const std::string& line) { return line.find("error") != line.npos; });
}

TEST_F(Compiler, FindsWhatIsWrong) {
  for (const FINDINGS_ROW& row : kFindings) {
    SCOPED_TRACE(row.what);
    CProgramBuilder program(m_engine.Instrument());
    row.build(program);
    EXPECT_EQ(Findings(HasError(row.expected) ? E_FAIL : S_OK), row.expected);
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
    const Lines expected = CPlainCompiler(m_engine.Instrument()).Check();
    ASSERT_EQ(Findings(HasError(expected) ? E_FAIL : S_OK), expected);
  }
}

// Insertion keeps the limits; only a setup file brings more. `countAt` is where the count stands in
// the list's record, the elements of equal size behind it.
template <typename List>
void ReadOneMore(List& list, int count, std::size_t countAt = 0) {
  std::ostringstream saved;
  (void)list.Write(saved);
  std::string bytes = saved.str();
  const std::size_t first = countAt + 4;
  bytes.append(bytes, first, (bytes.size() - first) / static_cast<std::size_t>(count));
  bytes[countAt] = static_cast<char>(count + 1);
  bytes[countAt + 1] = static_cast<char>((count + 1) >> 8);
  std::istringstream longer(bytes);
  ASSERT_EQ(list.Read(longer), S_OK);
}

TEST_F(Compiler, TellsOfListsThatAFileMadeTooLong) {
  for (int i = 0; i < 4000; ++i) m_build.Block("b").Line({.output = "b"});
  const std::vector<std::pair<std::string, int>> lines(256, {"b", 1});
  for (int i = 0; i < 50; ++i) m_build.Sub("s", lines);
  for (int i = 0; i < 8; ++i) m_build.Event("e", std::vector<std::string>(256, "1XXXXXXXX"));
  ReadOneMore(m_engine.Blocks(), 4000);
  ReadOneMore(m_engine.Sequence(), 4000);
  ReadOneMore(m_engine.SubSequences(), 50);
  ReadOneMore(m_engine.Events(), 8);
  ReadOneMore(*m_program.SubSequenceAt(2), 256, 6);
  ReadOneMore(*m_program.EventAt(2), 256, 6);
  Lines tooLong = Findings(E_FAIL);
  std::erase_if(tooLong, [](const std::string& line) { return !line.ends_with("invalid range"); });
  EXPECT_EQ(tooLong,
            (Lines{"Block List [Line:1][Column:1] : error : < Empty Name > invalid range",
                   "Sequence List [Line:1][Column:1] : error : < Empty Name > invalid range",
                   "Sub Sequence List [Line:1][Column:1] : error : < Empty Name > invalid range",
                   "Sub Sequence List [Line:3][Column:1] : error : < Empty Name > invalid range",
                   "Event List [Line:1][Column:1] : error : < Empty Name > invalid range",
                   "Event List [Line:3][Column:0] : error : < Empty Name > invalid range"}));
}

TEST_F(Compiler, TellsTheFrontEndWhatItDoes) {
  m_build.Block("b").Block("a b").Line({.output = "B"}).Line({.output = ""});
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
  EXPECT_TRUE(m_program.BlockAt(0)->IsBlockUsed());
  EXPECT_FALSE(m_program.BlockAt(1)->IsBlockUsed());
}

TEST_F(Compiler, FindsTheRecordOfAnOutputLine) {
  m_build.Block("b").Line({.output = "s"}).Sub("s", {{"b", 1}, {"?", 1}});
  (void)m_engine.Server().Compile();
  m_build.Line({.output = "b"}).Line({.output = "x"});
  EXPECT_EQ(m_engine.Server().Compile(), E_FAIL);
  CompileErrorInfo info;
  EXPECT_EQ(Subject().GetCompileErrorInfo(0, info), E_FAIL);  // "Compiling PG 1..."
  ASSERT_EQ(Subject().GetCompileErrorInfo(1, info), S_OK);
  EXPECT_EQ(std::tie(info.line, info.column, info.instrumentIndex, info.itemIndex),
            std::tuple(4, 4, 0, -1));  // the line is one more than printed
  EXPECT_EQ(std::tie(info.instrumentName, info.text), std::tuple("PG 1", "x"));
  EXPECT_EQ(std::tie(info.section, info.errorType, info.error),
            std::tuple(Section::SequenceList, ErrorType::Error, CompileError::Undefined));
  ASSERT_EQ(Subject().GetCompileErrorInfo(2, info), S_OK);
  EXPECT_EQ(info.section, Section::SubSequenceDefinition);
  EXPECT_EQ(info.line, 2);
  EXPECT_EQ(info.itemIndex, 0);
  EXPECT_EQ(Subject().GetCompileErrorInfo(3, info), E_FAIL);
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
  m_build.Block("").Line({.output = "gone"}).Sub("", {}).Event("", {"1"});
  using Fixture = CInstrumentFixture;
  const std::pair<const char*, Status (*)(Fixture&)> rows[] = {
      {"Block List", [](Fixture& f) { return f.Blocks().SetModified(1); }},
      {"Sequence List", [](Fixture& f) { return f.Sequence().SetModified(1); }},
      {"Sub Sequence List", [](Fixture& f) { return f.SubSequences().SetModified(1); }},
      {"Event List", [](Fixture& f) { return f.Events().SetModified(1); }},
  };
  for (const auto& [section, mark] : rows) {
    SCOPED_TRACE(section);
    m_build.SetModified(0);
    (void)mark(m_engine);
    const Lines findings = Findings(E_FAIL);
    ASSERT_EQ(findings.size(), 1u);
    EXPECT_TRUE(findings[0].starts_with(section));
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
  for (int i = 2; i < MAX_SEQUENCE_LINES; ++i) m_build.Line({.output = "b"});
  EXPECT_EQ(Findings(E_FAIL).size(), 1u);  // a full list is not tested: the event again
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
  const auto lists = {
      +[](CInstrumentFixture& f) { return f.Blocks().InsertBlock("b", 40, 3); },
      +[](CInstrumentFixture& f) { return f.Sequence().InsertSequenceLine(3, "l"); },
      +[](CInstrumentFixture& f) { return f.SubSequences().InsertSubSequence(3, "s"); },
      +[](CInstrumentFixture& f) { return f.Events().InsertEvent(3, "e"); },
  };
  for (const auto insert : lists) {
    CProgramBuilder(m_engine.Instrument()).SetModified(0);
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
  m_engine.Host().AtYield(1, [this] {
    (void)m_engine.Blocks().SetBlockName(1, "c");
    (void)m_program.LineAt(0)->SetOutput("C");
  });
  EXPECT_EQ(Findings(E_FAIL), Lines{"Sequence List [Line:2][Column:4] : error : b undefined"});
  m_engine.Host().AtYield(1, [this] { (void)m_engine.Blocks().DeleteAll(); });
  EXPECT_EQ(Findings(E_FAIL).size(), 3u);  // block "a" is unused, both outputs are undefined
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
  EXPECT_EQ(Output().back(), "0 error(s), 0 warning(s)...");

  m_engine.Host().AtYield(1, [this] { (void)m_engine.Instruments().DeleteInstrument("pg 1"); });
  EXPECT_EQ(m_engine.Server().Compile(), S_OK);
  EXPECT_EQ(m_engine.Host().boxes.size(), 1u);
}

}  // namespace
}  // namespace quillpg
