#include "base/text.h"
#include "program/clipboard_info.h"
#include "support/instrument_fixture.h"
#include "support/program_builder.h"

#include <gmock/gmock.h>

namespace quillpg {
namespace {

using namespace testing;  // matchers

std::string_view NameOf(const EVENT_DEFINITION& row) { return row.Pattern(); }
std::string_view NameOf(const SUBSEQUENCE_LINE& line) { return line.GetOutput(); }

template <typename At>
std::string Join(At&& at) {
  std::string text;
  for (int i = 0; const auto* object = at(i); ++i) text.append(NameOf(*object)) += ' ';
  return text;
}

// Two instruments of one module each; whatever is pasted goes from A to B unless a test says
// otherwise.
class Paste : public ::testing::Test, public CEngineFixture {
 protected:
  Paste() : CEngineFixture(2) {
    (void)Server().DefaultSystem();
    (void)Server().SetDefaultChannelValue('\0');
    m_source.instrument = &A();
    m_target.instrument = &B();
    (void)B().SetEventHandler(&m_handler);
    (void)info.SetSourceWnd(&m_source);
    (void)info.SetTargetWnd(&m_target);
  }
  ~Paste() override { (void)Instruments().DeleteAll(); }

  CInstrument& A(int position = 0) { return *Instrument(position); }
  CInstrument& B() { return A(1); }
  static CGroupManager& GroupsOf(CInstrument& instrument) {
    return *CProgramView(instrument).Groups();
  }

  Status Run(ContentType type, int first, int last) {
    info.contentType = type;
    info.sourceFirst = first;
    info.sourceLast = last;
    return Server().Paste(&info);
  }
  // The names of one list; of the first event, of the first subsequence, what their rows say.
  std::string Show(CInstrument& instrument, ContentType type) {
    const CProgramView program(instrument);
    switch (type) {
      case ContentType::Block:
        return Join([&](int i) { return program.BlockAt(i); });
      case ContentType::Event:
        return Join([&](int i) { return program.EventAt(i); });
      case ContentType::SequenceLine:
        return Join([&](int i) { return program.LineAt(i); });
      case ContentType::SubSequence:
        return Join([&](int i) { return program.SubSequenceAt(i); });
      case ContentType::EventDef:
        return Join(
            [&](int i) { return Find(*program.EventAt(0), &EVENT::GetEventDefinition, i); });
      default:
        return Join([&](int i) {
          return Find(*program.SubSequenceAt(0), &SUBSEQUENCE::GetSubSequenceLine, i);
        });
    }
  }
  // Everything that a refused paste might have touched.
  std::string Everything() {
    std::string text;
    for (const int type : {3, 4, 5, 6, 7, 8}) text += Show(B(), static_cast<ContentType>(type));
    return text + Values(B(), 0, 0, 4) + Values(B(), 1, 0, 4);
  }
  // Hexadecimal values of a group.
  std::string Values(CInstrument& instrument, int group, int first, int count, int block = 0) {
    std::string text;
    const std::string name = Ask(GroupsOf(instrument), &CGroupManager::GetGroupName, group);
    for (int i = first; i < first + count; ++i) {
      std::string value;
      (void)instrument.GetGroupData(name, block, i, Radix::Hex, value);
      text += value + ' ';
    }
    return text;
  }
  // A group of `channels` neighbouring channels from `first` on.
  static void Group(CInstrument& instrument, const std::string& name, int first, int channels) {
    (void)GroupsOf(instrument).AddGroup(name);
    for (int i = channels; i-- > 0;) (void)instrument.AddChannelToGroup(name, first + i, -1);
  }
  void Write(const std::string& group, const std::vector<std::string>& values) {
    int vector = 0;
    for (const std::string& value : values) {
      (void)A().SetGroupData(group, 0, vector++, Radix::Hex, value);
    }
  }
  void ClearModified() {
    const CProgramView program(B());
    (void)program.Blocks()->SetModified(0);
    for (int i = 0; i < program.BlockCount(); ++i) (void)program.BlockAt(i)->SetChanged(0);
  }

  CRecordingEventHandler m_handler;
  CGrid m_source;
  CGrid m_target;
  CClipboardInfo info;
};

// --- lists ---

void FillLists(CInstrument& instrument, bool source) {
  CProgramBuilder build(instrument);
  if (source) {
    build.Block("a").Block("b").Block("c").Line({"a", 1, "x"}).Line({"b", 2}).Line({"c", 3, "y"});
    build.Sub("s", {{"a", 1}, {"b", 2}, {"c", 3}}).Sub("t", {}).Sub("u", {});
    build.Event("e", {"100000000", "110000000", "111000000"}).Event("f", {}).Event("g", {});
  } else {
    build.Block("B").Block("U").Line({"B", 1, "X"}).Line({"U", 2, "Line1"});
    build.Sub("C", {{"B", 1}}).Sub("T", {}).Event("F", {"000000000"}).Event("event1", {});
  }
}

TEST_F(Paste, PutsObjectsIntoLists) {
  const struct {
    ContentType type;
    int first, last, insert, at;
    const char* list;
    const char* notified;  // how each notification begins
    bool within = false;   // A is the target, too: the copies are those of the list as it was
  } rows[] = {
      // a block's name must be free among blocks and subsequences
      {ContentType::Block, 0, 2, 1, 0, "a Block1 Block2 B U ", "OnBlockListChanged("},
      {ContentType::Block, 0, 0, 0, 0, "B U a ", "OnBlockListChanged(a,2,0)"},  // appends
      {ContentType::Event, 0, 2, 1, 1, "F e Event2 g event1 ", "OnEventListChanged()"},
      {ContentType::SequenceLine, 0, 2, 1, 1, "X Line2  y Line1 ", ""},  // an empty label stays
      {ContentType::SubSequence, 0, 2, 1, 1, "C s SubSeq1 SubSeq2 T ", ""},
      {ContentType::EventDef, 1, 2, 1, 0, "110000000 111000000 000000000 ", ""},
      {ContentType::SubSequenceDef, 0, 1, 0, 0, "B a b ", ""},
      {ContentType::Block, 0, 2, 1, 1, "a Block1 Block2 Block3 b c ", "", true},
      {ContentType::EventDef, 0, 1, 1, 1, "100000000 100000000 110000000 110000000 111000000 ", "",
       true},
      {ContentType::SubSequenceDef, 0, 2, 1, 1, "a a b c b c ", "", true},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(FormatText("%d %d-%d %d %d",
                            {static_cast<int>(row.type), row.first, row.last, row.insert, row.at}));
    FillLists(A(), true);
    FillLists(B(), false);
    m_target.instrument = &A(row.within ? 0 : 1);
    const std::string source = Show(A(), row.type);
    m_handler.events.clear();
    info.insert = row.insert;
    info.targetFirst = row.at;
    EXPECT_EQ(Run(row.type, row.first, row.last), S_OK);
    EXPECT_EQ(Show(*m_target.instrument, row.type), row.list);
    EXPECT_TRUE(row.within || Show(A(), row.type) == source);
    const bool silent = row.notified[0] == '\0';
    EXPECT_THAT(m_handler.events,
                SizeIs(silent ? 0u : static_cast<std::size_t>(row.last - row.first + 1)));
    EXPECT_THAT(m_handler.Take(), Each(StartsWith(row.notified)));
  }
  EXPECT_THAT(Host().boxes, IsEmpty());
  EXPECT_EQ(Host().cursorDepth, 0);
}

TEST_F(Paste, TakesTheWholeObjectAlong) {
  FillLists(A(), true);
  FillLists(B(), false);
  info.insert = 0;
  CProgramView a(A());
  CProgramView b(B());
  (void)A().SetGroupData("UserGrp1", 1, 39, Radix::Hex, "BEEF");
  (void)GroupsOf(B()).SetGroupName(1, "Other");
  (void)a.Blocks()->SetReferencePos(1, 7, 1);
  ASSERT_EQ(Run(ContentType::Block, 1, 1), S_OK);
  BLOCK& block = *b.BlockAt(2);
  EXPECT_TRUE(block.IsChanged());
  std::string text;
  (void)B().GetGroupData("UserGrp1", 2, 39, Radix::Hex, text);
  EXPECT_EQ(text, "BEEF");
  EXPECT_EQ(block.GetListingState().firstReference, 7);
  GROUP_STATE* state = nullptr;
  EXPECT_FALSE(block.GetGroupState("UserGrp2", &state));  // the target's groups, not the source's
}

TEST_F(Paste, RefusesWithNothingChanged) {
  FillLists(A(), true);
  FillLists(B(), false);
  for (CInstrument* instrument : {&A(), &B()}) {
    (void)GroupsOf(*instrument).DeleteAll();
    Group(*instrument, "Data", 0, 8);
    Group(*instrument, "Bus", 8, 4);
  }
  m_handler.events.clear();
  const std::string before = Everything();
  ClearModified();
  info.sourceFirstColumn = info.sourceLastColumn = 0;
  info.targetFirst = info.targetFirstColumn = 0;
  const auto refuses = [&](int type, int first, int last, bool notice) {
    SCOPED_TRACE(FormatText("%d %d-%d", {type, first, last}));
    Host().boxes.clear();
    EXPECT_EQ(Run(static_cast<ContentType>(type), first, last), E_FAIL);
    EXPECT_THAT(Host().boxes, SizeIs(notice ? 1u : 0u));
  };
  refuses(3, 1, 0, false);
  refuses(7, -2147483647, 2, false);
  refuses(9, 0, 40, false);
  using I = CClipboardInfo;
  const std::tuple<int, int I::*, int, bool> rows[] = {
      {5, &I::targetItem, 2, true},
      {8, &I::sourceItem, -1, true},
      {9, &I::targetFirst, 40, false},
      {13, &I::targetFirst, -2147483647, false},
      {10, &I::targetFirstColumn, 2, false},
      {11, &I::sourceLastColumn, 64, false},
      {13, &I::targetFirstColumn, -2147483647, false},
  };
  for (const auto& [type, field, value, notice] : rows) {
    const int kept = std::exchange(info.*field, value);
    refuses(type, 0, 0, notice);
    info.*field = kept;
  }
  EXPECT_EQ(Everything(), before);
  EXPECT_THAT(m_handler.events, IsEmpty());
  EXPECT_EQ(CProgramView(B()).Blocks()->IsModified(), 0);
  // Grids that show nothing, and one that has outlived its instrument.
  CInstrument gone;
  for (CInstrument* shown : {static_cast<CInstrument*>(nullptr), &gone}) {
    Host().boxes.clear();
    m_source.instrument = shown;
    EXPECT_EQ(Run(ContentType::Block, 0, 0), E_FAIL);
    EXPECT_THAT(Host().BoxTexts(), ElementsAre(StartsWith("Internal Application error")));
  }
}

TEST_F(Paste, RefusesWhatDoesNotFitAsAWhole) {
  FillLists(A(), true);
  CProgramBuilder build(B());
  for (int i = 0; i < 6; ++i) build.Event(FormatText("E%d", {i}), {});
  EXPECT_EQ(Run(ContentType::Event, 0, 2), E_FAIL);
  EXPECT_EQ(CProgramView(B()).EventCount(), 6);
  EXPECT_EQ(Run(ContentType::Event, 0, 1), S_OK);
  (void)CProgramView(A()).BlockAt(1)->ResizeBlock(39, 0);  // below every instrument's minimum
  EXPECT_EQ(Run(ContentType::Block, 0, 2), E_FAIL);
  EXPECT_EQ(CProgramView(B()).BlockCount(), 0);
  EXPECT_EQ(Run(ContentType::Block, 2, 2), S_OK);
  EXPECT_THAT(Host().boxes, IsEmpty());
}

TEST_F(Paste, StopsWhenTheFrontEndDeletesTheTarget) {
  for (const ContentType type : {ContentType::Block, ContentType::Event}) {
    for (const int last : {1, 3}) {  // an empty slot on the way: a box
      (void)Server().DefaultSystem();
      m_source.instrument = &A();
      m_target.instrument = &B();
      CProgramBuilder(A()).Block("a").Block("b").Event("a", {}).Event("b", {});
      (void)CProgramView(A()).Blocks()->InsertBlock("d", 40, 3);
      (void)CProgramView(A()).Events()->InsertEvent(3, "d");
      (void)B().SetEventHandler(&m_handler);
      m_handler.onAny = [this] { (void)Instruments().DeleteInstrumentAt(1); };
      Host().onBox = m_handler.onAny;
      EXPECT_EQ(Run(type, 0, last), E_FAIL);
      int left = 0;
      (void)Instruments().GetNoOfInstruments(left);
      EXPECT_EQ(left, 1);
    }
  }
}

TEST_F(Paste, RefusesBlocksBetweenUnlikeInstruments) {
  (void)B().AddModule(&Module(0));
  EXPECT_EQ(Run(ContentType::Block, 0, 0), E_FAIL);
  ASSERT_EQ(B().SetChannelMode(ChannelMode::Half), S_OK);
  EXPECT_EQ(Run(ContentType::Block, 0, 0), E_FAIL);  // told first of the two
  EXPECT_THAT(Host().BoxTexts(), ElementsAre(StartsWith("The number of merged modules"),
                                             StartsWith("Channel mode mismatch.")));
  EXPECT_EQ(Host().boxes[0].style, BOX_OK);
  EXPECT_EQ(CProgramView(B()).BlockCount(), 1);
}

// --- pattern data ---

// Groups of 8 and 12 channels, four vectors of data in A.
class PasteData : public Paste {
 protected:
  PasteData() {
    Fill();
    Write("Lo", {"11", "22", "33", "44"});
    Write("Hi", {"F01", "F02", "F03", "F04"});
    m_handler.events.clear();
    info.targetFirst = 1;
    ClearModified();
  }
  void Fill() {
    for (CInstrument* instrument : {&A(), &B()}) {
      (void)GroupsOf(*instrument).DeleteAll();
      CProgramBuilder(*instrument).Block("a", 40).Block("b", 40);
    }
    Group(A(), "Lo", 0, 8);
    Group(A(), "Hi", 20, 12);
  }
};

TEST_F(PasteData, WritesRowsOfAllGroups) {
  Group(B(), "One", 40, 8);
  Group(B(), "Two", 0, 12);
  EXPECT_EQ(Run(ContentType::Rows, 1, 2), S_OK);
  EXPECT_EQ(Values(B(), 0, 0, 4), "00 22 33 00 ");
  EXPECT_EQ(Values(B(), 1, 0, 4), "000 F02 F03 000 ");
  EXPECT_THAT(m_handler.Take(), ElementsAre("OnPatternDataChanged(0)"));
  EXPECT_EQ(CProgramView(B()).Blocks()->IsModified(), 1);
  EXPECT_TRUE(CProgramView(B()).BlockAt(0)->IsChanged());
  info.targetFirst = 38;
  EXPECT_EQ(Run(ContentType::Rows, 0, 39), S_OK);  // cut at the target's end
  EXPECT_EQ(Values(B(), 0, 36, 4), "00 00 11 22 ");
  m_target.instrument = &A();  // rows that overlap are read first
  info.targetFirst = 1;
  EXPECT_EQ(Run(ContentType::Rows, 0, 3), S_OK);
  EXPECT_EQ(Values(A(), 0, 0, 6), "11 11 22 33 44 00 ");
}

TEST_F(PasteData, ClearsWhatAWideTargetHasMore) {
  const auto wide = [](CInstrument& instrument, const std::string& name) {
    GROUP* group = nullptr;
    Group(instrument, name, 56, 8);
    (void)GroupsOf(instrument).GetGroup(name, &group);
    for (int i = 64; i-- > 0;) (void)group->AddChannel(i, -1);
  };
  wide(A(), "Wide");
  Group(A(), "Slim", 0, 8);
  wide(B(), "One");
  wide(B(), "Two");
  Write("Wide", {"FFFFFFFFFFFFFFFFFF"});
  info.sourceFirstColumn = 2;
  info.sourceLastColumn = 3;
  info.targetFirst = info.targetFirstColumn = 0;
  EXPECT_EQ(Run(ContentType::GroupColumn, 0, 0), S_OK);
  EXPECT_EQ(Values(B(), 1, 0, 1), "0000000000000000FF ");
}

TEST_F(PasteData, AsksBeforeSizesDiffer) {
  Group(B(), "One", 40, 4);
  Group(B(), "Two", 0, 16);
  (void)B().SetGroupData("Two", 0, 1, Radix::Hex, "FFFF");
  ClearModified();
  Host().answers = {ANSWER_NO};
  EXPECT_EQ(Run(ContentType::Rows, 0, 0), PG_E_ABORTED);
  EXPECT_EQ(Values(B(), 0, 1, 1), "0 ");
  Host().answers = {ANSWER_YES};
  EXPECT_EQ(Run(ContentType::Rows, 0, 0), S_OK);
  EXPECT_EQ(Values(B(), 0, 1, 1), "1 ");     // the last channels meet
  EXPECT_EQ(Values(B(), 1, 1, 1), "0F01 ");  // and those without counterpart are cleared
  EXPECT_THAT(Host().BoxTexts(), Each(StartsWith("Group size mismatch.")));
  Host().boxes.clear();
  Group(B(), "Three", 50, 1);
  EXPECT_EQ(Run(ContentType::Rows, 0, 0), E_FAIL);
  EXPECT_THAT(Host().BoxTexts(), ElementsAre(StartsWith("The number of columns are different")));
}

TEST_F(PasteData, WritesColumnsAfterAllQuestions) {
  Group(B(), "Same", 32, 8);
  Group(B(), "Wide", 40, 16);
  Group(B(), "Slim", 0, 4);
  info.sourceFirstColumn = 0;
  info.sourceLastColumn = 1;
  info.targetFirstColumn = 1;
  Host().answers = {ANSWER_YES, ANSWER_NO};
  EXPECT_EQ(Run(ContentType::GroupColumn, 0, 1), PG_E_ABORTED);
  EXPECT_THAT(
      Host().BoxTexts(),
      ElementsAre("The group size of Lo and Wide are different. Do you want to proceed anyway ?",
                  "The group size of Hi and Slim are different. Do you want to proceed anyway ?"));
  EXPECT_EQ(Values(B(), 1, 0, 4), "0000 0000 0000 0000 ");
  EXPECT_EQ(Run(ContentType::GroupColumn, 0, 1), S_OK);
  EXPECT_EQ(Values(B(), 1, 0, 4), "0000 0011 0022 0000 ");
  EXPECT_THAT(m_handler.Take(), ElementsAre("OnPatternDataChanged(0)"));
}

// The front end runs while a box stands: nothing may be written to what it removes then.
TEST_F(PasteData, LooksEverythingUpAgainAfterABox) {
  const struct {
    const char* story;
    std::function<void()> act;
    Status status;
  } rows[] = {
      {"the target shrinks", [&] { (void)CProgramView(B()).BlockAt(0)->ResizeBlock(2, 0); }, S_OK},
      {"the source shrinks", [&] { (void)CProgramView(A()).BlockAt(0)->ResizeBlock(2, 0); },
       E_FAIL},
      {"the groups move up",
       [&] {
         for (CInstrument* instrument : {&A(), &B()}) (void)GroupsOf(*instrument).DeleteGroup(0);
       },
       E_FAIL},
      {"the last target group goes", [&] { (void)GroupsOf(B()).DeleteGroup(1); }, E_FAIL},
      {"the blocks move up", [&] { (void)CProgramView(B()).Blocks()->DeleteBlock(0, 1); }, E_FAIL},
      {"the target's data goes", [&] { (void)CProgramView(B()).Blocks()->DeleteAll(); }, E_FAIL},
      {"the target goes", [&] { (void)Instruments().DeleteInstrumentAt(1); }, E_FAIL},
  };
  info.targetFirst = info.targetFirstColumn = info.sourceFirstColumn = 0;
  info.sourceLastColumn = 1;
  for (const auto& row : rows) {
    for (const ContentType type : {ContentType::Rows, ContentType::GroupColumn}) {
      SCOPED_TRACE(FormatText("%s %d", {row.story, static_cast<int>(type)}));
      (void)Server().DefaultSystem();
      m_source.instrument = &A();
      m_target.instrument = &B();
      Fill();
      Group(B(), "One", 40, 4);
      Group(B(), "Two", 0, 16);
      (void)B().SetEventHandler(&m_handler);
      Host().onBox = row.act;
      EXPECT_EQ(Run(type, 0, 39), row.status);
      Host().onBox = nullptr;
      const bool written = row.status == S_OK;
      EXPECT_THAT(m_handler.Take(), Contains("OnPatternDataChanged(0)").Times(written ? 1 : 0));
    }
  }
}

TEST_F(PasteData, WritesChannelColumns) {
  Group(B(), "End", 56, 8);
  info.targetItem = 1;
  info.sourceFirstColumn = 0;
  info.sourceLastColumn = 7;
  info.targetFirstColumn = 60;  // four channels are left there
  EXPECT_EQ(Run(ContentType::ChannelColumn, 0, 3), S_OK);
  EXPECT_THAT(m_handler.Take(), ElementsAre("OnPatternDataChanged(1)"));
  EXPECT_EQ(Values(B(), 0, 1, 4, 1), "10 20 30 40 ");
}

}  // namespace
}  // namespace quillpg
