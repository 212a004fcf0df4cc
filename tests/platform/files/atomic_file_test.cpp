// SPDX-License-Identifier: MIT
#include "platform/posix/files/atomic_file.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <iterator>
#include <random>
#include <string>
#include <utility>

#include "support/services/temporary_tree.h"

namespace nimbo {
namespace {

namespace fs = std::filesystem;

auto fileCount(const fs::path& folder) {
  return std::distance(fs::directory_iterator(folder), fs::directory_iterator());
}

mode_t mode(const fs::path& path) {
  struct stat status {};
  EXPECT_EQ(::stat(path.c_str(), &status), 0);
  return status.st_mode & 07777;
}

TEST(AtomicFile, WritesANewFileForTheUserAlone) {
  const TemporaryTree tree;
  EXPECT_FALSE(writeFileAtomically(tree.path() / "file", "text"));
  EXPECT_EQ(tree.read("file"), "text");
  EXPECT_EQ(mode(tree.path() / "file"), 0600U);
}

TEST(AtomicFile, ReplacesTheOldVersionWholly) {
  const TemporaryTree tree;
  tree.write("file", "a longer old text");
  EXPECT_FALSE(writeFileAtomically(tree.path() / "file", "new"));
  EXPECT_EQ(tree.read("file"), "new");
  EXPECT_EQ(fileCount(tree.path()), 1);
}

TEST(AtomicFile, KillAtAnyMomentLeavesAWholeVersion) {
  constexpr int kKills = 200;
  const TemporaryTree tree;
  const fs::path file = tree.path() / "file";
  const auto version = [](int number) { return std::string(20'000, static_cast<char>('a' + number % 26)); };
  ASSERT_FALSE(writeFileAtomically(file, version(0)));
  std::mt19937 random{std::random_device{}()};
  for (int kill = 0; kill < kKills; ++kill) {
    const pid_t writer = ::fork();
    if (writer == 0) {
      for (int number = kill;; ++number) (void)writeFileAtomically(file, version(number));
    }
    ::usleep(std::uniform_int_distribution(0U, 3000U)(random));
    ::kill(writer, SIGKILL);
    ::waitpid(writer, nullptr, 0);
    const std::string text = tree.read("file");
    ASSERT_EQ(text, version(text.empty() ? 0 : text.front() - 'a'));
  }
}

TEST(AtomicFile, MakesMissingFoldersForTheUserAloneAndLeavesOldOnesAsTheyAre) {
  const TemporaryTree tree;
  fs::create_directory(tree.path() / "old");
  fs::permissions(tree.path() / "old", fs::perms{0755});
  EXPECT_FALSE(writeFileAtomically(tree.path() / "old/new/newer/file", "text"));
  EXPECT_EQ(mode(tree.path() / "old"), 0755U);
  EXPECT_EQ(mode(tree.path() / "old/new"), 0700U);
  EXPECT_EQ(mode(tree.path() / "old/new/newer"), 0700U);
}

TEST(AtomicFile, WritesBytesOfAnyKindAndLength) {
  const TemporaryTree tree;
  std::string bytes(300'000, '\0');
  for (std::size_t index = 0; index < bytes.size(); ++index) bytes[index] = static_cast<char>(index % 251);
  EXPECT_FALSE(writeFileAtomically(tree.path() / "file", bytes));
  EXPECT_EQ(tree.read("file"), bytes);
  EXPECT_FALSE(writeFileAtomically(tree.path() / "file", ""));
  EXPECT_TRUE(fs::is_empty(tree.path() / "file"));
}

TEST(AtomicFile, NothingShowsBeforeTheCommit) {
  const TemporaryTree tree;
  tree.write("file", "old");
  auto next = AtomicFile::prepare(tree.path() / "file", "new");
  ASSERT_TRUE(next);
  EXPECT_EQ(tree.read("file"), "old");
  EXPECT_FALSE(next->commit());
  EXPECT_EQ(tree.read("file"), "new");
}

TEST(AtomicFile, UncommittedOneLeavesNothing) {
  const TemporaryTree tree;
  tree.write("file", "old");
  {
    auto next = AtomicFile::prepare(tree.path() / "file", "new");
    ASSERT_TRUE(next);
    const AtomicFile moved = std::move(*next);
    EXPECT_EQ(fileCount(tree.path()), 2);
  }
  EXPECT_EQ(tree.read("file"), "old");
  EXPECT_EQ(fileCount(tree.path()), 1);
}

TEST(AtomicFile, LinkStaysAndItsTargetIsNamed) {
  const TemporaryTree tree;
  tree.write("folder/real", "old");
  fs::create_symlink("folder/real", tree.path() / "link");
  auto next = AtomicFile::prepare(tree.path() / "link", "new");
  ASSERT_TRUE(next);
  EXPECT_EQ(next->target(), tree.path() / "folder/real");
  EXPECT_FALSE(next->commit());
  EXPECT_TRUE(fs::is_symlink(tree.path() / "link"));
  EXPECT_EQ(tree.read("folder/real"), "new");
}

TEST(AtomicFile, RefusedLinkIsAnErrorAndNothingChanges) {
  const TemporaryTree tree;
  tree.write("real", "old");
  fs::create_symlink("real", tree.path() / "link");
  fs::create_symlink("nowhere", tree.path() / "dangling");
  for (const char* const name : {"link", "dangling"}) {
    EXPECT_EQ(writeFileAtomically(tree.path() / name, "new", AtomicFile::Links::refuse), std::errc::not_supported);
    EXPECT_TRUE(fs::is_symlink(tree.path() / name)) << name;
  }
  EXPECT_EQ(tree.read("real"), "old");
  EXPECT_EQ(fileCount(tree.path()), 3);
}

TEST(AtomicFile, RefusingLinksStillReplacesFilesBelowALinkedFolder) {
  const TemporaryTree tree;
  tree.write("folder/file", "old");
  fs::create_directory_symlink("folder", tree.path() / "link");
  EXPECT_FALSE(writeFileAtomically(tree.path() / "link/file", "new", AtomicFile::Links::refuse));
  EXPECT_EQ(tree.read("folder/file"), "new");
}

TEST(AtomicFile, LoopOfLinksIsAnError) {
  const TemporaryTree tree;
  fs::create_symlink("b", tree.path() / "a");
  fs::create_symlink("a", tree.path() / "b");
  EXPECT_EQ(writeFileAtomically(tree.path() / "a", "new"), std::errc::too_many_symbolic_link_levels);
}

TEST(AtomicFile, OnlyRegularFilesAreReplaced) {
  const TemporaryTree tree;
  fs::create_directory(tree.path() / "folder");
  ASSERT_EQ(::mkfifo((tree.path() / "pipe").c_str(), 0600), 0);
  fs::create_symlink("pipe", tree.path() / "link");
  for (const char* const name : {"folder", "pipe", "link"}) {
    EXPECT_EQ(writeFileAtomically(tree.path() / name, "new"), std::errc::not_supported) << name;
  }
  EXPECT_TRUE(fs::is_directory(tree.path() / "folder"));
  EXPECT_TRUE(fs::is_fifo(tree.path() / "pipe"));
  EXPECT_TRUE(fs::is_symlink(tree.path() / "link"));
}

TEST(AtomicFile, FileWhereAFolderShouldBeIsAnError) {
  const TemporaryTree tree;
  tree.write("file", "old");
  EXPECT_EQ(writeFileAtomically(tree.path() / "file/below", "new"), std::errc::not_a_directory);
  EXPECT_EQ(writeFileAtomically(tree.path() / "file/below/deeper", "new"), std::errc::not_a_directory);
  EXPECT_EQ(tree.read("file"), "old");
}

TEST(AtomicFile, FailedCommitLeavesTheOldOneAndNoTemporary) {
  const TemporaryTree tree;
  {
    auto next = AtomicFile::prepare(tree.path() / "file", "new");
    ASSERT_TRUE(next);
    tree.write("file/in-the-way", "kept");
    EXPECT_EQ(next->commit(), std::errc::is_a_directory);
  }
  EXPECT_EQ(tree.read("file/in-the-way"), "kept");
  EXPECT_EQ(fileCount(tree.path()), 1);
}

// A limit on the size of files stands in for a full disk: the write stops half-way with an error.
TEST(AtomicFile, DiskThatFillsUpLeavesTheOldOneAndNoTemporary) {
  const TemporaryTree tree;
  tree.write("file", "old");
  rlimit unlimited{};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &unlimited), 0);
  const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
  const rlimit small{4096, unlimited.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
  const auto error = writeFileAtomically(tree.path() / "file", std::string(10'000, 'x'));
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &unlimited), 0);
  std::signal(SIGXFSZ, oldHandler);
  EXPECT_EQ(error, std::errc::file_too_large);
  EXPECT_EQ(tree.read("file"), "old");
  EXPECT_EQ(fileCount(tree.path()), 1);
}

TEST(AtomicFile, RelativePathIsTakenFromTheWorkingFolder) {
  const TemporaryTree tree;
  const fs::path before = fs::current_path();
  fs::current_path(tree.path());
  EXPECT_FALSE(writeFileAtomically("file", "text"));
  fs::current_path(before);
  EXPECT_EQ(tree.read("file"), "text");
}

}  // namespace
}  // namespace nimbo
