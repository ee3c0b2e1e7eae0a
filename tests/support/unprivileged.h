#pragma once

#include <unistd.h>

namespace quillpg {

/// Gives up the superuser's rights for as long as it lives: to him no file is read-only.
class CUnprivileged {
 public:
  CUnprivileged() : m_was(geteuid()) {
    if (m_was == 0) m_changed = seteuid(kNobody) == 0;
  }
  ~CUnprivileged() {
    if (m_changed) (void)!seteuid(m_was);
  }
  CUnprivileged(const CUnprivileged&) = delete;
  CUnprivileged& operator=(const CUnprivileged&) = delete;

 private:
  static constexpr uid_t kNobody = 65534;
  uid_t m_was;
  bool m_changed = false;
};

}  // namespace quillpg
