// SPDX-License-Identifier: MIT
#include "platform/posix/terminal/local_tool_files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/contracts/user_files_contract.h"
#include "platform/posix/files/regular_file.h"
#include "support/services/temporary_tree.h"

namespace nimbo {
namespace {

namespace fs = std::filesystem;

using State = PrivateFolder::State;

mode_t modeOf(const fs::path& path) {
  struct stat status {};
  return ::lstat(path.c_str(), &status) == 0 ? status.st_mode & ALLPERMS : 0;
}

struct FilesOnDisk {
  [[nodiscard]] fs::path path(const char* name) const { return fs::canonical(tree.path()) / name; }
  [[nodiscard]] fs::path write(const char* name, const char* text) const { return tree.write(name, text); }
  [[nodiscard]] fs::path makeExecutable(const char* name) const {
    const auto file = tree.write(name, "");
    fs::permissions(file, fs::perms::owner_all);
    return file;
  }
  void occupy(const char* folder) const { tree.write(fs::path(folder) / "file", ""); }

  TemporaryTree tree;
  PlainSecretFiles secrets;
  LocalToolFiles tools;
};
INSTANTIATE_TYPED_TEST_SUITE_P(Posix, UserFilesContract, FilesOnDisk);

class LocalToolFilesTest : public ::testing::Test {
 protected:
  TemporaryTree tree;
  LocalToolFiles files;
  const fs::path root = fs::canonical(tree.path());
  const fs::path folder = root / "cache/nimbo/workspace";
};

TEST_F(LocalToolFilesTest, MissingFolderIsMadeWithThoseAboveForTheUserOnly) {
  const auto prepared = files.preparePrivateFolder(folder);
  ASSERT_TRUE(prepared) << prepared.error().message();
  EXPECT_EQ(prepared->state, State::empty);
  EXPECT_EQ(prepared->path, folder);
  EXPECT_EQ(modeOf(folder), 0700U);
  EXPECT_EQ(modeOf(folder.parent_path()), 0700U);
}

TEST_F(LocalToolFilesTest, EmptyFolderIsUsedAgain) {
  ASSERT_TRUE(files.preparePrivateFolder(folder));
  const auto again = files.preparePrivateFolder(folder);
  ASSERT_TRUE(again);
  EXPECT_EQ(again->state, State::empty);
}

TEST_F(LocalToolFilesTest, FolderThatOthersCouldEnterIsClosedToThem) {
  fs::create_directories(folder);
  fs::permissions(folder, fs::perms::all | fs::perms::set_gid);
  ASSERT_TRUE(files.preparePrivateFolder(folder));
  EXPECT_EQ(modeOf(folder), 0700U);
}

TEST_F(LocalToolFilesTest, AnyEntryMakesItOccupied) {
  for (const char* name : {"file", ".hidden", "folder/"}) {
    const fs::path entry = folder / name;
    fs::create_directories(entry.has_filename() ? folder : entry);
    if (entry.has_filename()) tree.write(fs::path("cache/nimbo/workspace") / name, "");
    const auto prepared = files.preparePrivateFolder(folder);
    ASSERT_TRUE(prepared) << name;
    EXPECT_EQ(prepared->state, State::occupied) << name;
    fs::remove_all(folder);
  }
}

TEST_F(LocalToolFilesTest, LinkInItsPlaceIsOccupiedAndNotFollowed) {
  fs::create_directories(root / "elsewhere");
  fs::permissions(root / "elsewhere", fs::perms::all);
  fs::create_directories(folder.parent_path());
  fs::create_directory_symlink(root / "elsewhere", folder);
  for (const fs::path& name : {folder, folder / ""}) {
    const auto prepared = files.preparePrivateFolder(name);
    ASSERT_TRUE(prepared) << prepared.error().message();
    EXPECT_EQ(prepared->state, State::occupied) << name;
  }
  EXPECT_EQ(modeOf(root / "elsewhere"), 0777U);
}

TEST_F(LocalToolFilesTest, LinkToNowhereIsOccupied) {
  fs::create_directories(folder.parent_path());
  fs::create_directory_symlink(root / "missing", folder);
  const auto prepared = files.preparePrivateFolder(folder);
  ASSERT_TRUE(prepared) << prepared.error().message();
  EXPECT_EQ(prepared->state, State::occupied);
  EXPECT_FALSE(fs::exists(root / "missing"));
}

TEST_F(LocalToolFilesTest, LinkOnTheWayIsFollowedAndTheOwnNameTold) {
  fs::create_directories(root / "elsewhere");
  fs::create_directory_symlink(root / "elsewhere", root / "cache");
  const auto prepared = files.preparePrivateFolder(folder);
  ASSERT_TRUE(prepared) << prepared.error().message();
  EXPECT_EQ(prepared->state, State::empty);
  EXPECT_EQ(prepared->path, root / "elsewhere/nimbo/workspace");
}

TEST_F(LocalToolFilesTest, FileInItsPlaceIsAnError) {
  tree.write("cache/nimbo/workspace", "a file");
  const auto prepared = files.preparePrivateFolder(folder);
  ASSERT_FALSE(prepared);
  EXPECT_EQ(prepared.error(), std::errc::not_a_directory);
}

TEST_F(LocalToolFilesTest, FileOnTheWayIsAnError) {
  tree.write("cache", "a file");
  const auto prepared = files.preparePrivateFolder(folder);
  ASSERT_FALSE(prepared);
  EXPECT_EQ(prepared.error(), std::errc::not_a_directory);
}

TEST_F(LocalToolFilesTest, ExecutableIsAFileThatMayBeExecuted) {
  const fs::path program = tree.write("program", "#!/bin/sh\n");
  EXPECT_FALSE(files.isExecutable(program)) << "no permission yet";
  fs::permissions(program, fs::perms::owner_all);
  EXPECT_TRUE(files.isExecutable(program));
  fs::create_symlink(program, root / "link");
  EXPECT_TRUE(files.isExecutable(root / "link"));
}

TEST_F(LocalToolFilesTest, FoldersMissingFilesAndBrokenLinksAreNotExecutable) {
  fs::create_symlink(root / "missing", root / "broken");
  for (const char* name : {"", "missing", "broken"}) EXPECT_FALSE(files.isExecutable(root / name)) << name;
}

}  // namespace
}  // namespace nimbo
