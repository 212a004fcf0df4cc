// SPDX-License-Identifier: MIT
#include "app/update_checker.h"

#include <gtest/gtest.h>

#include "support/fake_update_windows.h"
#include "support/fake_updater.h"

namespace nimbo {
namespace {

class UpdateCheckerTest : public ::testing::Test {
 protected:
  BundleInfo bundle{{}, {}, {}, "https://updates.test/feed.xml", "key", {}};
  FakeUpdateWindows windows;
  std::vector<UpdateFeed> feeds;
  bool possible = true;
  FakeUpdater* updater = nullptr;
  UpdateChecker checker{bundle,
                        [this](const UpdateFeed& feed) -> std::unique_ptr<Updater> {
                          feeds.push_back(feed);
                          if (!possible) return nullptr;
                          auto made = std::make_unique<FakeUpdater>();
                          updater = made.get();
                          return made;
                        },
                        windows};

  void expectNotConnected() {
    checker.start();
    EXPECT_TRUE(windows.notices.empty()) << "nothing to say before somebody asks";
    checker.checkForUpdates();
    EXPECT_EQ(
        windows.notices,
        (std::vector<UpdateNotice>{
            {"Updates aren’t connected yet", "This development build has no signed update feed configured.", {"OK"}}}));
    EXPECT_TRUE(windows.press("OK"));
    EXPECT_EQ(updater, nullptr);
  }
};

TEST_F(UpdateCheckerTest, StartsTheUpdaterWithTheFeedAndTheKeyOfTheBundle) {
  checker.start();
  ASSERT_EQ(feeds.size(), 1U);
  EXPECT_EQ(feeds[0].url, "https://updates.test/feed.xml");
  EXPECT_EQ(feeds[0].publicKey, "key");
  EXPECT_EQ(updater->checks, 0);
}

TEST_F(UpdateCheckerTest, UpdaterIsMadeOnlyOnce) {
  checker.start();
  checker.start();
  checker.checkForUpdates();
  checker.checkForUpdates();
  EXPECT_EQ(feeds.size(), 1U);
  EXPECT_EQ(updater->checks, 2);
  EXPECT_TRUE(windows.notices.empty());
}

TEST_F(UpdateCheckerTest, CheckStartsTheUpdaterIfNecessary) {
  checker.checkForUpdates();
  ASSERT_NE(updater, nullptr);
  EXPECT_EQ(updater->checks, 1);
}

TEST_F(UpdateCheckerTest, BusyUpdaterIsLeftAlone) {
  checker.start();
  updater->canCheck = false;
  checker.checkForUpdates();
  EXPECT_EQ(updater->checks, 0);
  EXPECT_TRUE(windows.notices.empty());
}

TEST_F(UpdateCheckerTest, WithoutAFeedTheUserIsToldWhenAsking) {
  bundle.feedUrl.reset();
  expectNotConnected();
  EXPECT_TRUE(feeds.empty());
}

TEST_F(UpdateCheckerTest, FeedHasToBeAUrlWhoseSchemeIsExactlyHttps) {
  for (const char* const url : {"http://updates.test/feed.xml", "HTTPS://updates.test/feed.xml",
                                "https:", "ftp://updates.test", "feed.xml", "https://updates test/"}) {
    bundle.feedUrl = url;
    windows.notices.clear();
    expectNotConnected();
  }
  EXPECT_TRUE(feeds.empty());
}

TEST_F(UpdateCheckerTest, WithoutAKeyThereIsNoUpdater) {
  bundle.publicKey.reset();
  expectNotConnected();
  EXPECT_TRUE(feeds.empty());
}

TEST_F(UpdateCheckerTest, SystemWithoutAnUpdaterIsToldTheSame) {
  possible = false;
  expectNotConnected();
}

TEST_F(UpdateCheckerTest, AutomaticFlagIsTheUpdaters) {
  EXPECT_FALSE(checker.automaticallyChecksForUpdates());
  checker.toggleAutomaticChecks();
  EXPECT_TRUE(feeds.empty()) << "toggling starts nothing";
  checker.start();
  EXPECT_FALSE(checker.automaticallyChecksForUpdates());
  checker.toggleAutomaticChecks();
  EXPECT_TRUE(updater->automatic);
  EXPECT_TRUE(checker.automaticallyChecksForUpdates());
  checker.toggleAutomaticChecks();
  EXPECT_FALSE(updater->automatic);
}

}  // namespace
}  // namespace nimbo
