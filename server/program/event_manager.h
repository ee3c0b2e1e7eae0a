#pragma once

#include "program/event.h"
#include "program/program_list.h"

#include <cstddef>

namespace quillpg {

class CByteWriter;
class CSetupFileReader;

/// The events of an instrument, at most MAX_EVENTS slots. Names need neither be given nor unique.
class QUILLPG_API CEventManager : public CProgramList<EVENT> {
 public:
  CEventManager();
  ~CEventManager() override;

  Status GetNoOfEvents(int& count) const;
  /// Appends an event without definitions, its name trimmed; raises OnEventListChanged. E_FAIL for
  /// a full list.
  Status AddEvent(const std::string& name);
  Status InsertEvent(int position, const std::string& name);
  /// Takes the event over on success only and raises OnEventListChanged. Null is S_OK and does
  /// nothing (deliberate); E_FAIL for a full list or a bad position.
  Status InsertEvent(int position, std::unique_ptr<EVENT>&& event);
  Status InsertEvent(int position, std::nullptr_t) {
    return InsertEvent(position, std::unique_ptr<EVENT>());
  }
  /// Raises OnEventDeleted for each event after it is gone.
  Status DeleteEvent(int first, int count);
  /// Silent.
  Status DeleteAll();

  /// First event of that name, which is trimmed; -1 and E_FAIL without one.
  Status FindEvent(const std::string& name, int& index) const;
  /// Events of that name, which is trimmed; 0 and E_FAIL for an empty one.
  Status CountEvents(const std::string& name, int& count) const;
  /// The event stays the manager's; a bad index gives null with S_OK.
  Status GetEvent(int index, EVENT** event) const;
  /// Trims the name of `event` in place, assigns it and raises OnEventListChanged. E_FAIL for null
  /// or a bad index.
  Status SetEvent(int index, EVENT* event);
  /// Both store the name as given and do nothing when it differs from the old one in case alone.
  /// The first raises OnEventListChanged, the second OnEventChanged. E_FAIL without an event.
  Status SetEventName(int index, const std::string& name);
  Status SetEventName2(int index, const std::string& name);
  /// Exchange with the neighbour; raise OnEventListChanged.
  Status MoveUp(int index);
  Status MoveDown(int index);

  Status Read(std::istream& stream);
  Status Read(CSetupFileReader& reader);
  Status Write(std::ostream& stream) const;
  Status Write(CByteWriter& writer) const;

 private:
  Status Rename(int index, const std::string& name, bool& renamed);
  Status ListChanged(Status status);
};

}  // namespace quillpg
