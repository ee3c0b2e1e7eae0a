#include "program/event_manager.h"

#include "app/setup_stream.h"
#include "base/setup_file_list.h"
#include "quillpg/event_handler.h"

#include <utility>

namespace quillpg {

CEventManager::CEventManager() : CProgramList(MAX_EVENTS) {}

CEventManager::~CEventManager() = default;

Status CEventManager::GetNoOfEvents(int& count) const { return GetCount(count); }

Status CEventManager::AddEvent(const std::string& name) {
  return InsertEvent(m_list.Count(), name);
}

Status CEventManager::InsertEvent(int position, const std::string& name) {
  std::unique_ptr<EVENT> event;
  const Status status = GuardAllocation([&] {
    event = std::make_unique<EVENT>();
    return event->SetEventName(std::string(Trim(name)));
  });
  return Failed(status) ? status : InsertEvent(position, std::move(event));
}

Status CEventManager::InsertEvent(int position, std::unique_ptr<EVENT>&& event) {
  if (!event) return S_OK;  // deliberate: the other managers refuse null
  return ListChanged(m_list.Insert(position, std::move(event)));
}

Status CEventManager::DeleteEvent(int first, int count) {
  const auto visit = [this](int /*position*/, const EVENT* event, const auto& destroy) {
    const std::string name = event ? event->GetEventName() : std::string();
    destroy();
    return Tell([&](CEventHandler& handler) { handler.OnEventDeleted(name, 1); });
  };
  return Changed(m_list.RemoveEach(first, count, visit));
}

Status CEventManager::DeleteAll() {
  m_list.Clear();
  return Changed(S_OK);
}

Status CEventManager::FindEvent(const std::string& name, int& index) const {
  return FindFirst(Trim(name), index);
}

Status CEventManager::CountEvents(const std::string& name, int& count) const {
  return CountAll(Trim(name), count);
}

Status CEventManager::GetEvent(int index, EVENT** event) const { return GetAt(index, event); }

Status CEventManager::SetEvent(int index, EVENT* event) {
  EVENT* target = m_list.At(index);
  if (!event || !target) return E_FAIL;
  const Status status = GuardAllocation([&] {
    const std::string name(Trim(event->GetEventName()));
    if (name != event->GetEventName()) (void)event->SetEventName(name);
    return target->Assign(*event);
  });
  return ListChanged(status);
}

Status CEventManager::SetEventName(int index, const std::string& name) {
  bool renamed = false;
  const Status status = Rename(index, name, renamed);
  if (!renamed) return status;
  return Tell([](CEventHandler& handler) { handler.OnEventListChanged(); });
}

Status CEventManager::SetEventName2(int index, const std::string& name) {
  bool renamed = false;
  const Status status = Rename(index, name, renamed);
  if (!renamed) return status;
  return Tell([index](CEventHandler& handler) { handler.OnEventChanged(index); });
}

Status CEventManager::MoveUp(int index) { return ListChanged(m_list.MoveUp(index)); }
Status CEventManager::MoveDown(int index) { return ListChanged(m_list.MoveDown(index)); }

Status CEventManager::Read(std::istream& stream) { return ReadFromStream(stream, *this); }
Status CEventManager::Write(std::ostream& stream) const { return WriteToStream(stream, *this); }

Status CEventManager::Read(CSetupFileReader& reader) {
  (void)Changed(S_OK);  // what is loaded is not in the hardware
  return ReadRecords(reader, EVENT_LIST, m_list);
}

Status CEventManager::Write(CByteWriter& writer) const {
  return WriteRecords(writer, EVENT_LIST, m_list);
}

// A change of case alone is not stored: deliberate.
Status CEventManager::Rename(int index, const std::string& name, bool& renamed) {
  EVENT* event = m_list.At(index);
  if (!event) return E_FAIL;
  if (EqualNoCase(event->GetEventName(), name)) return S_OK;
  const Status status = event->SetEventName(name);
  renamed = !Failed(status);
  return Changed(status);
}

Status CEventManager::ListChanged(Status status) {
  if (Failed(Changed(status))) return status;
  return Tell([](CEventHandler& handler) { handler.OnEventListChanged(); });
}

}  // namespace quillpg
