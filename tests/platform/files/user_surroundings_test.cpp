// SPDX-License-Identifier: MIT
#include "platform/posix/files/user_surroundings.h"

#include <gtest/gtest.h>

#include <array>

#include "support/services/temporary_tree.h"

namespace nimbo {
namespace {

namespace fs = std::filesystem;

class LocalTimeZone : public ::testing::Test {
 protected:
  std::string linkedTo(const char* target) {
    fs::remove(localtime_);
    fs::create_symlink(target, localtime_);
    return localTimeZoneName(std::nullopt, localtime_);
  }

  TemporaryTree tree_;
  fs::path localtime_ = tree_.path() / "localtime";
};

TEST_F(LocalTimeZone, LinkIntoTheDatabaseNamesTheZone) {
  EXPECT_EQ(linkedTo("/usr/share/zoneinfo/Europe/Berlin"), "Europe/Berlin");
  EXPECT_EQ(linkedTo("../usr/share/zoneinfo/America/Indiana/Knox"), "America/Indiana/Knox");
}

TEST_F(LocalTimeZone, ChangedLinkIsSeenAtTheNextQuestion) {
  EXPECT_EQ(linkedTo("/usr/share/zoneinfo/Europe/Berlin"), "Europe/Berlin");
  EXPECT_EQ(linkedTo("/usr/share/zoneinfo/Asia/Tokyo"), "Asia/Tokyo");
}

TEST_F(LocalTimeZone, CopyOfAZoneIsReadFromItsPath) {
  tree_.write("localtime", "TZif2");
  EXPECT_EQ(localTimeZoneName(std::nullopt, localtime_), localtime_.string());
}

TEST_F(LocalTimeZone, LinkElsewhereIsReadFromItsPath) {
  tree_.write("zone", "TZif2");
  EXPECT_EQ(linkedTo("zone"), localtime_.string());
}

TEST_F(LocalTimeZone, NothingSetIsUtc) { EXPECT_EQ(localTimeZoneName(std::nullopt, localtime_), "UTC"); }

TEST_F(LocalTimeZone, VariableCountsBeforeTheLink) {
  fs::create_symlink("/usr/share/zoneinfo/Europe/Berlin", localtime_);
  EXPECT_EQ(localTimeZoneName("Asia/Tokyo", localtime_), "Asia/Tokyo");
  EXPECT_EQ(localTimeZoneName(":Asia/Tokyo", localtime_), "Asia/Tokyo");
  EXPECT_EQ(localTimeZoneName("/etc/zone", localtime_), "/etc/zone");
  EXPECT_EQ(localTimeZoneName("CET-1CEST", localtime_), "CET-1CEST");
}

TEST_F(LocalTimeZone, EmptyVariableIsUtc) {
  EXPECT_EQ(localTimeZoneName("", localtime_), "UTC");
  EXPECT_EQ(localTimeZoneName(":", localtime_), "UTC");
}

TEST(UserSurroundings, WhatProgramsFindWhenTheyStart) {
  const Environment environment{
      {"CODEX_HOME", "/codex"}, {"HOME", "/home/ada"}, {"PATH", "/bin"}, {"TZ", ":Asia/Tokyo"}};
  const auto user = userSurroundings(environment, "/caches");
  EXPECT_EQ(user.home, "/home/ada");
  EXPECT_EQ(user.caches, "/caches");
  EXPECT_EQ(user.searchPath, "/bin");
  EXPECT_EQ(user.codexHome, "/codex");
  EXPECT_EQ(user.localZone(), "Asia/Tokyo");
  EXPECT_EQ(user.environment,
            (std::vector<std::string>{"CODEX_HOME=/codex", "HOME=/home/ada", "PATH=/bin", "TZ=:Asia/Tokyo"}));
}

TEST(UserSurroundings, WithoutUsableHomeTheAccountsOneCounts) {
  ASSERT_TRUE(accountHome().is_absolute());
  EXPECT_EQ(userSurroundings({}, "/caches").home, accountHome());
  EXPECT_EQ(userSurroundings({{"HOME", "ada"}}, "/caches").home, accountHome());
}

TEST(UserSurroundings, EnvironmentIsThatOfTheProcess) {
  std::array<char*, 4> entries{const_cast<char*>("A=b=c"), const_cast<char*>("odd"), const_cast<char*>("EMPTY="),
                               nullptr};
  const auto environment = environmentOf(entries.data());
  EXPECT_EQ(environment, (Environment{{"A", "b=c"}, {"EMPTY", ""}}));
  EXPECT_EQ(variable(environment, "A"), "b=c");
  EXPECT_EQ(variable(environment, "odd"), "");
  EXPECT_TRUE(environmentOf(nullptr).empty());
}

}  // namespace
}  // namespace nimbo
