// What a killed save leaves: the old file or the new one, whole, and a next save that works.

#include "support/saved_system.h"

#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <new>
#include <random>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quillpg {
namespace {

constexpr int kKills = 200;
constexpr int kBlocks = 10;
constexpr unsigned kLongestDelay = 1000;  // microseconds

// Saves alternately two systems of unlike size until it is killed.
[[noreturn]] void SaveForever(CSavedSystem& system, std::atomic<int>& saves) {
  for (;;) {
    (void)system.Files().SaveSystem(system.File(), "short", 0);
    ++saves;
    (void)system.Files().SaveSystem(system.File(), "long", 1);
    ++saves;
  }
}

TEST(KilledSave, LosesNothing) {
  CSavedSystem system(2);
  CProgramBuilder builder(*system.Instrument(0));
  for (int i = 0; i < kBlocks; ++i) builder.Block("Block" + std::to_string(i), 4000);
  ASSERT_EQ(S_OK, system.Files().SaveSystem(system.File("short"), "short", 0));
  ASSERT_EQ(S_OK, system.Files().SaveSystem(system.File("long"), "long", 1));
  ASSERT_EQ(S_OK, system.Files().SaveSystem(system.File(), "long", 1));
  const std::string images[] = {system.Bytes("short"), system.Bytes("long")};
  std::mt19937 random(1);
  // A number that this process and its children share.
  void* page = mmap(nullptr, sizeof(std::atomic<int>), PROT_READ | PROT_WRITE,
                    MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(MAP_FAILED, page);
  auto& saves = *new (page) std::atomic<int>(0);
  int seen[2] = {};
  int leftOver = 0;
  for (int i = 0; i < kKills; ++i) {
    saves = 0;
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) SaveForever(system, saves);
    while (saves < i % 3) (void)usleep(50);
    (void)usleep(static_cast<useconds_t>(random() % kLongestDelay));
    ASSERT_EQ(0, kill(child, SIGKILL));
    ASSERT_EQ(child, waitpid(child, nullptr, 0));
    const std::string file = system.Bytes();
    ASSERT_TRUE(file == images[0] || file == images[1]) << "after kill " << i;
    ++seen[file == images[0] ? 0 : 1];
    leftOver += system.Folder().Names().size() > 3 ? 1 : 0;
  }
  // The kills fell while saves were going on.
  EXPECT_GT(seen[0], 0);
  EXPECT_GT(seen[1], 0);
  EXPECT_GT(leftOver, 0);
  EXPECT_EQ(S_OK, system.Files().SaveSystem(system.File(), "long", 1));
  EXPECT_EQ(3U, system.Folder().Names().size());
  EXPECT_EQ(S_OK, system.Server().LoadSystem(system.File()));
  (void)munmap(page, sizeof(std::atomic<int>));
}

}  // namespace
}  // namespace quillpg
