// SPDX-License-Identifier: MIT
#include "platform/linux/files/file_stamp.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "support/services/temporary_tree.h"

namespace nimbo {
namespace {

namespace fs = std::filesystem;

TEST(FileStamp, MissingFileHasNone) {
  const TemporaryTree tree;
  EXPECT_EQ(fileStamp(tree.path() / "none").error(), std::errc::no_such_file_or_directory);
}

TEST(FileStamp, StaysWhileTheFileDoes) {
  const TemporaryTree tree;
  const fs::path file = tree.write("file", "text");
  const auto before = fileStamp(file);
  ASSERT_TRUE(before);
  EXPECT_TRUE(!tree.read("file").empty());
  EXPECT_EQ(fileStamp(file), before);
}

TEST(FileStamp, TellsLengthModificationAndReplacementApart) {
  const TemporaryTree tree;
  const fs::path file = tree.write("file", "text");
  const auto original = fileStamp(file);
  tree.write("file", "longer text");
  const auto longer = fileStamp(file);
  EXPECT_NE(longer, original);

  const timespec times[2] = {{1000, 5}, {1000, 5}};
  ASSERT_EQ(::utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
  const auto touched = fileStamp(file);
  ASSERT_TRUE(touched);
  EXPECT_EQ(touched->modifiedSeconds, 1000);

  const fs::path copy = tree.write("copy", "longer text");
  ASSERT_EQ(::utimensat(AT_FDCWD, copy.c_str(), times, 0), 0);
  fs::rename(copy, file);
  EXPECT_NE(fileStamp(file)->inode, touched->inode);
}

TEST(FileStamp, IsSettledOnceItIsOlderThanTheCoarsestClock) {
  FileStamp stamp;
  stamp.changedSeconds = 1000;
  stamp.changedNanoseconds = 999'999'999;
  EXPECT_FALSE(isSettled(stamp, 1000));
  EXPECT_FALSE(isSettled(stamp, 1002));
  EXPECT_TRUE(isSettled(stamp, 1003));
  EXPECT_FALSE(isSettled(stamp, 998)) << "a clock that was set back a little";
  EXPECT_TRUE(isSettled(stamp, 0)) << "a clock far off must not mean reading the file every time";
}

TEST(FileStamp, FollowsLinks) {
  const TemporaryTree tree;
  const fs::path file = tree.write("file", "text");
  fs::create_symlink("file", tree.path() / "link");
  EXPECT_EQ(fileStamp(tree.path() / "link"), fileStamp(file));
}

}  // namespace
}  // namespace nimbo
