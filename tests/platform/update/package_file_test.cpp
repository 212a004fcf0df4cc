// SPDX-License-Identifier: MIT
#include "platform/linux/update/debian/downloads_folder.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <set>

#include "support/services/temporary_tree.h"

namespace {
bool renamesWithoutReplacing = true;
}

// In the place of the C library's, to be a file system that cannot do this.
extern "C" int renameat2(int oldFolder, const char* oldName, int newFolder, const char* newName, unsigned flags)
#ifdef __GLIBC__
    noexcept
#endif
{
  if (renamesWithoutReplacing) {
    return static_cast<int>(::syscall(SYS_renameat2, oldFolder, oldName, newFolder, newName, flags));
  }
  errno = EINVAL;
  return -1;
}

namespace nimbo {
namespace {

namespace fs = std::filesystem;

class PackageFile : public ::testing::TestWithParam<bool> {
 protected:
  PackageFile() { renamesWithoutReplacing = GetParam(); }
  ~PackageFile() override { renamesWithoutReplacing = true; }

  /// Everything there is, hidden files as well.
  [[nodiscard]] std::set<std::string> names(const std::string& folder = "") const {
    std::set<std::string> found;
    for (const auto& entry : fs::directory_iterator(tree.path() / folder)) found.insert(entry.path().filename());
    return found;
  }

  TemporaryTree tree;
};

TEST_P(PackageFile, IsSavedWholeUnderItsNameForTheUserAlone) {
  const std::string package(3'000'000, 'p');
  const auto saved = savePackage(tree.path(), "nimbo_1.2_amd64.deb", package);
  ASSERT_TRUE(saved) << saved.error().message();
  EXPECT_EQ(*saved, tree.path() / "nimbo_1.2_amd64.deb");
  EXPECT_EQ(tree.read("nimbo_1.2_amd64.deb"), package);
  EXPECT_EQ(names(), std::set<std::string>{"nimbo_1.2_amd64.deb"});
  struct stat status {};
  ASSERT_EQ(::stat(saved->c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777U, 0600U);
  EXPECT_EQ(status.st_nlink, 1U);
}

TEST_P(PackageFile, FilesThatAreThereStay) {
  tree.write("nimbo.deb", "mine");
  tree.write("nimbo (2).deb", "mine too");
  EXPECT_EQ(savePackage(tree.path(), "nimbo.deb", "a"), tree.path() / "nimbo (1).deb");
  EXPECT_EQ(savePackage(tree.path(), "nimbo.deb", "b"), tree.path() / "nimbo (3).deb");
  EXPECT_EQ(tree.read("nimbo.deb"), "mine");
  EXPECT_EQ(tree.read("nimbo (2).deb"), "mine too");
  EXPECT_EQ(tree.read("nimbo (3).deb"), "b");
  EXPECT_EQ(names().size(), 4U);
}

TEST_P(PackageFile, LinkInItsPlaceIsNotFollowed) {
  const auto target = tree.write("target", "precious");
  fs::create_symlink(target, tree.path() / "nimbo.deb");
  fs::create_symlink("/nonexistent/file", tree.path() / "nimbo (1).deb");
  EXPECT_EQ(savePackage(tree.path(), "nimbo.deb", "a"), tree.path() / "nimbo (2).deb");
  EXPECT_EQ(tree.read("target"), "precious");
}

TEST_P(PackageFile, MissingFolderIsMade) {
  const auto folder = tree.path() / "a" / "Downloads";
  EXPECT_EQ(savePackage(folder, "nimbo.deb", "a"), folder / "nimbo.deb");
}

TEST_P(PackageFile, FolderThatIsNoneIsAnError) {
  tree.write("Downloads", "a file");
  EXPECT_FALSE(savePackage(tree.path() / "Downloads", "nimbo.deb", "a"));
  EXPECT_EQ(tree.read("Downloads"), "a file");
}

TEST_P(PackageFile, NamesRunOutWithoutLeavingAnything) {
  tree.write("nimbo.deb", "");
  for (int number = 1; number < 100; ++number) tree.write("nimbo (" + std::to_string(number) + ").deb", "");
  EXPECT_EQ(savePackage(tree.path(), "nimbo.deb", "a"), tl::unexpected(std::make_error_code(std::errc::file_exists)));
  EXPECT_EQ(names().size(), 100U);
}

INSTANTIATE_TEST_SUITE_P(FileSystems, PackageFile, ::testing::Values(true, false),
                         [](const auto& parameter) { return parameter.param ? "Usual" : "Network"; });

TEST(PackageFileSpace, FullDiskLeavesNothing) {
  // Only the limit of this process for the size of a file stands in for a full disk.
  TemporaryTree tree;
  const pid_t child = ::fork();
  if (child == 0) {
    rlimit limit{1000, 1000};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    ::signal(SIGXFSZ, SIG_IGN);
    const auto saved = savePackage(tree.path(), "nimbo.deb", std::string(5000, 'p'));
    ::_exit(!saved && saved.error() == std::errc::file_too_large && fs::is_empty(tree.path()) ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
}

}  // namespace
}  // namespace nimbo
