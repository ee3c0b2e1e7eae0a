#pragma once

#include "base/byte_stream.h"
#include "exchange/vcd_output.h"

#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace quillpg {

/// The change section of one instrument until all are merged, in a nameless file that the system
/// removes.
class CVcdPart : public CByteSink {
 public:
  CVcdPart() : m_file(std::tmpfile()) {}

  bool IsOpen() const { return m_file != nullptr; }
  bool Put(std::span<const std::uint8_t> bytes) override;

  /// To the first stamp; false when the part cannot be read.
  bool StartReading();
  /// The present stamp; ENDED behind the last one.
  std::int64_t Stamp() const { return m_stamp; }
  /// Copies the changes of the present stamp and goes on to the next one.
  void CopyChanges(CVcdOutput& output);

  static constexpr std::int64_t ENDED = INT64_MAX;

 private:
  bool ReadLine();
  void TakeStamp(bool read);

  struct CLOSE {
    void operator()(std::FILE* file) const { (void)std::fclose(file); }
  };
  std::unique_ptr<std::FILE, CLOSE> m_file;
  std::string m_line;  // with its end
  std::int64_t m_stamp = ENDED;
};

/// Merges the parts by their stamps into one section; equal stamps become one. False for a part
/// that cannot be read.
bool MergeChanges(const std::vector<std::unique_ptr<CVcdPart>>& parts, CVcdOutput& output);

}  // namespace quillpg
