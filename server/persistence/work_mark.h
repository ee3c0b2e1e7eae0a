#pragma once

namespace quillpg {

/// Marks the file manager as being at work for as long as it lives. The front end is called back
/// while it works: whoever finds the mark taken must refuse.
class CWorkMark {
 public:
  explicit CWorkMark(bool& working) : m_working(working), m_taken(!working) { m_working = true; }
  ~CWorkMark() {
    if (m_taken) m_working = false;
  }
  CWorkMark(const CWorkMark&) = delete;
  CWorkMark& operator=(const CWorkMark&) = delete;

  /// False when another operation was at work already.
  bool Taken() const { return m_taken; }

 private:
  bool& m_working;
  bool m_taken;
};

}  // namespace quillpg
