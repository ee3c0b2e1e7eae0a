#include "base/enum_text.h"
#include "base/text.h"
#include "program/waveform_manager.h"
#include "support/instrument_fixture.h"

#include <gmock/gmock.h>

namespace quillpg {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Two blocks whose rows are: groups Data (channels 10 1 0) and Bus (63 62), an inhibit row. Written
// D A10 A1 A0 B 63 62 I: a group row by its first letter, a channel row by its number.
class WaveformEditing : public testing::Test, public CInstrumentFixture {
 protected:
  WaveformEditing() {
    (void)Groups().DeleteAll();
    for (const char* name : {"Data", "Bus"}) (void)Groups().AddGroup(name);
    for (const int channel : {10, 1, 0}) {
      (void)Instrument().AddChannelToGroup("Data", channel, -1);
    }
    for (const int channel : {63, 62}) (void)Instrument().AddChannelToGroup("Bus", channel, -1);
    (void)Server().SetDefaultChannelValue('\0');
    (void)Blocks().DeleteAll();
    (void)Blocks().AddBlock("a", 64);
    (void)Blocks().AddBlock("b", 64);
    (void)Instrument().SetInhibitByPodD(0, 0, 1);
    Handler().events.clear();
  }
  CWaveformManager& Rows(int block = 0) { return *BlockAt(block).GetWaveformManager(); }
  std::string Show(int block = 0) {
    std::string text;
    for (int i = 0; const CWaveformData* row = Rows(block).Row(i); ++i) {
      if (i > 0) text += ' ';
      if (row->waveType == WaveType::Group) text += row->groupName.substr(0, 1);
      if (row->waveType == WaveType::Channel) AppendNumber(text, row->channel);
      if (row->waveType == WaveType::Inhibit) text += 'I';
    }
    return text;
  }
  void Write(const std::string& group, int vector, const std::string& hex) {
    (void)Instrument().SetGroupData(group, 0, vector, Radix::Hex, hex);
  }
};

TEST_F(WaveformEditing, MovesRows) {
  struct ROW {
    const char* what;
    int a, b, count;
    Status status;
    const char* rows;
  };
  const char* const kept = "D 10 1 0 B 63 62 I";
  const ROW rows[] = {
      {"swap", 0, 2, 0, S_OK, "10 1 D 0 B 63 62 I"},  // one row moves, no exchange
      {"swap", 0, 7, 0, S_OK, "10 1 0 B 63 62 I D"},  // the last position appends
      {"swap", 0, 8, 0, E_FAIL, kept},
      {"move", 0, 3, 4, S_OK, "B 63 62 D 10 1 0 I"},  // position in the shortened list
      {"move", 1, 99, 2, S_OK, "D 0 B 63 62 I 10 1"},
      {"move", 6, 0, 3, E_FAIL, kept},  // one row short
      {"move", 2147483647, 0, 2147483647, E_FAIL, kept},
  };
  for (const ROW& row : rows) {
    SCOPED_TRACE(FormatText("%s %d %d %d", {row.what, row.a, row.b, row.count}));
    ASSERT_EQ(Rows().UpdateWaveformList(), S_OK);
    const std::string what = row.what;
    Status status = what == "swap" ? Rows().Swap(row.a, row.b) : S_OK;
    if (what == "move") status = Rows().Move(row.a, row.b, row.count);
    EXPECT_EQ(status, row.status);
    EXPECT_EQ(Show(), row.rows);
    EXPECT_EQ(Show(1), kept);
  }
}

TEST_F(WaveformEditing, PastesWhatWasCutOnce) {
  EXPECT_EQ(Rows().CanPaste(), E_FAIL);
  ASSERT_EQ(Rows().Cut(0), S_OK);
  EXPECT_EQ(Rows().Paste(7), E_FAIL);  // before a row that exists only
  EXPECT_EQ(Rows().Paste(2), S_OK);
  EXPECT_EQ(Rows().Paste(2), E_FAIL);  // there again
  EXPECT_EQ(Show(), "10 1 D 0 B 63 62 I");
  ASSERT_EQ(Rows().Cut(0), S_OK);
  (void)Rows().DeleteAll();
  EXPECT_EQ(Rows().CanPaste(), S_OK);  // the cut row outlives the list
  EXPECT_EQ(Rows().Paste(0), E_FAIL);  // but there is no row to paste before
}

// Equal row lists are stored once: no block may see what was done to another.
TEST_F(WaveformEditing, ChangesTheRowsOfOneBlockOnly) {
  Find(Rows(0), &CWaveformManager::GetWaveformData, 0)->flag = 77;
  EXPECT_EQ(Find(Rows(1), &CWaveformManager::GetWaveformData, 0)->flag, 1);
  EXPECT_EQ(Rows(0).DeleteWaveformData(0, 6), S_OK);
  EXPECT_EQ(Rows(0).SetGroupName("Bus", "Word"), S_OK);
  EXPECT_EQ(Show(0), "62 I");
  EXPECT_EQ(Rows(0).Row(0)->groupName, "Word");
  EXPECT_EQ(Show(1), "D 10 1 0 B 63 62 I");
  EXPECT_EQ(Rows(1).Row(6)->groupName, "Bus");
}

TEST_F(WaveformEditing, FollowsGroupsWhenAskedAndInhibitControlsAtOnce) {
  (void)Groups().DeleteGroup(0);
  EXPECT_EQ(Rows(0).Initialize(&Instrument()), S_OK);  // there are rows: nothing is built
  EXPECT_EQ(Rows(1).UpdateWaveformList(), S_OK);
  ASSERT_EQ(Instrument().SetInhibitByPodD(0, 3, 1), S_OK);
  EXPECT_EQ(Show(0), "D 10 1 0 B 63 62 I I");
  EXPECT_EQ(Show(1), "B 63 62 I I");
  EXPECT_EQ(Rows(1).Row(4)->channelName, "INHBD");  // rows that exist keep their places
  ASSERT_EQ(Instrument().SetInhibitByPodD(0, 0, 0), S_OK);
  EXPECT_EQ(Rows(1).Row(3)->channelName, "INHBD");
  EXPECT_EQ(Rows(1).AddInhibitControl("INHBB"), E_FAIL);
}

TEST_F(WaveformEditing, AddsRowsByName) {
  (void)Instrument().SetChannelName(1, "Strobe");
  const struct {
    const char* name;
    int type;
    int first, count;  // rows deleted before
    Status status;
    const char* rows;
  } rows[] = {
      {" a0(1) ", 1, 2, 1, S_OK, "D 10 0 1 B 63 62 I"},   // after the last row of its group
      {"Strobe", 1, 0, 4, S_OK, "1 B 63 62 I"},           // where its group would begin
      {"B0(0)", 1, 0, 0, S_OK, "D 10 1 0 B 63 62 16 I"},  // in no group
      {"Strobe", 1, 0, 0, S_OK, "D 10 1 0 B 63 62 I"},    // there already
      {"data", 0, 0, 4, S_OK, "D B 63 62 I"},             // without its channels
      {"Bus", 0, 4, 3, S_OK, "D 10 1 0 B I"},
      {"INHBB", 2, 0, 0, E_FAIL, "D 10 1 0 B 63 62 I"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(FormatText("%s %d %d %d", {row.name, row.type, row.first, row.count}));
    ASSERT_EQ(Rows().UpdateWaveformList(), S_OK);
    ASSERT_EQ(Rows().DeleteWaveformData(row.first, row.count), S_OK);
    EXPECT_EQ(Rows().AddWaveformData(row.name, static_cast<SelectWfmType>(row.type), 42),
              row.status);
    EXPECT_EQ(Show(), row.rows);
  }
  (void)Rows().DeleteWaveformData(0, 4);
  (void)Rows().AddWaveformData("Strobe", SelectWfmType::Channel, 42);
  EXPECT_EQ(Rows().Row(0)->channelName, "A0(1)");  // never the user's name
  EXPECT_EQ(Rows().Row(0)->groupName, "Data");
  EXPECT_EQ(Rows().Row(0)->reserved, 42);
}

// Look-ups answer from an index: no way of changing rows may leave it behind.
TEST_F(WaveformEditing, FindsRowsAfterEveryChange) {
  const auto find = [this](const char* name) {
    int row = -1;
    (void)Rows().GetRowFromChannel(name, row);
    return row;
  };
  EXPECT_EQ(find("A0(0)"), 3);
  (void)Rows().MoveUp(3);
  EXPECT_EQ(find("A0(0)"), 2);
  (void)Rows().Cut(0);
  EXPECT_EQ(find("A0(0)"), 1);
  (void)Rows().Paste(0);
  EXPECT_EQ(find("A0(0)"), 2);
  (void)Rows().SetChannelName("Clock", 0);
  EXPECT_EQ(find("A0(0)"), -1);
  EXPECT_EQ(find("clock"), 2);
  (void)Rows().SetChannelName("", 0);
  EXPECT_EQ(find("A0(0)"), 2);
  CWaveformData* row = Find(Rows(), &CWaveformManager::GetWaveformData, 1);
  EXPECT_EQ(find("A0(0)"), 2);
  row->channelName = "A0(0)";  // behind the manager's back; the first row counts
  EXPECT_EQ(find("A0(0)"), 1);
  (void)Rows().UpdateWaveformList();
  EXPECT_EQ(find("A0(0)"), 3);
}

// --- pattern data ---

TEST_F(WaveformEditing, MarksInhibitedDigits) {
  // Pod A's outputs follow channel 52; pod C's are never inhibited. Data takes channels of A alone,
  // Mixed two channels of C, then eight of A, so that its digits are inhibited in part and wholly.
  ASSERT_EQ(Groups().AddGroup("Mixed"), S_OK);
  for (const int channel : {32, 33}) (void)Instrument().AddChannelToGroup("Mixed", channel, -1);
  ASSERT_EQ(Instrument().AddSectionToGroup("Mixed", 0, -1), S_OK);
  Write("Mixed", 0, "25A");
  Write("Mixed", 1, "25A");
  (void)Instrument().SetChannelData(52, 0, 1, 1);
  const struct {
    int group, vector;
    Radix radix;
    Status status;
    const char* text;
  } rows[] = {
      {2, 0, Radix::Hex, S_OK, "25A"},     {2, 1, Radix::Hex, S_OK, "2ZZ"},
      {2, 1, Radix::Octal, S_OK, "1?ZZ"},  {2, 1, Radix::Binary, S_OK, "10ZZZZZZZZ"},
      {2, 1, Radix::Decimal, S_OK, "602"}, {0, 1, Radix::Hex, S_OK, "?"},  // a short digit
      {0, 1, Radix::Octal, S_OK, "Z"},     {1, 1, Radix::Binary, S_OK, "00"},
      {3, 1, Radix::Hex, E_FAIL, "kept"},  {-1, 1, Radix::Hex, E_FAIL, "kept"},
      {2, 64, Radix::Hex, S_OK, "000"},    {2, 0, static_cast<Radix>(4), E_FAIL, ""},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(FormatText("%d %d %d", {row.group, row.vector, ToInt(row.radix)}));
    std::string text = "kept";
    EXPECT_EQ(Rows().GetGroupData(0, row.group, row.vector, row.radix, text), row.status);
    EXPECT_EQ(text, row.text);
  }
  // Channels in (block, channel, vector).
  int value = 9;
  EXPECT_EQ(Rows().GetChannelData(0, 1, 1, value), S_OK);
  EXPECT_EQ(value, -1);
}

TEST_F(WaveformEditing, TellsOfWritesWhateverBecameOfThem) {
  EXPECT_EQ(Rows(1).SetGroupData(0, 0, 3, Radix::Hex, "5", 2), S_OK);
  EXPECT_EQ(Rows().SetGroupData(1, 0, 0, static_cast<Radix>(9), "5", 0), E_FAIL);
  EXPECT_THAT(Handler().Take(), ElementsAre("OnPatternDataChanged(0)", "OnPatternDataChanged(1)"));
  EXPECT_EQ(Rows().SetGroupData(0, 2, 0, Radix::Hex, "5", 0), E_FAIL);  // no such group
  EXPECT_THAT(Handler().Take(), IsEmpty());
  EXPECT_EQ(Rows().SetChannelData(0, 63, 2, 1), S_OK);
  EXPECT_EQ(Rows().SetChannelData(7, 63, 2, 1), E_FAIL);
  EXPECT_THAT(Handler().Take(), ElementsAre("OnPatternDataChanged(0)", "OnPatternDataChanged(7)"));
  EXPECT_EQ(Rows().SetChannelInhibitMask(0, 3, 2, 1), S_OK);  // pod A's control channel
  EXPECT_THAT(Handler().Take(), IsEmpty());                   // masks are set in silence
  EXPECT_EQ(Bit(Instrument(), 52, 0, 2), 1);
}

}  // namespace
}  // namespace quillpg
