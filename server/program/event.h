#pragma once

#include "program/event_definition.h"
#include "program/program_rows.h"

#include <memory>
#include <string>
#include <string_view>

namespace quillpg {

/// A named condition on the event inputs: true when one of its at most MAX_EVENT_DEFINITIONS rows
/// matches.
struct QUILLPG_API EVENT : CProgramRows<EVENT_DEFINITION> {
  EVENT() : CProgramRows(MAX_EVENT_DEFINITIONS) {}

  /// Assign without its answer.
  EVENT& operator=(const EVENT& other);
  /// Takes over the name and duplicates the definitions, which keep their flags; this event becomes
  /// modified. E_FAIL, with nothing changed, when memory runs out.
  Status Assign(const EVENT& source) { return CopyFrom(source); }

  /// Empties name and definitions, marks the event modified.
  Status Initialize();

  const std::string& GetEventName() const { return m_name; }
  /// Stores the name as given; CEventManager::SetEventName is the way that tells the front end.
  Status SetEventName(const std::string& name) { return SetName(name); }

  int GetNoOfEventDefinitions() const { return m_rows.Count(); }
  /// The definition stays the event's; null and E_FAIL for a bad index.
  Status GetEventDefinition(int index, EVENT_DEFINITION** definition) const;
  /// Both take the definition over on success only; E_FAIL for null, a full list or a bad position.
  Status AddEventDefinition(std::unique_ptr<EVENT_DEFINITION>&& definition);
  Status InsertEventDefinition(int position, std::unique_ptr<EVENT_DEFINITION>&& definition);
  /// Copies flag and pattern; E_FAIL for null or a bad index.
  Status SetEventDefinition(int index, const EVENT_DEFINITION* definition);
  /// E_FAIL for a range that does not lie in the list.
  Status DeleteEventDefinition(int first, int count);

  Status Read(std::istream& stream);
  Status Read(CSetupFileReader& reader);
  Status Write(std::ostream& stream) const;
  Status Write(CByteWriter& writer) const;
};

inline std::string_view NameOf(const EVENT& event) { return event.GetEventName(); }

}  // namespace quillpg
