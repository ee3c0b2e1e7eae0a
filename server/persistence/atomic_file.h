#pragma once

#include "base/byte_stream.h"
#include "quillpg/result_codes.h"

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>

namespace quillpg {

/// A file that is replaced as a whole or not at all. The bytes go to a file with a fixed temporary
/// name beside the target, "NAME.quillpg-saving", which takes the target's place in one step once
/// it is complete and on disk. Until then the old file is untouched, whatever happens: a full disk,
/// a kill, a second saver (refused by a lock), a power cut. What a killed save leaves behind is
/// taken over by the next save to the same target.
///
/// A symbolic link is followed and the file it names replaced. Written in place, so that a failure
/// there can damage the old file, are only: what is no regular file (a device, a pipe), a file with
/// several hard links (a replacement would part them), and one in a folder that takes no new file.
class CAtomicFile : public CByteSink {
 public:
  CAtomicFile() = default;
  CAtomicFile(const CAtomicFile&) = delete;
  CAtomicFile& operator=(const CAtomicFile&) = delete;
  /// Discards what was not committed.
  ~CAtomicFile() override { Discard(); }

  /// PG_E_FILE_NOT_OPENED for a target that may not be written or created, or that another saver
  /// writes right now; nothing is changed then. Discards an open file first.
  Status Open(const std::string& path);
  bool IsOpen() const { return m_file >= 0; }

  /// E_FAIL when not all bytes were taken, now or earlier.
  Status Write(std::span<const std::uint8_t> bytes);
  bool Put(std::span<const std::uint8_t> bytes) override { return Write(bytes) == S_OK; }

  /// Flushes to disk, closes and puts the file in the target's place. E_FAIL, with the old file as
  /// it was, when one of these or an earlier Write failed.
  Status Commit();

  /// Closes and removes the temporary file; the old file stays.
  void Discard();

 private:
  Status OpenBeside();
  Status OpenInPlace();
  bool TakeOverAttributes();
  bool FlushToDisk() const;
  bool Replace() const;
  bool Close();

  std::filesystem::path m_target;
  std::filesystem::path m_temporary;  ///< empty while writing in place
  int m_file = -1;
  bool m_bad = false;
};

}  // namespace quillpg
