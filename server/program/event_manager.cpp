#include "program/event_manager.h"

#include "app/setup_stream.h"
#include "base/setup_file_list.h"
#include "quillpg/event_handler.h"

#include <utility>

namespace quillpg {

CEventManager::CEventManager() : m_events(MAX_EVENTS) {}

CEventManager::~CEventManager() = default;

Status CEventManager::GetNoOfEvents(int& count) const {
  count = m_events.Count();
  return S_OK;
}

Status CEventManager::AddEvent(const std::string& name) {
  return InsertEvent(m_events.Count(), name);
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
  return ListChanged(m_events.Insert(position, std::move(event)));
}

Status CEventManager::DeleteEvent(int first, int count) {
  const Status status = m_events.RemoveEach(first, count, [this](int position, EVENT* event) {
    const std::string name = event ? event->GetEventName() : std::string();
    m_events.Destroy(event, position);
    Tell([&](CEventHandler& handler) { handler.OnEventDeleted(name, 1); });
  });
  if (!Failed(status)) m_modified.Set();
  return status;
}

Status CEventManager::DeleteAll() {
  m_events.Clear();
  m_modified.Set();
  return S_OK;
}

Status CEventManager::FindEvent(const std::string& name, int& index) const {
  const std::string_view asked = Trim(name);
  index = asked.empty() ? -1 : m_events.Find(asked);
  return index < 0 ? E_FAIL : S_OK;
}

Status CEventManager::CountEvents(const std::string& name, int& count) const {
  const std::string_view asked = Trim(name);
  count = asked.empty() ? 0 : m_events.CountNamed(asked);
  return asked.empty() ? E_FAIL : S_OK;
}

Status CEventManager::GetEvent(int index, EVENT** event) const {
  if (!event) return E_FAIL;
  *event = m_events.At(index);
  return S_OK;
}

Status CEventManager::SetEvent(int index, EVENT* event) {
  EVENT* target = m_events.At(index);
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
  if (renamed) Tell([](CEventHandler& handler) { handler.OnEventListChanged(); });
  return status;
}

Status CEventManager::SetEventName2(int index, const std::string& name) {
  bool renamed = false;
  const Status status = Rename(index, name, renamed);
  if (renamed) Tell([index](CEventHandler& handler) { handler.OnEventChanged(index); });
  return status;
}

Status CEventManager::MoveUp(int index) { return ListChanged(m_events.MoveUp(index)); }
Status CEventManager::MoveDown(int index) { return ListChanged(m_events.MoveDown(index)); }

int CEventManager::IsModified() const {
  return m_modified.IsSet() || m_events.AnyModified() ? 1 : 0;
}

Status CEventManager::SetModified(int flag) {
  m_modified.Store(flag);
  if (flag == 0) m_events.ClearModified();
  return S_OK;
}

Status CEventManager::GetSize(std::uint64_t& size) const {
  size = 4 + m_events.SizeOfAll();
  return S_OK;
}

Status CEventManager::Read(std::istream& stream) { return ReadFromStream(stream, *this); }
Status CEventManager::Write(std::ostream& stream) const { return WriteToStream(stream, *this); }

Status CEventManager::Read(CSetupFileReader& reader) {
  m_modified.Set();  // what is loaded is not in the hardware
  return ReadRecords(reader, EVENT_LIST, m_events);
}

Status CEventManager::Write(CByteWriter& writer) const {
  return WriteRecords(writer, EVENT_LIST, m_events);
}

// A change of case alone is not stored: deliberate.
Status CEventManager::Rename(int index, const std::string& name, bool& renamed) {
  EVENT* event = m_events.At(index);
  if (!event) return E_FAIL;
  if (EqualNoCase(event->GetEventName(), name)) return S_OK;
  const Status status = event->SetEventName(name);
  renamed = !Failed(status);
  if (renamed) m_modified.Set();
  return status;
}

Status CEventManager::ListChanged(Status status) {
  if (Failed(status)) return status;
  m_modified.Set();
  Tell([](CEventHandler& handler) { handler.OnEventListChanged(); });
  return status;
}

}  // namespace quillpg
