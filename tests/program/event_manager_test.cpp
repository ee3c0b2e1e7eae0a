#include "program/event_manager.h"

#include "support/ask.h"
#include "support/recording_event_handler.h"

#include <gmock/gmock.h>

namespace quillpg {
namespace {

using testing::ElementsAre;
using MANAGER = CEventManager;

EVENT* At(const CEventManager& manager, int index) {
  return Find(manager, &CEventManager::GetEvent, index);
}

std::string Names(const CEventManager& manager) {
  std::string names;
  for (int i = 0; i < Ask(manager, &CEventManager::GetNoOfEvents); ++i) {
    names += (At(manager, i) ? At(manager, i)->GetEventName() : "-") + " ";
  }
  return names;
}

// The events Trig, Stop and Go, nothing modified.
void Prepare(CEventManager& manager, CRecordingEventHandler& handler) {
  for (const char* name : {" Trig ", "Stop", "Go"}) (void)manager.AddEvent(name);
  (void)manager.SetModified(0);
  (void)manager.SetEventHandler(&handler);
}

TEST(EventManager, TellsOfEveryChangeOfTheList) {
  struct Row {
    const char* what;
    Status (*change)(MANAGER&);
    Status status;
    const char* told;
    int modified;
  };
  const char kList[] = "OnEventListChanged()";
  const Row rows[] = {
      {"insert", [](MANAGER& m) { return m.InsertEvent(7, "x"); }, S_OK, kList, 1},
      {"move", [](MANAGER& m) { return m.MoveDown(0); }, S_OK, kList, 1},
      {"delete all", [](MANAGER& m) { return m.DeleteAll(); }, S_OK, "", 1},
      {"rename", [](MANAGER& m) { return m.SetEventName(0, " x"); }, S_OK, kList, 1},
      {"other", [](MANAGER& m) { return m.SetEventName2(1, "x"); }, S_OK, "OnEventChanged(1)", 1},
      {"change case", [](MANAGER& m) { return m.SetEventName(0, "TRIG"); }, S_OK, "", 0},
      {"set", [](MANAGER& m) { return m.SetEvent(0, At(m, 1)); }, S_OK, kList, 1},
      {"set nothing", [](MANAGER& m) { return m.SetEvent(0, nullptr); }, E_FAIL, "", 0}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    CEventManager manager;
    CRecordingEventHandler handler;
    Prepare(manager, handler);
    EXPECT_EQ(row.change(manager), row.status);
    const std::vector<std::string> told = handler.Take();
    EXPECT_EQ(told.empty() ? "" : told.front(), row.told);
    EXPECT_LE(told.size(), 1u);
    EXPECT_EQ(manager.IsModified(), row.modified);
  }
}

TEST(EventManager, TellsOfDeletionsAfterThem) {
  CEventManager manager;
  CRecordingEventHandler handler;
  Prepare(manager, handler);
  std::string seen;
  handler.onAny = [&] { seen += Names(manager) + "/ "; };
  EXPECT_EQ(manager.DeleteEvent(1, 3), E_FAIL);
  EXPECT_EQ(manager.DeleteEvent(1, 2), S_OK);
  EXPECT_EQ(seen, "Trig - Go / Trig - - / ");
  EXPECT_THAT(handler.Take(), ElementsAre("OnEventDeleted(Stop,1)", "OnEventDeleted(Go,1)"));
  EXPECT_EQ(Names(manager), "Trig ");
}

}  // namespace
}  // namespace quillpg
