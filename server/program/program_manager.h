#pragma once

#include "quillpg/api.h"
#include "quillpg/result_codes.h"

#include <string>

namespace quillpg {

class CAppServer;
class CEventHandler;
class CInstrument;

/// What every manager of program objects refers to: the root, the instrument that owns the manager,
/// and the front end's event handler. None of them is owned. A manager works before Initialize too;
/// it then tells nobody and fails where it needs the instrument.
///
/// Of all lists: E_FAIL, with nothing changed, for a range that does not lie in the list, a move
/// past its ends and a position to insert at that is negative or beyond the list's limit. Deleting
/// 0 objects is S_OK.
class QUILLPG_API CProgramManager {
 public:
  CProgramManager(const CProgramManager&) = delete;
  CProgramManager& operator=(const CProgramManager&) = delete;
  virtual ~CProgramManager() = default;

  /// E_FAIL, with nothing stored, for a null argument.
  Status Initialize(CAppServer* server, CInstrument* instrument);

  /// Null: notifications are dropped from then on.
  virtual Status SetEventHandler(CEventHandler* handler);

 protected:
  CProgramManager() = default;

  CAppServer* Server() const { return m_server; }
  CInstrument* Instrument() const { return m_instrument; }

  /// Calls `notify(handler)` when there is a handler. It may call back into the manager: hand over
  /// copies of names, never references into the list.
  template <typename Notify>
  void Tell(Notify&& notify) const {
    if (m_eventHandler) notify(*m_eventHandler);
  }
  CEventHandler* EventHandler() const { return m_eventHandler; }

 private:
  CAppServer* m_server = nullptr;
  CInstrument* m_instrument = nullptr;
  CEventHandler* m_eventHandler = nullptr;
};

}  // namespace quillpg
