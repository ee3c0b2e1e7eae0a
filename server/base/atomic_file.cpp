#include "base/atomic_file.h"

#include "base/guard.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace quillpg {

namespace {

namespace fs = std::filesystem;

constexpr char kSuffix[] = ".quillpg-saving";
constexpr std::size_t kLongestName = 255;
constexpr int kMostLinks = 40;
constexpr int kMostTries = 16;
constexpr mode_t kNewFile = 0666;     // less what the umask takes away
constexpr mode_t kOwnersFile = 0600;  // until it has the permissions of the file it replaces
constexpr mode_t kPermissions = 0777;

bool FileInfo(const fs::path& path, struct stat& info) { return ::stat(path.c_str(), &info) == 0; }

bool SameFile(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

// The open file is the one that `path` names right now.
bool IsNamed(int file, const fs::path& path) {
  struct stat opened {};
  struct stat named {};
  return ::fstat(file, &opened) == 0 && ::lstat(path.c_str(), &named) == 0 &&
         SameFile(opened, named);
}

// The path at the end of a chain of symbolic links, existing or not. The folders on the way are
// left to the system.
fs::path FollowLinks(fs::path path) {
  std::error_code error;
  for (int i = 0; i < kMostLinks && fs::is_symlink(fs::symlink_status(path, error)); ++i) {
    const fs::path next = fs::read_symlink(path, error);
    if (error) break;
    path = next.is_absolute() ? next : path.parent_path() / next;
  }
  return path;
}

// Always the same name for the same target; a name that the suffix would make too long is cut.
fs::path TemporaryFor(const fs::path& target) {
  std::string name = target.filename().string();
  name.resize(std::min(name.size(), kLongestName - (sizeof kSuffix - 1)));
  return target.parent_path() / (name + kSuffix);
}

// False only where another saver holds the file: a file system without locks has no such saver to
// offer.
bool Lock(int file) { return ::flock(file, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK; }

bool OpensForWriting(const fs::path& path) {
  const int file = ::open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NONBLOCK);
  if (file >= 0) (void)::close(file);  // nothing was written
  return file >= 0;
}

}  // namespace

Status CAtomicFile::Open(const std::string& path, FileCare care) {
  Discard();
  m_care = care;
  return GuardAllocation([&] { return OpenTarget(path); }, PG_E_FILE_NOT_OPENED);
}

Status CAtomicFile::OpenTarget(const std::string& path) {
  struct stat old {};
  struct stat followed {};
  const bool exists = FileInfo(path, old);
  if (!exists && errno != ENOENT) return Refuse(errno);
  m_target = FollowLinks(path);
  if (exists && S_ISDIR(old.st_mode)) return Refuse(EISDIR);
  if (m_target.filename().empty()) return Refuse(ENOENT);
  // Links of the system that name no path (a process's own open files) end elsewhere.
  const bool reached = !exists || (FileInfo(m_target, followed) && SameFile(old, followed));
  if (!reached) m_target = path;
  if (exists && (!reached || !S_ISREG(old.st_mode))) return OpenInPlace();
  if (exists && old.st_nlink > 1 && m_care == FileCare::Work) return OpenInPlace();
  // The folder may allow what the file forbids.
  if (exists && !OpensForWriting(m_target)) return Refuse(errno);
  const Status status = OpenBeside(exists);
  return status == S_FALSE ? OpenInPlace() : status;
}

Status CAtomicFile::Refuse(int error) {
  m_error = error;
  return PG_E_FILE_NOT_OPENED;
}

std::string CAtomicFile::GetErrorText() const { return std::strerror(m_error); }

// S_FALSE: the folder takes no new file. The lock comes before the truncation, and the name is
// looked at again after it: the file may be another saver's, finished and renamed meanwhile.
Status CAtomicFile::OpenBeside(bool exists) {
  m_folder = m_target.has_parent_path() ? m_target.parent_path() : fs::path(".");
  m_temporary = TemporaryFor(m_target);
  if (m_temporary == m_target) {  // a name that the suffix ends, and as long as names can be
    m_temporary.clear();
    return Refuse(ENAMETOOLONG);
  }
  for (int i = 0; i < kMostTries; ++i) {
    m_file = ::open(m_temporary.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK,
                    exists ? kOwnersFile : kNewFile);
    if (m_file < 0) {
      const int error = errno;
      const bool closed = error == EACCES || error == EPERM || error == EROFS;
      struct stat leftOver {};
      const bool taken = ::lstat(m_temporary.c_str(), &leftOver) == 0;
      m_temporary.clear();
      if (closed && !taken && m_care == FileCare::Work) return S_FALSE;
      return Refuse(error);
    }
    const bool locked = Lock(m_file);
    if (locked && IsNamed(m_file, m_temporary)) {
      if (TakeOverAttributes()) return S_OK;
      break;
    }
    (void)Close();  // not ours to write: nothing was written
    if (!locked) break;
  }
  // What stands under the name is not ours and stays.
  (void)Close();
  m_temporary.clear();
  return Refuse(EBUSY);
}

// Before the first byte, so that the new file never shows more than the old one did. Another owner
// is given where the system lets us.
bool CAtomicFile::TakeOverAttributes() {
  struct stat own {};
  struct stat old {};
  if (::fstat(m_file, &own) != 0 || !S_ISREG(own.st_mode) || own.st_nlink != 1) return false;
  if (::ftruncate(m_file, 0) != 0) return false;
  if (!FileInfo(m_target, old)) return true;
  const bool sameOwner = own.st_uid == old.st_uid && own.st_gid == old.st_gid;
  if (!sameOwner && ::fchown(m_file, old.st_uid, old.st_gid) != 0) {
    (void)!::fchown(m_file, static_cast<uid_t>(-1), old.st_gid);  // the group at least
  }
  (void)::fchmod(m_file, old.st_mode & kPermissions);  // not every file system has such bits
  return true;
}

Status CAtomicFile::OpenInPlace() {
  m_temporary.clear();
  // A pipe that nobody reads must not hold who saves his work.
  const int wait = m_care == FileCare::Work ? O_NONBLOCK : 0;
  m_file = ::open(m_target.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | O_NOCTTY | wait, kNewFile);
  if (m_file < 0) return Refuse(errno);
  struct stat info {};
  const bool regular = ::fstat(m_file, &info) == 0 && S_ISREG(info.st_mode);
  const int flags = ::fcntl(m_file, F_GETFL);
  const bool ready = flags >= 0 && ::fcntl(m_file, F_SETFL, flags & ~O_NONBLOCK) == 0;
  if (ready && (!regular || (Lock(m_file) && ::ftruncate(m_file, 0) == 0))) return S_OK;
  (void)Close();  // nothing was written
  return Refuse(EBUSY);
}

Status CAtomicFile::Write(std::span<const std::uint8_t> bytes) {
  if (!IsOpen()) return E_FAIL;
  while (!m_bad && !bytes.empty()) {
    const ssize_t written = ::write(m_file, bytes.data(), bytes.size());
    if (written > 0) bytes = bytes.subspan(static_cast<std::size_t>(written));
    m_bad = written == 0 || (written < 0 && errno != EINTR);
    if (m_bad) m_error = written == 0 ? ENOSPC : errno;
  }
  return m_bad ? E_FAIL : S_OK;
}

// The lock is held until the new name stands, so that no second saver truncates what is renamed.
Status CAtomicFile::Commit() {
  if (!IsOpen()) return E_FAIL;
  if (m_bad || (m_care == FileCare::Work && !FlushToDisk()) || !Replace()) {
    if (!m_bad) m_error = errno;
    Discard();
    return E_FAIL;
  }
  m_temporary.clear();
  if (Close()) return S_OK;
  m_error = errno;
  return E_FAIL;
}

bool CAtomicFile::FlushToDisk() const {
  if (::fsync(m_file) == 0) return true;
  return m_temporary.empty() && (errno == EINVAL || errno == ENOTSUP || errno == EROFS);  // devices
}

// Allocates nothing: once the new name stands, nothing may fail.
bool CAtomicFile::Replace() const {
  if (m_temporary.empty()) return true;
  if (!IsNamed(m_file, m_temporary)) {
    errno = ENOENT;  // somebody took it away
    return false;
  }
  if (::rename(m_temporary.c_str(), m_target.c_str()) != 0) return false;
  if (m_care != FileCare::Work) return true;
  // The new name too must outlast a power cut; a folder that cannot be opened does without.
  const int directory = ::open(m_folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (directory >= 0) {
    (void)::fsync(directory);
    (void)::close(directory);
  }
  return true;
}

void CAtomicFile::Discard() {
  if (IsOpen() && !m_temporary.empty() && IsNamed(m_file, m_temporary)) {
    (void)::unlink(m_temporary.c_str());  // what cannot be removed is taken over by the next save
  }
  m_temporary.clear();
  (void)Close();  // the bytes are given up
}

bool CAtomicFile::Close() {
  const int file = m_file;
  m_file = -1;
  m_bad = false;
  return file < 0 || ::close(file) == 0;
}

}  // namespace quillpg
