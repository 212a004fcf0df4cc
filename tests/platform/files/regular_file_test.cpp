// SPDX-License-Identifier: MIT
#include "platform/linux/files/regular_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "support/services/temporary_tree.h"

namespace nimbo {
namespace {

namespace fs = std::filesystem;

TEST(RegularFile, ReadsTheWholeTextUpToTheLimit) {
  const TemporaryTree tree;
  const std::string text(50'000, 'x');
  EXPECT_EQ(readRegularFile(tree.write("file", text), 50'000), text);
  EXPECT_EQ(readRegularFile(tree.write("empty", ""), 10), "");
}

TEST(RegularFile, LongerThanTheLimitIsTooLarge) {
  const TemporaryTree tree;
  const auto text = readRegularFile(tree.write("file", std::string(11, 'x')), 10);
  ASSERT_FALSE(text);
  EXPECT_EQ(text.error(), std::errc::file_too_large);
}

TEST(RegularFile, EndlessDeviceFolderAndPipeAreNotRead) {
  const TemporaryTree tree;
  ASSERT_EQ(::mkfifo((tree.path() / "pipe").c_str(), 0600), 0);
  for (const fs::path& path : {fs::path("/dev/zero"), tree.path(), tree.path() / "pipe"}) {
    const auto text = readRegularFile(path, 10);
    ASSERT_FALSE(text) << path;
    EXPECT_EQ(text.error(), std::errc::not_supported) << path;
  }
}

TEST(RegularFile, MissingFileSaysSo) {
  const TemporaryTree tree;
  EXPECT_EQ(readRegularFile(tree.path() / "none", 10).error(), std::errc::no_such_file_or_directory);
  EXPECT_EQ(fileStamp(tree.path() / "none").error(), std::errc::no_such_file_or_directory);
}

TEST(RegularFile, LongerThanItsSizeSaysIsReadToItsEnd) {
  const auto text = readRegularFile("/proc/self/status", 10'000);  // says that it has 0 bytes
  ASSERT_TRUE(text);
  EXPECT_TRUE(text->starts_with("Name:"));
  EXPECT_TRUE(text->find("nonvoluntary_ctxt_switches:") != std::string::npos && text->ends_with("\n"));
  EXPECT_EQ(readRegularFile("/proc/self/status", 100).error(), std::errc::file_too_large);
}

TEST(RegularFile, StampStaysWhileTheFileDoes) {
  const TemporaryTree tree;
  const fs::path file = tree.write("file", "text");
  const auto before = fileStamp(file);
  ASSERT_TRUE(before);
  EXPECT_TRUE(readRegularFile(file, 10));
  EXPECT_EQ(fileStamp(file), before);
}

TEST(RegularFile, StampTellsLengthModificationAndReplacementApart) {
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
  EXPECT_EQ(touched->modified, (FileTime{1000, 5}));

  const fs::path copy = tree.write("copy", "longer text");
  ASSERT_EQ(::utimensat(AT_FDCWD, copy.c_str(), times, 0), 0);
  fs::rename(copy, file);
  EXPECT_NE(fileStamp(file)->inode, touched->inode);
}

TEST(RegularFile, StampIsSettledOnceItIsOlderThanTheCoarsestClock) {
  FileStamp stamp;
  stamp.changed = {1000, 999'999'999};
  EXPECT_FALSE(isSettled(stamp, 1000));
  EXPECT_FALSE(isSettled(stamp, 1002));
  EXPECT_TRUE(isSettled(stamp, 1003));
  EXPECT_FALSE(isSettled(stamp, 998)) << "a clock that was set back a little";
  EXPECT_TRUE(isSettled(stamp, 0)) << "a clock far off must not mean reading the file every time";
}

TEST(RegularFile, StampFollowsLinks) {
  const TemporaryTree tree;
  const fs::path file = tree.write("file", "text");
  fs::create_symlink("file", tree.path() / "link");
  EXPECT_EQ(fileStamp(tree.path() / "link"), fileStamp(file));
}

}  // namespace
}  // namespace nimbo
