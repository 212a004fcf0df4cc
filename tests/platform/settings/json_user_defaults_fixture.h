// SPDX-License-Identifier: MIT
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string>
#include <vector>

#include "support/services/temporary_tree.h"
#include "support/turning_user_defaults.h"

namespace nimbo {

inline constexpr char kDomain[] = "test.domain";
inline constexpr char kFile[] = "test.domain.json";

/// One domain in a folder of its own.
class JsonUserDefaultsTest : public ::testing::Test {
 protected:
  // Local times in file names must not depend on the machine.
  void SetUp() override {
    ::setenv("TZ", "UTC", 1);
    ::tzset();
  }

  [[nodiscard]] std::filesystem::path file() const { return tree.path() / kFile; }

  [[nodiscard]] std::vector<std::string> names() const {
    std::vector<std::string> result;
    for (const auto& entry : std::filesystem::directory_iterator(tree.path())) {
      result.push_back(entry.path().filename());
    }
    std::sort(result.begin(), result.end());
    return result;
  }

  static void setModified(const std::filesystem::path& path, std::time_t seconds) {
    const timespec times[2] = {{seconds, 0}, {seconds, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
  }

  static ino_t inode(const std::filesystem::path& path) {
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0);
    return status.st_ino;
  }

  static mode_t mode(const std::filesystem::path& path) {
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0);
    return status.st_mode & 07777;
  }

  TemporaryTree tree;
  TurningUserDefaults defaults{tree.path(), kDomain};
};

}  // namespace nimbo
