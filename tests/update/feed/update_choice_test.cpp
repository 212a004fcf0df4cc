// SPDX-License-Identifier: MIT
#include "update/feed/update_choice.h"

#include <gtest/gtest.h>

#include "update/feed/signed_feed.h"

namespace nimbo {
namespace {

const UpdateTarget kTarget{.version = "1.0", .architecture = "amd64", .system = "2.36"};

UpdateItem item(const std::string& version, const std::string& architecture = "amd64",
                const std::string& system = "2.31") {
  auto made = itemFor("package", version);
  made.architecture = architecture;
  made.minimumSystem = system;
  return made;
}

Result<UpdateItem, NoUpdate> choose(std::vector<UpdateItem> items, const std::string& forged = "",
                                    const UpdateTarget& target = kTarget) {
  return chooseUpdate(std::move(items), target,
                      [&forged](const UpdateItem& candidate) { return candidate.version != forged; });
}

std::string chosenVersion(std::vector<UpdateItem> items, const std::string& forged = "") {
  const auto chosen = choose(std::move(items), forged);
  return chosen ? chosen->version : "nothing";
}

TEST(UpdateChoice, NewestIsChosenWhereverItStands) {
  EXPECT_EQ(chosenVersion({item("1.9"), item("1.10"), item("1.2")}), "1.10");
  EXPECT_EQ(chosenVersion({item("1.10"), item("1.9")}), "1.10");
}

TEST(UpdateChoice, WhatIsNotNewerIsNotChosen) {
  EXPECT_EQ(choose({item("1.0"), item("1.0.0"), item("0.9")}), tl::unexpected(NoUpdate::none));
  EXPECT_EQ(choose({}), tl::unexpected(NoUpdate::none));
}

TEST(UpdateChoice, OtherProcessorsAndNewerSystemsAreSkipped) {
  EXPECT_EQ(chosenVersion({item("3", "arm64"), item("2.5", "amd64", "2.37"), item("2")}), "2");
  EXPECT_EQ(choose({item("3", "arm64")}), tl::unexpected(NoUpdate::otherSystem));
  EXPECT_EQ(choose({item("3", "amd64", "2.36.1")}), tl::unexpected(NoUpdate::otherSystem));
}

TEST(UpdateChoice, SystemThatIsJustNewEnoughServes) {
  EXPECT_EQ(chosenVersion({item("2", "amd64", "2.36")}), "2");
  EXPECT_EQ(chosenVersion({item("2", "amd64", "2.9")}), "2");
  EXPECT_EQ(chosenVersion({item("2", "amd64", "")}), "2");
}

TEST(UpdateChoice, SystemOfUnknownVersionGetsOnlyWhatRunsAnywhere) {
  UpdateTarget target = kTarget;
  target.system = "";
  EXPECT_EQ(choose({item("2")}, "", target), tl::unexpected(NoUpdate::otherSystem));
  EXPECT_TRUE(choose({item("2", "amd64", "")}, "", target));
  target.architecture = "";
  EXPECT_EQ(choose({item("2", "amd64", "")}, "", target), tl::unexpected(NoUpdate::otherSystem));
}

TEST(UpdateChoice, BuildOfUnknownVersionGetsNothing) {
  for (const char* const version : {"", "local", "1.0-dev"}) {
    EXPECT_EQ(choose({item("2")}, "", {version, "amd64", "2.36"}), tl::unexpected(NoUpdate::none)) << version;
  }
}

TEST(UpdateChoice, ForgedOneIsSkippedForTheNextBest) {
  EXPECT_EQ(chosenVersion({item("99"), item("1.5"), item("1.4")}, "99"), "1.5");
}

TEST(UpdateChoice, NothingButForgedOnesIsToldApart) {
  EXPECT_EQ(choose({item("99"), item("0.5")}, "99"), tl::unexpected(NoUpdate::untrusted));
  EXPECT_EQ(choose({item("99"), item("100", "arm64")}, "99"), tl::unexpected(NoUpdate::untrusted));
  EXPECT_EQ(choose({item("0.5")}, "0.5"), tl::unexpected(NoUpdate::none));
}

TEST(UpdateChoice, SignaturesAreVerifiedNoFurtherThanNecessary) {
  std::vector<std::string> asked;
  const auto chosen = chooseUpdate({item("0.5"), item("2"), item("3", "arm64"), item("1.5"), item("1")}, kTarget,
                                   [&asked](const UpdateItem& candidate) {
                                     asked.push_back(candidate.version);
                                     return true;
                                   });
  ASSERT_TRUE(chosen);
  EXPECT_EQ(asked, std::vector<std::string>{"2"});
}

}  // namespace
}  // namespace nimbo
