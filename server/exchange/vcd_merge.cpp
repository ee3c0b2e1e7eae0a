#include "exchange/vcd_merge.h"

#include <algorithm>
#include <charconv>
#include <cstring>

namespace quillpg {

bool CVcdPart::Put(std::span<const std::uint8_t> bytes) {
  return std::fwrite(bytes.data(), 1, bytes.size(), m_file.get()) == bytes.size();
}

bool CVcdPart::StartReading() {
  if (std::fflush(m_file.get()) != 0 || std::fseek(m_file.get(), 0, SEEK_SET) != 0) return false;
  TakeStamp(ReadLine());
  return m_stamp != ENDED;
}

void CVcdPart::CopyChanges(CVcdOutput& output) {
  bool read = ReadLine();
  for (; read && m_line[0] != '#'; read = ReadLine()) output.Append(m_line);
  TakeStamp(read);
}

bool CVcdPart::ReadLine() {
  char piece[512];
  m_line.clear();
  while (!m_line.ends_with('\n') && std::fgets(piece, sizeof piece, m_file.get())) m_line += piece;
  return !m_line.empty();
}

void CVcdPart::TakeStamp(bool read) {
  m_stamp = ENDED;
  if (!read) return;
  (void)std::from_chars(m_line.data() + 1, m_line.data() + m_line.size(), m_stamp);
}

bool MergeChanges(const std::vector<std::unique_ptr<CVcdPart>>& parts, CVcdOutput& output) {
  for (const auto& part : parts) {
    if (!part->StartReading()) return false;
  }
  for (;;) {
    std::int64_t stamp = CVcdPart::ENDED;
    for (const auto& part : parts) stamp = std::min(stamp, part->Stamp());
    if (stamp == CVcdPart::ENDED) return true;
    output.Append('#' + std::to_string(stamp) + '\n');
    for (const auto& part : parts) {
      if (part->Stamp() == stamp) part->CopyChanges(output);
    }
  }
}

}  // namespace quillpg
