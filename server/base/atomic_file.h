#pragma once

#include "base/byte_stream.h"
#include "quillpg/api.h"
#include "quillpg/result_codes.h"

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>

namespace quillpg {

/// What a file is to its user.
enum class FileCare {
  Work,    ///< cannot be made again: on disk before it takes its place; written in place if need be
  Output,  ///< can be made again: not flushed; no older file is ever written in place
};

/// A file that is replaced as a whole or not at all. The bytes go to a file with a fixed temporary
/// name beside the target, "NAME.quillpg-saving", which takes the target's place in one step once
/// it is complete. Until then the old file is untouched, whatever happens: a full disk, a kill, a
/// second saver (refused by a lock) and, for FileCare::Work, a power cut. What a killed save leaves
/// behind is taken over by the next save to the same target.
///
/// A symbolic link is followed and the file it names replaced. Devices and pipes are written as the
/// bytes come; a reader that goes away sends the process SIGPIPE, as with any write. FileCare::Work
/// alone also writes in place, so that a failure there can damage the old file: one with several
/// hard links (a replacement would part them), and one in a folder that takes no new file.
class QUILLPG_API CAtomicFile : public CByteSink {
 public:
  CAtomicFile() = default;
  CAtomicFile(const CAtomicFile&) = delete;
  CAtomicFile& operator=(const CAtomicFile&) = delete;
  /// Discards what was not committed.
  ~CAtomicFile() override { Discard(); }

  /// PG_E_FILE_NOT_OPENED for a target that may not be written or created, or that another saver
  /// writes right now; nothing is changed then. Discards an open file first. A pipe without a
  /// reader is refused, or for FileCare::Output waited for.
  Status Open(const std::string& path, FileCare care = FileCare::Work);
  bool IsOpen() const { return m_file >= 0; }

  /// E_FAIL when not all bytes were taken, now or earlier.
  Status Write(std::span<const std::uint8_t> bytes);
  bool Put(std::span<const std::uint8_t> bytes) override { return Write(bytes) == S_OK; }

  /// Flushes to disk (FileCare::Work), closes and puts the file in the target's place. E_FAIL, with
  /// the old file as it was, when one of these or an earlier Write failed.
  Status Commit();

  /// Closes and removes the temporary file; the old file stays.
  void Discard();

  /// Why the last operation failed, in the system's words.
  std::string GetErrorText() const;

 private:
  Status OpenTarget(const std::string& path);
  Status OpenBeside(bool exists);
  Status OpenInPlace();
  Status Refuse(int error);
  bool TakeOverAttributes();
  bool FlushToDisk() const;
  bool Replace() const;
  bool Close();

  std::filesystem::path m_target;
  std::filesystem::path m_folder;
  std::filesystem::path m_temporary;  ///< empty while writing in place
  FileCare m_care = FileCare::Work;
  int m_file = -1;
  int m_error = 0;  ///< errno of what failed
  bool m_bad = false;
};

}  // namespace quillpg
