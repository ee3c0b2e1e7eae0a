#pragma once

#include "base/ordered_list.h"
#include "program/event_definition.h"

#include <memory>
#include <string>
#include <string_view>

namespace quillpg {

class CByteWriter;
class CSetupFileReader;

/// A named condition on the event inputs: true when one of its at most MAX_EVENT_DEFINITIONS rows
/// matches. Every change of the list marks it modified.
struct QUILLPG_API EVENT {
  EVENT();
  EVENT(const EVENT&) = delete;
  ~EVENT();

  /// Assign without its answer.
  EVENT& operator=(const EVENT& other);
  /// Takes over the name and duplicates the definitions, which keep their flags; this event becomes
  /// modified. E_FAIL, with nothing changed, when memory runs out.
  Status Assign(const EVENT& source);

  /// Empties name and definitions, marks the event modified.
  Status Initialize();

  const std::string& GetEventName() const { return m_name; }
  /// Stores the name as given; CEventManager::SetEventName is the way that tells the front end.
  Status SetEventName(const std::string& name);

  int GetNoOfEventDefinitions() const { return m_definitions.Count(); }
  /// The definition stays the event's; null and E_FAIL for a bad index.
  Status GetEventDefinition(int index, EVENT_DEFINITION** definition) const;
  /// Both take the definition over on success only; E_FAIL for null, a full list or a bad position.
  Status AddEventDefinition(std::unique_ptr<EVENT_DEFINITION>&& definition);
  Status InsertEventDefinition(int position, std::unique_ptr<EVENT_DEFINITION>&& definition);
  /// Copies flag and pattern; E_FAIL for null or a bad index.
  Status SetEventDefinition(int index, const EVENT_DEFINITION* definition);
  /// E_FAIL for a range that does not lie in the list.
  Status DeleteEventDefinition(int first, int count);
  Status DeleteAll();
  /// Exchange with the neighbour; E_FAIL where there is none.
  Status MoveUp(int index);
  Status MoveDown(int index);

  /// True when its own flag or the flag of a definition is set.
  bool IsModified() const;
  /// 0 also clears the flag of every definition.
  Status SetModified(int flag);
  bool IsValid() const { return true; }

  /// `list` counts the changes of name and definitions from now on; null takes it away.
  void ReportTo(CRevision* list) { m_revision.ReportTo(list); }

  /// Bytes in a setup file.
  std::uint64_t GetSize() const;
  Status Read(std::istream& stream);
  Status Read(CSetupFileReader& reader);
  Status Write(std::ostream& stream) const;
  Status Write(CByteWriter& writer) const;

 private:
  Status Changed(Status status);

  CModifiedFlag m_modified{true};
  std::string m_name;
  CRevision m_revision;
  COrderedList<EVENT_DEFINITION> m_definitions;
};

inline std::string_view NameOf(const EVENT& event) { return event.GetEventName(); }

}  // namespace quillpg
