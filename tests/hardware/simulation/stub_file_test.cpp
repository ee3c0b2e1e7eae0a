#include "hardware/simulation/stub_file.h"

#include "hardware/simulation/simulated_mainframe.h"
#include "hardware/simulation/stub_identity.h"
#include "hardware/simulation/stub_section.h"
#include "support/temporary_folder.h"

#include <gmock/gmock.h>

#include <sstream>

namespace quillpg {
namespace {

using testing::ElementsAre;

constexpr const char* kModule = "2748 1064 3 1 V\n";

void Read(CStubFile& file, const std::string& text) {
  std::istringstream stream(text);
  ASSERT_EQ(S_OK, file.Read(stream));
}

std::string Ask(CStubFile& file, const std::string& command, int module = 0) {
  std::string reply = "none";  // left so where there is no answer
  (void)file.Query(module, command, reply);
  return reply;
}

TEST(StubFile, DeclarationsAreFourNumbersAndPerhapsAnInterface) {
  for (const char* line : {"2748 1064 7 1 V", "2748 1064 7 255 G", "2748\t1064  7 1  "}) {
    const auto declared = ParseStubDeclaration(line);
    EXPECT_EQ(7, declared ? declared->slot : -1) << line;
  }
  for (const char* line : {"2748 1064 3", "2748 1064 3 1 X", "2748 1064 3 1 V 2", " 2748 1064 3 1",
                           "2748 1064 2147483648 1", "2748 1064 -3 1", "2748 1064 3.5 1", ""}) {
    EXPECT_FALSE(ParseStubDeclaration(line)) << line;
  }
}

TEST(StubFile, AnswersAsTheLinesSay) {
  struct ROW {
    std::string lines;
    const char* command;
    const char* replies;  // to the same command, one after the other
  };
  const std::string longest(CStubFile::MOST_LINE_BYTES, 'x');
  const ROW rows[] = {
      // prefixes, case, what may follow
      {">OUT?<>1>\n", "out? A", "1|1|"},
      {">OUT?<>1>\n", "OUT", "none|none|"},
      {">OUT?]>1>\n>OUT?<>2>\n", "OUT?", "1|2|1|"},
      {">OUT?]>1>\n>OUT?<>2>\n", "OUT?A", "2|2|"},
      {">OUT?]>1>\n", "OUT?\r\n", "1|"},
      {">OUT?]>1>\n", "OUT? ", "none|"},
      {">A<>1>\n>AB<>2>\n", "AB", "1|1|"},
      {">AB<>1>\n>A<>2>\n", "ABC", "1|1|"},
      // turns and modes
      {">A<>1>\n>B<>x>\n>a<>2>N\n>A<>3>\n", "A", "1|2|3|1|"},
      {">A<>1>\n>A<>2>O\n>A<>3>\n", "A", "1|2|3|1|3|"},
      {">A<>1>O\n>A<>2>O\n>AB<>3>\n", "AB", "1|2|3|3|"},
      {">A<>1>C\n", "A ", "1|1|"},
      // where answers are searched
      {">[DEFAULT]<>d>O\n>[DEFAULT]<>e>\n>A<>1>O\n", "A", "1|d|e|e|"},
      {">[default]<>d>\n", "A", "none|"},
      // lines that violate the syntax
      {">A<1>\n>A>1>\n><\n><>1>\n>]>1>\n>A<>1\n>A<>1>X\n>A<>1>NN\n>A<>1> \n >A<>1>\n>A<>2>\r\n",
       "A", "2|2|"},
      {"#>A<>1>\n[NOTHING]\n[TERMINATION\n>A<>2>\n>A<>3>", "A", "2|2|"},
      {">A<>" + longest + ">\n>A<>2>\n", "A", "2|2|"},
  };
  for (const ROW& row : rows) {
    SCOPED_TRACE(row.lines.substr(0, 80));
    CStubFile file;
    Read(file, kModule + row.lines);
    std::string replies;
    while (replies.size() < std::string_view(row.replies).size()) {
      replies += Ask(file, row.command) + "|";
    }
    EXPECT_EQ(row.replies, replies);
  }
}

TEST(StubFile, KeepsWhatItIsSentAndNeverTakesItForAFile) {
  CTemporaryFolder folder;
  folder.Write("secret", "contents");
  CStubFile file;
  ASSERT_EQ(S_OK, file.Open(folder.Write("a.ini", std::string(kModule) + ">SET<>5>C\n")));
  EXPECT_EQ("5", Ask(file, "SET"));
  EXPECT_EQ("", Ask(file, "set  @secret "));
  EXPECT_EQ("@secret", Ask(file, "SET"));
}

TEST(StubFile, LineEndsCountForTheLengthOfAFile) {
  for (const std::size_t room : {0U, 16U}) {
    CStubFile file;
    Read(file, std::string(CStubFile::MOST_FILE_BYTES - room, '\n') + kModule);
    EXPECT_EQ(room / 16, static_cast<std::size_t>(file.ModuleCount()));
  }
}

TEST(StubFile, EachModuleHasItsOwnLinesAndSharesTheFirst) {
  CStubFile file;
  Read(file,
       ">COMMON<>c>\n>[DEFAULT]<>d>\n[TERMINATION CRLF]\n[TRACE ON]\n"
       "2748 1064 3 1 V\n>A<>3>\n"
       "2748 1001 4 255 V\n>A<>lost>\n>COMMON<>lost>\n[TERMINATION CR]\n"  // no module
       "2748 1064 5 2 G\n[TERMINATION LF]\n>A<>5>\n>[DEFAULT]<>mine>\n"
       "2748 1064 seven 3 V\n>A<>lost>\n[DISPLAY_MESSAGE OFF]\n"  // cannot be read
       "2748 1064 7 3\n>COMMON<>own>\n");
  ASSERT_EQ(3, file.ModuleCount());
  std::vector<std::string> replies;
  for (int module = 0; module < 3; ++module) {
    replies.push_back(std::to_string(file.Declaration(module).slot));
    for (const char* command : {"A", "COMMON", "B"}) {
      replies.back() += " " + Ask(file, command, module);
    }
  }
  EXPECT_THAT(replies, ElementsAre("3 3 c d", "5 5 c mine", "7 d own d"));
  EXPECT_EQ(StubTermination::CrLf, file.Termination(0));
  EXPECT_EQ(StubTermination::Lf, file.Termination(1));
  EXPECT_TRUE(file.Trace());
  EXPECT_FALSE(file.DisplayMessage());
}

TEST(StubFile, FilesAnswerAsTheyAre) {
  CTemporaryFolder folder;
  folder.Write("reply", ">A<>\n@reply\n");
  folder.Write("full", std::string(CStubFile::MOST_RESPONSE_BYTES, 'x'));
  folder.Write("large", std::string(CStubFile::MOST_RESPONSE_BYTES + 1, 'x'));
  const std::string path =
      folder.Write("a.ini", std::string(kModule) +
                                ">A<>@reply>\n>B<>@missing>\n>C<>@.>\n>D<>@a.ini>\n"
                                ">E<>@full>\n>F<>@large>\n>G<>@>\n");
  CStubFile file;
  ASSERT_EQ(S_OK, file.Open(path));
  EXPECT_EQ(">A<>\n@reply\n", Ask(file, "A"));
  for (const char* command : {"B", "C", "D", "F", "G"})
    EXPECT_EQ("", Ask(file, command)) << command;
  EXPECT_EQ(CStubFile::MOST_RESPONSE_BYTES, Ask(file, "E").size());
  EXPECT_EQ(PG_E_FILE_NOT_OPENED, file.Open(folder.Path()));
  EXPECT_EQ(PG_E_FILE_NOT_OPENED, file.Open(folder.File("missing.ini")));
}

TEST(StubFile, BuiltInAnswersAreTheSettingsThatModulesStartWith) {
  std::string text;
  AppendPatternGeneratorSection({3, 1, true, "ECL,None,None,Variable"}, text);
  CStubFile file;
  Read(file, text);
  SIMULATED_MODULE module;
  const CModuleSettings plain;
  // Spoilt first, but for the two settings that no answer tells.
  for (int i = 0; i < static_cast<int>(Setting::Count); ++i) {
    const auto setting = static_cast<Setting>(i);
    if (setting == Setting::WeldMode || setting == Setting::OutputEnable) continue;
    for (int place = 0; place < 16; ++place) module.settings.Store(setting, place, 77);
  }
  ApplyStubAnswers(file, 0, module);
  EXPECT_TRUE(module.option);
  EXPECT_EQ("ECL,None,None,Variable", module.pods);
  EXPECT_EQ("QPG-64 0.17 AA123456", module.model + " " + module.firmware + " " + module.serial);
  for (int i = 0; i < static_cast<int>(Setting::Count) * 16; ++i) {
    const auto setting = static_cast<Setting>(i / 16);
    const char pod = static_cast<char>('A' + i / 4 % 4);
    const int place = CModuleSettings::Place(setting, pod, i % 4);
    if (place < 0) continue;
    EXPECT_EQ(plain.At(setting, place), module.settings.At(setting, place)) << i / 16 << pod;
  }
}

TEST(StubFile, UnreadableAnswersLeaveTheSettingAsItWas) {
  const struct {
    const char* reply;
    double mode;    // FULL is 1
    double period;  // 1e-4
  } rows[] = {{"half", 0, 1e-4},  {" \"0\" ", 0, 0}, {"7", 1, 7},       {"-1", 1, -1},
              {"0.5", 1, 0.5},    {"R1", 1, 1e-4},   {"", 1, 1e-4},     {"\"\"", 1, 1e-4},
              {"words", 1, 1e-4}, {"nan", 1, 1e-4},  {"1e300", 1, 1e-4}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.reply);
    const std::string tail = std::string("<>") + row.reply + ">\n";
    CStubFile file;
    Read(file, kModule + (">SYSTEM:CONFIG:CHAN:MOD?" + tail + ">SOURCE:CLOCK:PERIOD?" + tail));
    SIMULATED_MODULE module;
    ApplyStubAnswers(file, 0, module);
    EXPECT_EQ(row.mode, module.settings.At(Setting::ChannelMode));
    EXPECT_EQ(row.period, module.settings.At(Setting::ClockPeriod));
  }
}

TEST(StubFile, IdentityIsWhatWouldBeAnsweredAndUsesNothingUp) {
  CTemporaryFolder folder;
  folder.Write("identity", "QUILLMARK, QPG-65,AA1,FVER:1.25\r\n");
  CStubFile file;
  ASSERT_EQ(S_OK,
            file.Open(folder.Write("a.ini", std::string(kModule) +
                                                ">*IDN?<>@identity>O\n>SYSTEM:SNUM?<>@none>\n"
                                                ">OUTPUT:LEVEL?<>3.5>C\n>[DEFAULT]<>1.5>O\n")));
  SIMULATED_MODULE module;
  ApplyStubAnswers(file, 0, module);
  EXPECT_EQ("QPG-65 1.25 AA123456", module.model + " " + module.firmware + " " + module.serial);
  EXPECT_EQ(1.5, module.settings.At(Setting::ClockPeriod));
  EXPECT_EQ(1, module.settings.At(Setting::ChannelMode));    // 1.5 is none
  EXPECT_EQ(5.0, module.settings.At(Setting::OutputLevel));  // 'A' is received, nothing answered
  EXPECT_EQ("QUILLMARK, QPG-65,AA1,FVER:1.25\r\n", Ask(file, "*IDN?"));
  EXPECT_EQ("3.5", Ask(file, "OUTPUT:LEVEL?"));
  EXPECT_EQ("1.5", Ask(file, "*IDN?"));
}

}  // namespace
}  // namespace quillpg
