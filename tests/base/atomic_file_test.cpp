#include "base/atomic_file.h"

#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <string_view>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillpg {
namespace {

namespace fs = std::filesystem;

using Names = std::vector<std::string>;

constexpr char kTemporary[] = "target.quillpg-saving";

std::span<const std::uint8_t> Bytes(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

Status Save(const std::string& path, std::string_view text) {
  CAtomicFile file;
  if (const Status status = file.Open(path); status != S_OK) return status;
  if (const Status status = file.Write(Bytes(text)); status != S_OK) return status;
  return file.Commit();
}

// Gives up the superuser's rights while it lives: to him no file is read-only.
struct CUnprivileged {
  CUnprivileged() { (void)!seteuid(m_was == 0 ? 65534 : m_was); }
  ~CUnprivileged() { (void)!seteuid(m_was); }
  const uid_t m_was = geteuid();
};

TEST(AtomicFile, TargetChangesWithCommitAlone) {
  const CTemporaryFolder folder;
  const std::string target = folder.Write("target", "old");
  {
    CAtomicFile file;
    ASSERT_EQ(S_OK, file.Open(target));
    EXPECT_EQ(S_OK, file.Write(Bytes("new, and longer")));
    EXPECT_EQ("old", folder.Text("target"));
    EXPECT_EQ(PG_E_FILE_NOT_OPENED, Save(target, "second saver"));
  }
  EXPECT_EQ("old", folder.Text("target"));
  EXPECT_EQ(Names{"target"}, folder.Names());
  EXPECT_EQ(S_OK, Save(target, "new"));
  EXPECT_EQ("new", folder.Text("target"));
  EXPECT_EQ(S_OK, Save(folder.File("other"), ""));
}

TEST(AtomicFile, KeepsPermissionsAndTakesOverWhatAKilledSaveLeft) {
  const CTemporaryFolder folder;
  const std::string target = folder.Write("target", "old");
  (void)folder.Write(kTemporary, std::string(1000, 'x'));
  for (const mode_t mode : {0640U, 0600U, 0666U}) {
    ASSERT_EQ(0, chmod(target.c_str(), mode));
    EXPECT_EQ(S_OK, Save(target, "new"));
    struct stat info {};
    ASSERT_EQ(0, stat(target.c_str(), &info));
    EXPECT_EQ(mode, info.st_mode & 07777U);
  }
  EXPECT_EQ("new", folder.Text("target"));
  EXPECT_EQ(Names{"target"}, folder.Names());
}

TEST(AtomicFile, LinksOfEitherKindStayLinks) {
  const CTemporaryFolder folder;
  fs::create_directory(folder.Path() / "there");
  const std::string real = folder.Write("there/real", "old");
  fs::create_symlink("there/real", folder.Path() / "link");
  fs::create_symlink("link", folder.Path() / "chain");
  EXPECT_EQ(S_OK, Save(folder.File("chain"), "new"));
  EXPECT_EQ("new", folder.Text("there/real"));
  EXPECT_TRUE(fs::is_symlink(folder.Path() / "chain"));
  fs::create_symlink("there/none", folder.Path() / "dangling");
  EXPECT_EQ(S_OK, Save(folder.File("dangling"), "made"));
  EXPECT_EQ("made", folder.Text("there/none"));
  fs::create_symlink("circle", folder.Path() / "circle");
  EXPECT_EQ(PG_E_FILE_NOT_OPENED, Save(folder.File("circle"), "never"));

  fs::create_hard_link(real, folder.Path() / "twin");
  EXPECT_EQ(S_OK, Save(folder.File("twin"), "both"));
  EXPECT_EQ("both", folder.Text("there/real"));
  EXPECT_EQ(2U, fs::hard_link_count(real));
  EXPECT_EQ(S_OK, Save("/dev/null", "gone"));
}

TEST(AtomicFile, RefusesWhatMayNotBeWritten) {
  const CTemporaryFolder folder;
  const std::string target = folder.Write("target", "old");
  const CUnprivileged user;
  EXPECT_EQ(PG_E_FILE_NOT_OPENED, Save(target, "new")) << "another user's file, in an open folder";
  const std::string own = folder.Write("own", "old");
  ASSERT_EQ(0, chmod(own.c_str(), 0444));
  for (const std::string& path : {own, folder.Path().string(), folder.File("none/target"),
                                  std::string(), folder.File(std::string(256, 'n')),
                                  folder.File(std::string(240, 'n') + ".quillpg-saving")}) {
    EXPECT_EQ(PG_E_FILE_NOT_OPENED, Save(path, "new")) << path;
  }
  EXPECT_EQ("old", folder.Text("own"));
  EXPECT_EQ((Names{"own", "target"}), folder.Names());
  EXPECT_EQ(S_OK, Save(folder.File(std::string(255, 'n')), "the longest name there is"));
}

TEST(AtomicFile, WritesInPlaceWhereTheFolderTakesNoNewFile) {
  const CTemporaryFolder folder;
  const std::string target = folder.Write("target", "old and longer");
  fs::permissions(target, fs::perms::all);
  ASSERT_EQ(0, chmod(folder.Path().c_str(), 0555));
  {
    const CUnprivileged user;
    EXPECT_EQ(S_OK, Save(target, "new"));
    EXPECT_EQ(PG_E_FILE_NOT_OPENED, Save(folder.File("other"), "new"));
  }
  EXPECT_EQ("new", folder.Text("target"));
  EXPECT_EQ(Names{"target"}, folder.Names());
}

TEST(AtomicFile, LeavesAloneWhatStandsInTheTemporarysPlace) {
  const CTemporaryFolder folder;
  const std::string target = folder.Write("target", "old");
  const std::string precious = folder.Write("precious", "precious");
  const fs::path temporary = folder.Path() / kTemporary;
  fs::create_symlink(precious, temporary);
  EXPECT_EQ(PG_E_FILE_NOT_OPENED, Save(target, "new"));
  fs::remove(temporary);
  fs::create_hard_link(precious, temporary);
  EXPECT_EQ(PG_E_FILE_NOT_OPENED, Save(target, "new"));
  EXPECT_EQ("precious", folder.Text("precious"));
  EXPECT_EQ("old", folder.Text("target"));
}

TEST(AtomicFile, FullDiskLeavesTheOldFile) {
  EXPECT_EQ(E_FAIL, Save("/dev/full", "new"));

  const CTemporaryFolder folder;
  const std::string target = folder.Write("target", "old");
  rlimit limit{};
  ASSERT_EQ(0, getrlimit(RLIMIT_FSIZE, &limit));
  const rlimit tight{1000, limit.rlim_max};
  const auto ignored = signal(SIGXFSZ, SIG_IGN);
  ASSERT_EQ(0, setrlimit(RLIMIT_FSIZE, &tight));
  const Status status = Save(target, std::string(100'000, 'x'));
  ASSERT_EQ(0, setrlimit(RLIMIT_FSIZE, &limit));
  (void)signal(SIGXFSZ, ignored);
  EXPECT_EQ(E_FAIL, status);
  EXPECT_EQ("old", folder.Text("target"));
  EXPECT_EQ(Names{"target"}, folder.Names());
}

}  // namespace
}  // namespace quillpg
