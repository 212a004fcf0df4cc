// SPDX-License-Identifier: MIT
#include "platform/linux/settings/json_user_defaults.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "platform/contracts/user_defaults_contract.h"
#include "platform/settings/json_user_defaults_fixture.h"

namespace nimbo {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

struct JsonStore final : UserDefaultsHost {
  [[nodiscard]] UserDefaultsDomains& domains() override { return all; }
  [[nodiscard]] std::unique_ptr<UserDefaults> open(const std::string& domain) override {
    return std::make_unique<TurningUserDefaults>(tree.path(), domain);
  }

  TemporaryTree tree;
  JsonUserDefaultsDomains all{tree.path()};
};
INSTANTIATE_TEST_SUITE_P(Json, UserDefaultsContract, testing::Values(makeUserDefaultsHost<JsonStore>));

TEST_F(JsonUserDefaultsTest, FileIsSortedAndIndentedForPeople) {
  defaults.set("b", 1);
  defaults.set("a", {"x", "y"});
  EXPECT_EQ(tree.read(kFile), "{\n  \"a\": [\n    \"x\",\n    \"y\"\n  ],\n  \"b\": 1\n}\n");
}

TEST_F(JsonUserDefaultsTest, ReadingAndRegisteringCreateNoFile) {
  defaults.registerDefault("count", 5);
  EXPECT_EQ(defaults.integer("count"), 5);
  EXPECT_TRUE(names().empty());
}

TEST_F(JsonUserDefaultsTest, FileAndItsNewFoldersAreTheUsersAlone) {
  TurningUserDefaults deep(tree.path() / "one" / "two", kDomain);
  deep.set("count", 1);
  EXPECT_EQ(mode(tree.path() / "one"), 0700U);
  EXPECT_EQ(mode(tree.path() / "one" / "two"), 0700U);
  EXPECT_EQ(mode(tree.path() / "one" / "two" / kFile), 0600U);
}

TEST_F(JsonUserDefaultsTest, WritingLeavesNoOtherFile) {
  defaults.set("count", 1);
  defaults.set("count", 2);
  EXPECT_EQ(names(), std::vector<std::string>{kFile});
}

TEST_F(JsonUserDefaultsTest, UnknownKeysAreKept) {
  tree.write(kFile, R"({"future": {"nested": [1, 2.5, null]}, "count": 1})");
  defaults.set("count", 2);
  EXPECT_EQ(json::parse(tree.read(kFile)), json::parse(R"({"future": {"nested": [1, 2.5, null]}, "count": 2})"));
}

TEST_F(JsonUserDefaultsTest, WriteThatChangesNothingLeavesTheFileUntouched) {
  const std::string text = R"({"count":5.0,   "on":true})";
  tree.write(kFile, text);
  setModified(file(), 1'000'000'000);
  const ino_t before = inode(file());
  defaults.set("count", 5);
  defaults.set("on", true);
  EXPECT_EQ(tree.read(kFile), text);
  EXPECT_EQ(inode(file()), before);
}

TEST_F(JsonUserDefaultsTest, ChangeMadeByHandIsSeenAtTheNextRead) {
  tree.write(kFile, R"({"count": 1})");
  EXPECT_EQ(defaults.integer("count"), 1);
  tree.write(kFile, R"({"count": 2})");  // same length, same inode, within one tick of the file system's clock
  EXPECT_EQ(defaults.integer("count"), 2);
}

TEST_F(JsonUserDefaultsTest, ManyQuickChangesAreAllSeen) {
  for (int count = 100; count < 400; ++count) {
    tree.write(kFile, json({{"count", count}}).dump());
    ASSERT_EQ(defaults.integer("count"), count);
  }
}

TEST_F(JsonUserDefaultsTest, FileReplacedByAnEditorIsSeen) {
  tree.write(kFile, R"({"count": 1})");
  EXPECT_EQ(defaults.integer("count"), 1);
  fs::rename(tree.write("new", R"({"count": 2})"), file());
  EXPECT_EQ(defaults.integer("count"), 2);
}

TEST_F(JsonUserDefaultsTest, FileDeletedByHandMeansDefaults) {
  defaults.registerDefault("count", 5);
  defaults.set("count", 1);
  fs::remove(file());
  EXPECT_EQ(defaults.integer("count"), 5);
}

TEST_F(JsonUserDefaultsTest, HandEditOfAnotherKeySurvivesOurWrite) {
  defaults.set("count", 1);
  tree.write(kFile, R"({"count": 1, "hand": "made"})");
  defaults.set("count", 2);
  EXPECT_EQ(json::parse(tree.read(kFile)), json({{"count", 2}, {"hand", "made"}}));
}

TEST_F(JsonUserDefaultsTest, AnotherProcessSeesAndChangesTheSameValues) {
  defaults.set("count", 1);
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    TurningUserDefaults theirs(tree.path(), kDomain);
    const bool seen = theirs.integer("count") == 1;
    theirs.set("count", 2);
    ::_exit(seen ? 0 : 1);
  }
  int status = -1;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(defaults.integer("count"), 2);
}

TEST_F(JsonUserDefaultsTest, OfDuplicateKeysTheLastCounts) {
  tree.write(kFile, R"({"count": 1, "count": 2})");
  EXPECT_EQ(defaults.integer("count"), 2);
}

TEST_F(JsonUserDefaultsTest, ByteOrderMarkIsAllowed) {
  tree.write(kFile, "\xEF\xBB\xBF{\"count\": 3}");
  EXPECT_EQ(defaults.integer("count"), 3);
}

TEST_F(JsonUserDefaultsTest, InvalidUtf8SetByTheProgramIsReplacedNowAndAfterARestart) {
  defaults.set("name", "a\xff");
  EXPECT_EQ(defaults.string("name"), "a\xEF\xBF\xBD");
  EXPECT_EQ(TurningUserDefaults(tree.path(), kDomain).string("name"), "a\xEF\xBF\xBD");
}

TEST_F(JsonUserDefaultsTest, ValueThatWouldMakeTheFileUnreadableIsHeldForThisRunOnly) {
  defaults.set("count", 1);
  const std::string huge(std::size_t{1} << 20, 'x');
  defaults.set("name", huge);
  EXPECT_EQ(defaults.string("name"), huge);
  EXPECT_EQ(json::parse(tree.read(kFile)), json({{"count", 1}}));
}

TEST_F(JsonUserDefaultsTest, SymbolicLinkStaysALinkAndItsTargetIsWritten) {
  tree.write("dotfiles/settings.json", R"({"count": 1})");
  fs::create_symlink("dotfiles/settings.json", file());
  EXPECT_EQ(defaults.integer("count"), 1);
  defaults.set("count", 2);
  EXPECT_TRUE(fs::is_symlink(file()));
  EXPECT_EQ(json::parse(tree.read("dotfiles/settings.json")), json({{"count", 2}}));
}

TEST_F(JsonUserDefaultsTest, ChainOfLinksIsFollowedToItsEnd) {
  tree.write("c", R"({"count": 1})");
  fs::create_symlink(tree.path() / "c", tree.path() / "b");
  fs::create_symlink("b", file());
  defaults.set("count", 2);
  EXPECT_TRUE(fs::is_symlink(file()));
  EXPECT_TRUE(fs::is_symlink(tree.path() / "b"));
  EXPECT_EQ(json::parse(tree.read("c")), json({{"count", 2}}));
}

TEST_F(JsonUserDefaultsTest, LinkToNothingYetCreatesItsTarget) {
  fs::create_symlink("dotfiles/settings.json", file());
  defaults.set("count", 2);
  EXPECT_TRUE(fs::is_symlink(file()));
  EXPECT_EQ(json::parse(tree.read("dotfiles/settings.json")), json({{"count", 2}}));
}

TEST_F(JsonUserDefaultsTest, LoopOfLinksIsLeftAloneAndValuesHoldForThisRun) {
  fs::create_symlink("other", file());
  fs::create_symlink(kFile, tree.path() / "other");
  defaults.registerDefault("count", 5);
  EXPECT_EQ(defaults.integer("count"), 5);
  defaults.set("count", 6);
  EXPECT_EQ(defaults.integer("count"), 6);
  EXPECT_EQ(fs::read_symlink(file()), "other");
  EXPECT_EQ(names(), (std::vector<std::string>{"other", kFile}));
}

TEST_F(JsonUserDefaultsTest, DirectoryInItsPlaceIsLeftAloneAndValuesHoldForThisRun) {
  tree.write(fs::path(kFile) / "precious", "kept");
  defaults.set("count", 6);
  EXPECT_EQ(defaults.integer("count"), 6);
  EXPECT_EQ(tree.read(fs::path(kFile) / "precious"), "kept");
  EXPECT_EQ(names(), std::vector<std::string>{kFile});
}

TEST_F(JsonUserDefaultsTest, PipeInItsPlaceNeverBlocks) {
  ASSERT_EQ(::mkfifo(file().c_str(), 0600), 0);
  defaults.set("count", 6);
  EXPECT_EQ(defaults.integer("count"), 6);
  EXPECT_TRUE(fs::is_fifo(file()));
}

TEST_F(JsonUserDefaultsTest, LinkToAPipeIsLeftAlone) {
  ASSERT_EQ(::mkfifo((tree.path() / "pipe").c_str(), 0600), 0);
  fs::create_symlink("pipe", file());
  defaults.set("count", 6);
  EXPECT_EQ(defaults.integer("count"), 6);
  EXPECT_TRUE(fs::is_fifo(tree.path() / "pipe"));
  EXPECT_TRUE(fs::is_symlink(file()));
}

TEST_F(JsonUserDefaultsTest, FailedWritesHoldForThisRunAndAreWrittenWithTheNextThatSucceeds) {
  tree.write("blocked", "a file where the folder should be");
  TurningUserDefaults blocked(tree.path() / "blocked", kDomain);
  blocked.registerDefault("count", 5);
  blocked.set("count", 6);
  blocked.set("on", true);
  EXPECT_EQ(blocked.integer("count"), 6);
  EXPECT_EQ(blocked.boolean("on"), true);

  fs::remove(tree.path() / "blocked");
  EXPECT_EQ(blocked.integer("count"), 6);
  blocked.set("name", "now");
  EXPECT_EQ(json::parse(tree.read(fs::path("blocked") / kFile)), json({{"count", 6}, {"name", "now"}, {"on", true}}));
}

TEST_F(JsonUserDefaultsTest, WhatCouldNotBeWrittenIsWrittenAtTheEnd) {
  tree.write("blocked", "a file where the folder should be");
  {
    TurningUserDefaults blocked(tree.path() / "blocked", kDomain);
    blocked.set("count", 6);
    fs::remove(tree.path() / "blocked");
  }
  EXPECT_EQ(json::parse(tree.read(fs::path("blocked") / kFile)), json({{"count", 6}}));
}

TEST_F(JsonUserDefaultsTest, ValueHeldForThisRunHidesTheStoredOneEvenWithAnotherType) {
  tree.write(fs::path(kFile) / "in-the-way", "");
  defaults.registerDefault("count", 5);
  defaults.set("count", "six");
  EXPECT_EQ(defaults.integer("count"), 5);
  EXPECT_EQ(defaults.string("count"), "six");
}

/// Permissions mean nothing to root, so these run as an ordinary user.
class JsonUserDefaultsPermissions : public JsonUserDefaultsTest {
 protected:
  void SetUp() override {
    JsonUserDefaultsTest::SetUp();
    if (::geteuid() != 0) return;
    ASSERT_EQ(::chown(tree.path().c_str(), kNobody, static_cast<gid_t>(-1)), 0);
    ASSERT_EQ(::seteuid(kNobody), 0);
    changed_ = true;
  }
  void TearDown() override {
    ::chmod(tree.path().c_str(), 0700);
    if (changed_) {
      ASSERT_EQ(::seteuid(0), 0);
    }
  }

 private:
  static constexpr uid_t kNobody = 65534;
  bool changed_ = false;
};

TEST_F(JsonUserDefaultsPermissions, FileWithoutReadPermissionIsLeftAloneAndKeepsLastGoodValues) {
  defaults.set("count", 1);
  ASSERT_EQ(::chmod(file().c_str(), 0), 0);
  EXPECT_EQ(defaults.integer("count"), 1);
  defaults.set("count", 2);
  EXPECT_EQ(defaults.integer("count"), 2);
  EXPECT_EQ(names(), std::vector<std::string>{kFile});

  ASSERT_EQ(::chmod(file().c_str(), 0600), 0);
  EXPECT_EQ(json::parse(tree.read(kFile)), json({{"count", 1}}));
}

TEST_F(JsonUserDefaultsPermissions, ReadOnlyFolderKeepsTheValueForThisRun) {
  defaults.set("count", 1);
  ASSERT_EQ(::chmod(tree.path().c_str(), 0500), 0);
  defaults.set("count", 2);
  EXPECT_EQ(defaults.integer("count"), 2);
  EXPECT_EQ(json::parse(tree.read(kFile)), json({{"count", 1}}));
  EXPECT_EQ(names(), std::vector<std::string>{kFile});
}

TEST_F(JsonUserDefaultsPermissions, MalformedFileInAReadOnlyFolderStays) {
  defaults.set("count", 1);
  tree.write(kFile, "{oops");
  ASSERT_EQ(::chmod(tree.path().c_str(), 0500), 0);
  defaults.set("count", 2);
  EXPECT_EQ(defaults.integer("count"), 2);
  EXPECT_EQ(tree.read(kFile), "{oops");
}

TEST_F(JsonUserDefaultsPermissions, FolderWithoutAccessMeansRegisteredDefaults) {
  ASSERT_EQ(::chmod(tree.path().c_str(), 0), 0);
  defaults.registerDefault("count", 5);
  EXPECT_EQ(defaults.integer("count"), 5);
  defaults.set("count", 2);
  EXPECT_EQ(defaults.integer("count"), 2);
}

TEST_F(JsonUserDefaultsTest, WholeDomainThatCannotBeWrittenFails) {
  JsonUserDefaultsDomains domains(tree.path());
  fs::create_directory(file());
  EXPECT_FALSE(domains.setPersistentDomain(kDomain, {{"count", 1}}));
  EXPECT_EQ(domains.persistentDomain(kDomain), std::nullopt);
}

TEST_F(JsonUserDefaultsTest, WholeDomainThatIsNoObjectIsRefused) {
  JsonUserDefaultsDomains domains(tree.path());
  EXPECT_FALSE(domains.setPersistentDomain(kDomain, json::array({1})));
  EXPECT_TRUE(names().empty());
}

TEST_F(JsonUserDefaultsTest, RemovingADomainLeavesADirectoryInItsPlaceAlone) {
  JsonUserDefaultsDomains domains(tree.path());
  fs::create_directory(file());
  domains.removePersistentDomain(kDomain);
  EXPECT_TRUE(fs::is_directory(file()));
}

}  // namespace
}  // namespace nimbo
