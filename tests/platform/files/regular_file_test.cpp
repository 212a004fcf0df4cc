// SPDX-License-Identifier: MIT
#include "platform/posix/files/regular_file.h"

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
}

TEST(RegularFile, LongerThanItsSizeSaysIsReadToItsEnd) {
  const auto text = readRegularFile("/proc/self/status", 10'000);  // says that it has 0 bytes
  ASSERT_TRUE(text);
  EXPECT_TRUE(text->starts_with("Name:"));
  EXPECT_TRUE(text->find("nonvoluntary_ctxt_switches:") != std::string::npos && text->ends_with("\n"));
  EXPECT_EQ(readRegularFile("/proc/self/status", 100).error(), std::errc::file_too_large);
}

}  // namespace
}  // namespace nimbo
