#include "program/waveform_manager.h"

#include "base/enum_text.h"
#include "base/text.h"
#include "instrument/instrument.h"
#include "program/block_manager.h"
#include "program/clipboard_info.h"
#include "program/group_manager.h"
#include "support/instrument_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpg {
namespace {

using testing::ElementsAre;

// Groups of 0, 3 and 2 channels, two blocks.
class WaveformManager : public testing::Test, public CInstrumentFixture {
 protected:
  WaveformManager() {
    (void)Groups().DeleteAll();
    for (const char* name : {"None", "Data", "Bus"}) (void)Groups().AddGroup(name);
    for (const int channel : {10, 1, 0}) {
      (void)Instrument().AddChannelToGroup("Data", channel, -1);
    }
    for (const int channel : {63, 62}) (void)Instrument().AddChannelToGroup("Bus", channel, -1);
    (void)Blocks().DeleteAll();
    (void)Blocks().AddBlock("a", 64);
    (void)Blocks().AddBlock("b", 64);
  }
  CWaveformManager& Rows(int block) {
    BLOCK* found = nullptr;
    (void)Blocks().GetBlock(block, &found);
    return *found->GetWaveformManager();
  }
  std::vector<std::string> Show(int block) {
    std::vector<std::string> rows;
    CWaveformData* row = nullptr;
    for (int i = 0; Rows(block).GetWaveformData(i, &row) == S_OK; ++i) {
      rows.push_back(FormatText(
          "%d %d %s %d %s",
          {ToInt(row->waveType), row->channel, row->channelName, row->groupIndex, row->groupName}));
    }
    return rows;
  }
};

TEST_F(WaveformManager, ShowsEveryGroupThatHasChannels) {
  EXPECT_THAT(Show(0), ElementsAre("0 -1  1 Data", "1 10 A1(2) 1 Data", "1 1 A0(1) 1 Data",
                                   "1 0 A0(0) 1 Data", "0 -1  2 Bus", "1 63 D1(7) 2 Bus",
                                   "1 62 D1(6) 2 Bus"));
  std::uint64_t size = 0;
  EXPECT_EQ(Rows(0).GetSize(size), S_OK);
  EXPECT_EQ(size, 4u + 7 * 30u + 4 * 4u + 3 * 3u + 5 + 4 * 5u);
  EXPECT_EQ(Rows(0).GetWaveType(-1), WaveType::NoRow);
  EXPECT_EQ(Rows(0).IsChannelRow(-1), 1);
  EXPECT_EQ(Rows(0).IsChannelRow(0), 0);
}

TEST_F(WaveformManager, KeepsItsRowsUntilAsked) {
  (void)Groups().DeleteGroup(1);
  EXPECT_EQ(Rows(0).Initialize(&Instrument()), S_OK);  // there are rows: nothing is built
  EXPECT_EQ(Show(0).size(), 7u);
  EXPECT_EQ(Rows(0).UpdateWaveformList(), S_OK);
  EXPECT_EQ(Show(0).size(), 3u);
  EXPECT_EQ(Show(1).size(), 7u);  // each block for itself
  (void)Groups().SetGroupName(1, "Renamed");
  (void)Rows(1).UpdateWaveformList();
  EXPECT_EQ(Show(1).front(), "0 -1  1 Renamed");
  EXPECT_EQ(Rows(0).Initialize(nullptr), E_FAIL);
}

// Equal row lists are stored once: no block may see what was done to another.
TEST_F(WaveformManager, ChangesTheRowsOfOneBlockOnly) {
  CWaveformData* row = nullptr;
  ASSERT_EQ(Rows(0).GetWaveformData(0, &row), S_OK);
  row->flag = 77;
  ASSERT_EQ(Rows(1).GetWaveformData(0, &row), S_OK);
  EXPECT_EQ(row->flag, 1);
  EXPECT_EQ(Rows(0).DeleteWaveformData(0, 6), S_OK);
  EXPECT_EQ(Rows(0).AddWaveformData(std::make_unique<CWaveformData>()), S_OK);
  EXPECT_EQ(Show(0).size(), 2u);
  EXPECT_EQ(Show(1).size(), 7u);
  (void)Blocks().AddBlock("c", 64);
  EXPECT_EQ(Show(2).size(), 7u);
  EXPECT_EQ(Rows(1).DeleteAll(), S_OK);
  EXPECT_EQ(Rows(1).IsEmpty(), 1);
  EXPECT_EQ(Rows(2).IsEmpty(), 0);
}

TEST_F(WaveformManager, FollowsTheInhibitControls) {
  ASSERT_EQ(Instrument().SetInhibitByPodD(0, 3, 1), S_OK);
  ASSERT_EQ(Instrument().SetInhibitByPodD(0, 0, 1), S_OK);
  for (const int block : {0, 1}) {
    SCOPED_TRACE(block);
    ASSERT_EQ(Show(block).size(), 9u);
    EXPECT_EQ(Show(block)[7], "2 55 INHBD -1 ");  // rows that exist keep their places
    EXPECT_EQ(Show(block)[8], "2 52 INHBA -1 ");
  }
  EXPECT_EQ(Rows(0).IsInhibitControlExists("inhba"), 1);
  EXPECT_EQ(Rows(0).IsInhibitControlExists(0), 0);
  EXPECT_EQ(Rows(0).IsInhibitControl("INHBB"), 0);
  EXPECT_EQ(Rows(0).AddInhibitControl("INHBB"), E_FAIL);
  CWaveformData data;
  EXPECT_EQ(Rows(0).GetInhibitControlData("INHBA", data), S_OK);
  EXPECT_EQ(data.channel, 52);
  EXPECT_EQ(Rows(0).GetInhibitControlData(0, data), E_FAIL);
  ASSERT_EQ(Instrument().SetInhibitByPodD(0, 3, 0), S_OK);
  EXPECT_EQ(Show(0).back(), "2 52 INHBA -1 ");
  EXPECT_EQ(Show(1).size(), 8u);
  EXPECT_EQ(Rows(1).DeleteWaveformData(7, 1), S_OK);
  EXPECT_EQ(Rows(1).AddInhibitControl("inhba"), S_OK);
  EXPECT_EQ(Rows(1).AddInhibitControl("inhba"), S_OK);  // there already
  EXPECT_EQ(Show(1).size(), 8u);
}

TEST(ClipboardInfo, PastesOnlyWhatWasCopied) {
  CClipboardInfo clipboard;
  EXPECT_EQ(clipboard.CanEnableCopy(), 1);
  EXPECT_EQ(clipboard.CanEnablePaste(), 0);
  clipboard.contentType = ContentType::Instrument;  // value 0 is something, too
  clipboard.insert = 0;
  EXPECT_EQ(clipboard.CanEnablePaste(), 1);
  (void)clipboard.Initialize();
  EXPECT_EQ(clipboard.CanEnablePaste(), 0);
  EXPECT_EQ(clipboard.insert, 1);
}

}  // namespace
}  // namespace quillpg
