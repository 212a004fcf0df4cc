// SPDX-License-Identifier: MIT
#include "app/update_checker.h"

#include <gtest/gtest.h>

#include "support/fake_platform_services.h"
#include "support/fake_update_windows.h"

namespace nimbo {
namespace {

class UpdateCheckerTest : public ::testing::Test {
 protected:
  UpdateCheckerTest() {
    platform.bundle.feedUrl = "https://updates.test/feed.xml";
    platform.bundle.publicKey = "key";
  }

  FakePlatformServices platform;
  FakeUpdateWindows windows;
  UpdateChecker checker{platform, windows};

  void expectNotConnected() {
    checker.start();
    EXPECT_TRUE(windows.notices.empty()) << "nothing to say before somebody asks";
    checker.checkForUpdates();
    EXPECT_EQ(
        windows.notices,
        (std::vector<UpdateNotice>{
            {"Updates aren’t connected yet", "This development build has no signed update feed configured.", {"OK"}}}));
    EXPECT_TRUE(windows.press("OK"));
    EXPECT_EQ(platform.updater, nullptr);
    EXPECT_EQ(checker.automaticallyChecksForUpdates(), std::nullopt);
  }
};

TEST_F(UpdateCheckerTest, StartsTheUpdaterWithTheFeedAndTheKeyOfTheBundle) {
  checker.start();
  ASSERT_EQ(platform.updateFeeds.size(), 1U);
  EXPECT_EQ(platform.updateFeeds[0].url, "https://updates.test/feed.xml");
  EXPECT_EQ(platform.updateFeeds[0].publicKey, "key");
  EXPECT_EQ(platform.updater->checks, 0);
}

TEST_F(UpdateCheckerTest, UpdaterIsMadeOnlyOnce) {
  checker.start();
  checker.start();
  checker.checkForUpdates();
  checker.checkForUpdates();
  EXPECT_EQ(platform.updateFeeds.size(), 1U);
  EXPECT_EQ(platform.updater->checks, 2);
  EXPECT_TRUE(windows.notices.empty());
}

TEST_F(UpdateCheckerTest, CheckStartsTheUpdaterIfNecessary) {
  checker.checkForUpdates();
  ASSERT_NE(platform.updater, nullptr);
  EXPECT_EQ(platform.updater->checks, 1);
}

TEST_F(UpdateCheckerTest, BusyUpdaterIsLeftAlone) {
  checker.start();
  platform.updater->canCheck = false;
  checker.checkForUpdates();
  EXPECT_EQ(platform.updater->checks, 0);
  EXPECT_TRUE(windows.notices.empty());
}

TEST_F(UpdateCheckerTest, WithoutAFeedTheUserIsToldWhenAsking) {
  platform.bundle.feedUrl.reset();
  expectNotConnected();
  EXPECT_TRUE(platform.updateFeeds.empty());
}

TEST_F(UpdateCheckerTest, FeedHasToBeAUrlWhoseSchemeIsExactlyHttps) {
  for (const char* const url : {"http://updates.test/feed.xml", "HTTPS://updates.test/feed.xml",
                                "https:", "ftp://updates.test", "feed.xml", "https://updates test/"}) {
    platform.bundle.feedUrl = url;
    windows.notices.clear();
    expectNotConnected();
  }
  EXPECT_TRUE(platform.updateFeeds.empty());
}

TEST_F(UpdateCheckerTest, WithoutAKeyThereIsNoUpdater) {
  platform.bundle.publicKey.reset();
  expectNotConnected();
  EXPECT_TRUE(platform.updateFeeds.empty());
}

TEST_F(UpdateCheckerTest, SystemWithoutAnUpdaterIsToldTheSame) {
  platform.updateSessions = UpdateSessionMaker();
  expectNotConnected();
}

TEST_F(UpdateCheckerTest, WhereTheSystemGivesSessionsTheyBeginOnTheProgramsOwnSchedule) {
  std::vector<UpdateRequest> requests;
  platform.updateSessions = [&](UpdateRequest request, const auto& /*finished*/) {
    requests.push_back(request);
    return std::unique_ptr<UpdateSession>();
  };
  checker.start();
  checker.toggleAutomaticChecks();
  EXPECT_EQ(platform.defaults.boolean("SUEnableAutomaticChecks"), true);
  platform.loop.advance(std::chrono::minutes(1));
  checker.checkForUpdates();
  EXPECT_EQ(requests, (std::vector{UpdateRequest::automatic, UpdateRequest::user}));
}

TEST_F(UpdateCheckerTest, AutomaticFlagIsTheUpdaters) {
  EXPECT_EQ(checker.automaticallyChecksForUpdates(), std::nullopt);
  checker.toggleAutomaticChecks();
  EXPECT_TRUE(platform.updateFeeds.empty()) << "toggling starts nothing";
  checker.start();
  EXPECT_EQ(checker.automaticallyChecksForUpdates(), false);
  checker.toggleAutomaticChecks();
  EXPECT_TRUE(platform.updater->automatic);
  EXPECT_EQ(checker.automaticallyChecksForUpdates(), true);
  checker.toggleAutomaticChecks();
  EXPECT_FALSE(platform.updater->automatic);
}

}  // namespace
}  // namespace nimbo
