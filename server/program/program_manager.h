#pragma once

#include "base/notifier.h"
#include "quillpg/api.h"
#include "quillpg/result_codes.h"

#include <string>
#include <utility>

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

  /// As CNotifier::Tell: with E_FAIL the manager is gone. The handler may call back into it: hand
  /// over copies of names, never references into the list.
  template <typename Notify>
  Status Tell(Notify&& notify) const {
    return m_frontEnd.Tell(std::forward<Notify>(notify));
  }
  CEventHandler* EventHandler() const { return m_frontEnd.Handler(); }

 private:
  CAppServer* m_server = nullptr;
  CInstrument* m_instrument = nullptr;
  CNotifier m_frontEnd;
};

}  // namespace quillpg
