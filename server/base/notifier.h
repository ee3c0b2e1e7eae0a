#pragma once

#include "quillpg/result_codes.h"

#include <memory>

namespace quillpg {

class CEventHandler;

/// How an object tells the front end of its changes: the handler, which is the front end's and may
/// be null, and a token that expires with the object. The handler may call back into the engine and
/// delete whatever it likes, the object that tells it too.
class CNotifier {
 public:
  void SetHandler(CEventHandler* handler) { m_handler = handler; }
  CEventHandler* Handler() const { return m_handler; }

  /// Calls `notify(handler)` when there is a handler. E_FAIL when that destroyed the owner: nothing
  /// of it may be touched then.
  template <typename Notify>
  Status Tell(Notify&& notify) const {
    const std::weak_ptr<const void> owner = Lifetime();
    if (m_handler) notify(*m_handler);
    return owner.expired() ? E_FAIL : S_OK;
  }

  /// Expires with the owner.
  std::weak_ptr<const void> Lifetime() const { return m_token; }

 private:
  CEventHandler* m_handler = nullptr;
  std::shared_ptr<const void> m_token = std::make_shared<const bool>(true);
};

}  // namespace quillpg
