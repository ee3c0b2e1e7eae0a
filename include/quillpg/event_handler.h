#pragma once

#include "quillpg/api.h"

#include <string>

namespace quillpg {

/// The front end's notifications about one instrument: derive from it, override what is of
/// interest, install it with CInstrument::SetEventHandler. Referenced, never owned; may be null.
///
/// The order is part of the binary interface: the destructor is position 0, the operations follow
/// as 1 to 31. The OnFrontEnd ones are the front end's own: the engine never raises them. A handler
/// may call back into the engine, also to change the list that just announced a change and to
/// delete the instrument itself.
class QUILLPG_API CEventHandler {
 public:
  virtual ~CEventHandler() = default;

  virtual void OnFrontEnd1() {}
  /// The event at `index` was renamed through SetEventName2.
  virtual void OnEventChanged(int /*index*/) {}
  /// An event was deleted; raised after it is gone, once for each. `one` is always 1.
  virtual void OnEventDeleted(const std::string& /*name*/, int /*one*/) {}
  /// The list of events changed as a whole: rebuild it.
  virtual void OnEventListChanged() {}
  /// The instrument has a new name.
  virtual void OnInstrumentRenamed() {}
  /// A group is about to be deleted; it still exists during the call.
  virtual void OnGroupDeleted(const std::string& /*name*/) {}
  virtual void OnFrontEnd7() {}
  /// A group was renamed.
  virtual void OnGroupRenamed(const std::string& /*oldName*/, const std::string& /*newName*/) {}
  virtual void OnFrontEnd9() {}
  /// A channel got a user name, or lost it (empty name).
  virtual void OnChannelRenamed(const std::string& /*name*/, int /*channel*/) {}
  virtual void OnFrontEnd11() {}
  virtual void OnFrontEnd12() {}
  virtual void OnFrontEnd13() {}
  /// The instrument is about to get its defaults, or its settings sent again.
  virtual void OnInstrumentReset() {}
  /// Two neighbouring blocks changed places: the moved block with its old position, then its
  /// neighbour with its old position. Raised after the exchange.
  virtual void OnBlocksSwapped(const std::string& /*name*/, int /*position*/,
                               const std::string& /*neighbour*/, int /*neighbourPosition*/) {}
  /// A block was inserted (change 0) or is about to be deleted (change 1). Positions of deleted
  /// blocks are those before any removal.
  virtual void OnBlockListChanged(const std::string& /*name*/, int /*position*/, int /*change*/) {}
  virtual void OnFrontEnd17() {}
  /// The block at `index` has a new size.
  virtual void OnBlockResized(const std::string& /*name*/, int /*index*/) {}
  virtual void OnFrontEnd19() {}
  /// The block at `index` was renamed; `newName` is the name as given, before trimming.
  virtual void OnBlockRenamed(const std::string& /*oldName*/, const std::string& /*newName*/,
                              int /*index*/) {}
  virtual void OnFrontEnd21() {}
  /// Answer to a state refresh: 1 the instrument is idle, 0 it is active. Raised before the state
  /// is stored.
  virtual void OnInstrumentIdle(int /*idle*/) {}
  virtual void OnFrontEnd23() {}
  virtual void OnFrontEnd24() {}
  virtual void OnFrontEnd25() {}
  virtual void OnFrontEnd26() {}
  /// Pattern data of the block at index `block` was edited through a grid or pasted.
  virtual void OnPatternDataChanged(int /*block*/) {}
  virtual void OnFrontEnd28() {}
  virtual void OnFrontEnd29() {}
  virtual void OnFrontEnd30() {}
  virtual void OnFrontEnd31() {}
};

}  // namespace quillpg
