#include "exchange/vcd_merge.h"

#include <charconv>
#include <cstdint>
#include <fstream>
#include <limits>

namespace quillpg {

namespace {

constexpr std::int64_t kEnded = std::numeric_limits<std::int64_t>::max();

// One change section, read stamp by stamp.
class CPart {
 public:
  explicit CPart(const std::string& path) : m_file(path, std::ios::binary) { ReadStamp(); }

  bool IsGood() const { return m_good; }
  std::int64_t Stamp() const { return m_stamp; }

  // Copies the changes of the present stamp and goes on to the next one.
  void CopyChanges(CVcdOutput& output) {
    while (std::getline(m_file, m_line) && m_line[0] != '#') {
      output.Append(m_line);
      output.Append("\n");
    }
    TakeStamp();
  }

 private:
  void ReadStamp() {
    m_good = static_cast<bool>(std::getline(m_file, m_line));
    TakeStamp();
  }
  void TakeStamp() {
    m_stamp = kEnded;
    if (m_file && m_line.starts_with('#')) {
      (void)std::from_chars(m_line.data() + 1, m_line.data() + m_line.size(), m_stamp);
    }
  }

  std::ifstream m_file;
  std::string m_line;
  std::int64_t m_stamp = kEnded;
  bool m_good = false;
};

}  // namespace

Status MergeChanges(const std::vector<std::string>& parts, CVcdOutput& output) {
  std::vector<CPart> open;
  for (const std::string& path : parts) {
    open.emplace_back(path);
    if (!open.back().IsGood()) return E_FAIL;
  }
  for (;;) {
    std::int64_t stamp = kEnded;
    for (const CPart& part : open) stamp = part.Stamp() < stamp ? part.Stamp() : stamp;
    if (stamp == kEnded) return S_OK;
    output.Append('#' + std::to_string(stamp) + '\n');
    for (CPart& part : open) {
      if (part.Stamp() == stamp) part.CopyChanges(output);
    }
  }
}

}  // namespace quillpg
