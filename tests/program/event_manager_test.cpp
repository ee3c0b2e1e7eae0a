#include "program/event_manager.h"

#include "support/recording_event_handler.h"

#include <climits>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quillpg {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// The events Trig, Stop and Go, nothing modified.
class EventManager : public testing::Test {
 protected:
  EventManager() {
    for (const char* name : {" Trig ", "Stop", "Go"}) (void)m_manager.AddEvent(name);
    (void)m_manager.SetModified(0);
    (void)m_manager.SetEventHandler(&m_handler);
  }
  EVENT* At(int index) {
    EVENT* event = nullptr;
    EXPECT_EQ(m_manager.GetEvent(index, &event), S_OK);  // also where there is none
    return event;
  }
  std::string Names() {
    int count = 0;
    (void)m_manager.GetNoOfEvents(count);
    std::string names;
    for (int i = 0; i < count; ++i) names += (At(i) ? At(i)->GetEventName() : "-") + " ";
    return names;
  }
  CEventManager m_manager;
  CRecordingEventHandler m_handler;
};

TEST_F(EventManager, TellsOfEveryChangeOfTheList) {
  const char kList[] = "OnEventListChanged()";
  struct Row {
    const char* what;
    Status (*change)(CEventManager&);
    Status status;
    std::vector<std::string> told;
    int modified;
  };
  const Row rows[] = {
      {"add", [](CEventManager& m) { return m.AddEvent("x"); }, S_OK, {kList}, 1},
      {"insert", [](CEventManager& m) { return m.InsertEvent(1, "x"); }, S_OK, {kList}, 1},
      {"insert event",
       [](CEventManager& m) { return m.InsertEvent(7, std::make_unique<EVENT>()); },
       S_OK,
       {kList},
       1},
      {"insert beyond", [](CEventManager& m) { return m.InsertEvent(8, "x"); }, E_FAIL, {}, 0},
      {"insert null",
       [](CEventManager& m) { return m.InsertEvent(-1, std::unique_ptr<EVENT>()); },
       S_OK,  // meant: the other managers refuse it
       {},
       0},
      {"move", [](CEventManager& m) { return m.MoveDown(0); }, S_OK, {kList}, 1},
      {"move the last", [](CEventManager& m) { return m.MoveDown(2); }, E_FAIL, {}, 0},
      {"delete all", [](CEventManager& m) { return m.DeleteAll(); }, S_OK, {}, 1},
      {"rename", [](CEventManager& m) { return m.SetEventName(0, " x"); }, S_OK, {kList}, 1},
      {"rename in place",
       [](CEventManager& m) { return m.SetEventName2(1, "x"); },
       S_OK,
       {"OnEventChanged(1)"},
       1},
      {"change case", [](CEventManager& m) { return m.SetEventName(0, "TRIG"); }, S_OK, {}, 0},
      {"rename nothing", [](CEventManager& m) { return m.SetEventName2(3, "x"); }, E_FAIL, {}, 0},
      {"set null", [](CEventManager& m) { return m.SetEvent(0, nullptr); }, E_FAIL, {}, 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    CEventManager manager;
    for (const char* name : {"Trig", "Stop", "Go"}) (void)manager.AddEvent(name);
    (void)manager.SetModified(0);
    (void)manager.SetEventHandler(&m_handler);
    EXPECT_EQ(row.change(manager), row.status);
    EXPECT_EQ(m_handler.Take(), row.told);
    EXPECT_EQ(manager.IsModified(), row.modified);
  }
}

TEST_F(EventManager, TellsOfDeletionsAfterThem) {
  std::string seen;
  m_handler.onAny = [&] { seen += Names() + "/ "; };
  EXPECT_EQ(m_manager.DeleteEvent(1, 3), E_FAIL);
  EXPECT_EQ(m_manager.DeleteEvent(1, 2), S_OK);
  EXPECT_EQ(seen, "Trig - Go / Trig - - / ");
  EXPECT_THAT(m_handler.Take(), ElementsAre("OnEventDeleted(Stop,1)", "OnEventDeleted(Go,1)"));
  EXPECT_EQ(Names(), "Trig ");
  EXPECT_EQ(m_manager.IsModified(), 1);
}

TEST_F(EventManager, SetEventTrimsTheCallersName) {
  EVENT given;
  (void)given.SetEventName(" New\t");
  (void)given.AddEventDefinition(std::make_unique<EVENT_DEFINITION>());
  EXPECT_EQ(m_manager.SetEvent(3, &given), E_FAIL);
  EXPECT_EQ(given.GetEventName(), " New\t");
  EXPECT_EQ(m_manager.SetEvent(1, &given), S_OK);
  EXPECT_EQ(given.GetEventName(), "New");
  EXPECT_EQ(Names(), "Trig New Go ");
  EXPECT_EQ(At(1)->GetNoOfEventDefinitions(), 1);
  EXPECT_THAT(m_handler.Take(), ElementsAre("OnEventListChanged()"));
  int value = 0;
  EXPECT_EQ(m_manager.FindEvent(" new ", value), S_OK);
  EXPECT_EQ(value, 1);
  EXPECT_EQ(m_manager.CountEvents(" NEW", value), S_OK);
  EXPECT_EQ(value, 1);
  EXPECT_EQ(m_manager.CountEvents(" ", value), E_FAIL);
}

TEST_F(EventManager, HoldsItsLimits) {
  for (int i = 3; i < MAX_EVENTS; ++i) ASSERT_EQ(m_manager.AddEvent(""), S_OK);
  EXPECT_EQ(m_manager.AddEvent(""), E_FAIL);
  auto event = std::make_unique<EVENT>();
  EXPECT_EQ(m_manager.InsertEvent(0, std::move(event)), E_FAIL);
  ASSERT_NE(event, nullptr);  // NOLINT(bugprone-use-after-move): meant
  for (int i = 0; i < MAX_EVENT_DEFINITIONS; ++i) {
    ASSERT_EQ(event->AddEventDefinition(std::make_unique<EVENT_DEFINITION>()), S_OK);
  }
  EXPECT_EQ(event->AddEventDefinition(std::make_unique<EVENT_DEFINITION>()), E_FAIL);
  EXPECT_EQ(event->GetSize(), 9u + 256u * 14u);
  EXPECT_EQ(At(MAX_EVENTS), nullptr);
}

TEST_F(EventManager, SeesChangesOnEveryLevel) {
  (void)At(2)->AddEventDefinition(std::make_unique<EVENT_DEFINITION>());
  EXPECT_EQ(m_manager.IsModified(), 1);
  (void)m_manager.SetModified(0);
  EXPECT_EQ(m_manager.IsModified(), 0);
  EVENT_DEFINITION* definition = nullptr;
  ASSERT_EQ(At(2)->GetEventDefinition(0, &definition), S_OK);
  (void)definition->SetEventDefBit(12, 'X');  // stores nothing, and marks all the same
  EXPECT_EQ(definition->Pattern(), "111111111");
  EXPECT_EQ(m_manager.IsModified(), 1);
  EXPECT_EQ(At(2)->GetEventDefinition(1, &definition), E_FAIL);
  EXPECT_EQ(At(2)->SetEventDefinition(1, definition), E_FAIL);
}

TEST(EventDefinition, PutsEachCharacterInItsPlace) {
  EVENT_DEFINITION definition;
  EXPECT_FALSE(definition.IsModified());
  const std::pair<int, char> rows[] = {{0, 'a'}, {8, 'b'}, {-1, '0'}, {9, '0'}, {INT_MIN, '0'}};
  for (const auto& [position, read] : rows) {
    SCOPED_TRACE(position);
    EXPECT_EQ(definition.SetEventDefBit(position, read == '0' ? 'z' : read), S_OK);
    EXPECT_EQ(definition.GetEventDefBit(position), read);
  }
  EXPECT_EQ(definition.Pattern(), "a1111111b");
  (void)definition.Initialize();
  EXPECT_EQ(definition.Pattern(), "111111111");
  EXPECT_TRUE(definition.IsModified());  // Initialize leaves the flag
}

}  // namespace
}  // namespace quillpg
