// SPDX-License-Identifier: MIT
#include "update/scheduled_updater.h"

#include <vector>

#include "update/feed/update_fixture.h"

namespace nimbo {
namespace {

using std::chrono::hours;
using std::chrono::minutes;

/// Looks at nothing; says what the test says.
struct FakeSession final : UpdateSession {
  FakeSession(UpdateRequest why, std::function<void()> whenFinished, int& count)
      : request(why), finished(std::move(whenFinished)), alive(count), quiet(why == UpdateRequest::automatic) {
    ++alive;
  }
  ~FakeSession() override { --alive; }
  FakeSession(const FakeSession&) = delete;
  FakeSession& operator=(const FakeSession&) = delete;

  [[nodiscard]] bool silent() const override { return quiet; }
  void finish() {
    const auto call = std::move(finished);
    call();
  }

  const UpdateRequest request;
  std::function<void()> finished;
  int& alive;
  bool quiet;
};

class ScheduledUpdaterTest : public UpdateTimeTest {
 protected:
  void start() {
    updater.emplace(services,
                    [this](UpdateRequest request, std::function<void()> finished) -> std::unique_ptr<UpdateSession> {
                      requests.push_back(request);
                      if (!possible) return nullptr;
                      auto made = std::make_unique<FakeSession>(request, std::move(finished), alive);
                      session = made.get();
                      return made;
                    });
  }

  std::vector<UpdateRequest> requests;
  int alive = 0;
  bool possible = true;
  FakeSession* session = nullptr;  ///< the newest
  std::optional<ScheduledUpdater> updater;
};

TEST_F(ScheduledUpdaterTest, MakerIsNotAskedBeforeACheckIsMade) {
  storeAutomatic(true);
  storeLastCheck(now());
  start();
  loop.advance(hours(23));
  EXPECT_TRUE(requests.empty());
  EXPECT_TRUE(updater->canCheckForUpdates());
}

TEST_F(ScheduledUpdaterTest, UserAsksAndTheCheckIsNoted) {
  start();
  updater->checkForUpdates();
  EXPECT_EQ(requests, std::vector{UpdateRequest::user});
  EXPECT_EQ(lastCheck(), now());
  EXPECT_FALSE(updater->canCheckForUpdates());
}

TEST_F(ScheduledUpdaterTest, OnlyOneCheckAtATime) {
  start();
  updater->checkForUpdates();
  updater->checkForUpdates();
  EXPECT_EQ(requests.size(), 1U);
  session->finish();
  EXPECT_EQ(alive, 0);
  EXPECT_TRUE(updater->canCheckForUpdates());
  updater->checkForUpdates();
  EXPECT_EQ(requests.size(), 2U);
}

TEST_F(ScheduledUpdaterTest, AutomaticCheckThatNobodySeesGivesWay) {
  storeAutomatic(true);
  start();
  loop.advance(minutes(1));
  EXPECT_EQ(requests, std::vector{UpdateRequest::automatic});
  EXPECT_TRUE(updater->canCheckForUpdates());
  updater->checkForUpdates();
  EXPECT_EQ(requests, (std::vector{UpdateRequest::automatic, UpdateRequest::user}));
  EXPECT_EQ(alive, 1);
}

TEST_F(ScheduledUpdaterTest, AutomaticCheckThatHasFoundSomethingIsNotCutShort) {
  storeAutomatic(true);
  start();
  loop.advance(minutes(1));
  session->quiet = false;
  EXPECT_FALSE(updater->canCheckForUpdates());
  updater->checkForUpdates();
  EXPECT_EQ(requests.size(), 1U);
}

TEST_F(ScheduledUpdaterTest, WhileANoticeStandsDailyChecksAreSkippedAndNotNoted) {
  storeAutomatic(true);
  start();
  loop.advance(minutes(1));
  session->quiet = false;
  const auto noted = lastCheck();
  loop.advance(hours(3 * 24));
  EXPECT_EQ(requests.size(), 1U);
  EXPECT_EQ(lastCheck(), noted);
  session->finish();
  loop.advance(hours(24));
  EXPECT_EQ(requests.size(), 2U);
}

TEST_F(ScheduledUpdaterTest, AutomaticCheckThatFailsWaitsForTheNextDay) {
  storeAutomatic(true);
  start();
  loop.advance(minutes(1));
  session->finish();
  loop.advance(hours(23));
  EXPECT_EQ(requests.size(), 1U);
  loop.advance(hours(1));
  EXPECT_EQ(requests.size(), 2U);
}

TEST_F(ScheduledUpdaterTest, WhatCannotLookSaysSoOnlyWhenAsked) {
  possible = false;
  storeAutomatic(true);
  start();
  loop.advance(minutes(1));
  EXPECT_EQ(requests.size(), 1U);
  EXPECT_TRUE(windows.notices.empty());
  updater->checkForUpdates();
  EXPECT_EQ(windows.title(), "Couldn’t check for updates");
  EXPECT_TRUE(windows.press("OK"));
  EXPECT_TRUE(updater->canCheckForUpdates());
}

TEST_F(ScheduledUpdaterTest, FlagIsThatOfTheSchedule) {
  start();
  EXPECT_FALSE(updater->automaticallyChecksForUpdates());
  updater->setAutomaticallyChecksForUpdates(true);
  EXPECT_TRUE(updater->automaticallyChecksForUpdates());
  EXPECT_EQ(defaults.boolean("SUEnableAutomaticChecks"), true);
}

TEST_F(ScheduledUpdaterTest, DestroyedItEndsTheSession) {
  start();
  updater->checkForUpdates();
  updater.reset();
  EXPECT_EQ(alive, 0);
}

}  // namespace
}  // namespace nimbo
