#include "app/message_service.h"

#include "app/message_catalogue.h"
#include "hardware/hardware_library.h"
#include "support/scripted_host.h"

#include <gmock/gmock.h>

#include <utility>

namespace quillpg {
namespace {

class MessageService : public testing::Test {
 protected:
  MessageService() {
    GblClientConnected = 0;
    CHostServices::Set(&m_host);
  }
  ~MessageService() override {
    GblClientConnected = 0;
    CHostServices::Set(nullptr);
    CMessageService::SetReportFormats("", "", "");
  }

  CScriptedHost m_host;
};

TEST(MessageCatalogue, KeepsTextsLetterForLetter) {
  const std::pair<int, std::string_view> rows[] = {
      {12032, "Event Definition For "},  // blank at the end
      {12071, "Setup Information for Module  %s"},
      {12079, "Group Name ( %s ) exists but differ insize."},
      {12086, "\x5CStringFileInfo\x5C\x30\x34\x30\x39\x30\x34\x42\x30\x5C"},
      {12089, "Internal Application error has occured.\nClose the application and try again."},
      {12125, "There is no porgram data present in this file. Do you want to load it anyway ?"},
      {12132, "Exporting vector data: %d%%complete."},  // no blank, unlike its neighbour
  };
  for (const auto& [number, text] : rows) EXPECT_EQ(GetBuiltInText(number), text) << number;
  for (int number = 12000; number <= 12148; ++number) {
    EXPECT_FALSE(GetBuiltInText(number).empty()) << number;
  }
}

TEST_F(MessageService, PassesBoxesOnWithTheirHelpContext) {
  m_host.answers = {ANSWER_NO, ANSWER_OK, ANSWER_OK};
  m_host.texts[12093] = "localised";
  EXPECT_EQ(CMessageService::ShowMessage(12093, BOX_YESNO, -1, ANSWER_YES), ANSWER_NO);
  (void)CMessageService::ShowMessage(12138, BOX_OK, 7, ANSWER_OK);
  (void)CMessageService::ShowText("100 % own", BOX_OK, -1, ANSWER_OK);

  ASSERT_EQ(m_host.boxes.size(), 3U);
  EXPECT_EQ(m_host.boxes[0].text, "localised");
  EXPECT_EQ(m_host.boxes[0].helpContext, 12093);  // -1 stands for the number
  EXPECT_EQ(m_host.boxes[1].helpContext, 7);
  EXPECT_EQ(m_host.boxes[2].text, "100 % own");
  EXPECT_EQ(m_host.boxes[2].helpContext, -1);  // a text has no number of its own
}

TEST_F(MessageService, StaysSilentForARemoteClient) {
  GblClientConnected = -1;  // any non-zero value
  m_host.answers = {ANSWER_NO};
  EXPECT_EQ(CMessageService::ShowMessage(12093, BOX_YESNO, -1, ANSWER_YES), ANSWER_YES);
  EXPECT_TRUE(m_host.boxes.empty());
}

TEST_F(MessageService, FillsReportFormatsOfAnyKind) {
  const std::pair<const char*, const char*> rows[] = {
      {"Warning: %s", "Warning: 50%n"}, {"%s %s %n", "50%n  %n"},  // more than there are arguments
  };
  for (const auto& [format, text] : rows) {
    CMessageService::SetReportFormats("", format, "");
    CMessageService::ReportWarning("50%n");
    EXPECT_EQ(m_host.boxes.back().text, text);
    EXPECT_EQ(m_host.boxes.back().style, BOX_ICON_INFORMATION);
  }
}

TEST_F(MessageService, FatalReportsEndTheProcess) {
  CHostServices::Set(nullptr);  // the headless default prints to standard error
  CMessageService::SetReportFormats("I(%s:%d) %s", "", "E(%s:%d) %s");
  const auto exited = testing::ExitedWithCode(1);
  using testing::HasSubstr;
  EXPECT_EXIT(CMessageService::ReportInternalError("c:\\work\\block.cpp", 12, "lost"), exited,
              HasSubstr("I(block.cpp:12) lost"));
  EXPECT_EXIT(CMessageService::ReportEnvironmentError("/work/block.cpp", 12, "lost"), exited,
              HasSubstr("E(/work/block.cpp:12) lost"));  // only backslashes are cut at
  GblClientConnected = 1;
  EXPECT_EXIT(CMessageService::ReportInternalError("block.cpp", 12, "lost"), exited,
              testing::IsEmpty());
}

}  // namespace
}  // namespace quillpg
