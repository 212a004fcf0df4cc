// SPDX-License-Identifier: MIT
// When an updater looks unasked.
#include <limits>

#include "update/feed/update_fixture.h"

namespace nimbo {
namespace {

using std::chrono::hours;
using std::chrono::minutes;
using std::chrono::seconds;

constexpr std::int64_t kDay = 86'400;

class UpdateScheduleTest : public UpdateTimeTest {
 protected:
  void start() {
    updater.emplace(services, [this](UpdateRequest request, const auto& /*finished*/) {
      if (request == UpdateRequest::automatic) ++due;
      return std::unique_ptr<UpdateSession>();
    });
  }

  std::optional<ScheduledUpdater> updater;
  int due = 0;
};

TEST_F(UpdateScheduleTest, IsOffUntilTheUserWantsItAndCostsNothing) {
  start();
  EXPECT_FALSE(updater->automaticallyChecksForUpdates());
  EXPECT_TRUE(loop.wallTimers().empty());
  EXPECT_TRUE(loop.repeatingTimers().empty());
  loop.advance(hours(100));
  EXPECT_EQ(due, 0);
  EXPECT_TRUE(domains.writes.empty());
}

TEST_F(UpdateScheduleTest, FlagIsKeptAmongTheSettings) {
  start();
  updater->setAutomaticallyChecksForUpdates(true);
  EXPECT_TRUE(updater->automaticallyChecksForUpdates());
  EXPECT_EQ(defaults.boolean("SUEnableAutomaticChecks"), true);
  updater->setAutomaticallyChecksForUpdates(false);
  EXPECT_EQ(defaults.boolean("SUEnableAutomaticChecks"), false);
  EXPECT_TRUE(loop.wallTimers().empty());
  loop.advance(hours(100));
  EXPECT_EQ(due, 0);
}

TEST_F(UpdateScheduleTest, FirstCheckComesSoonAfterItWasSwitchedOn) {
  start();
  updater->setAutomaticallyChecksForUpdates(true);
  loop.advance(seconds(59));
  EXPECT_EQ(due, 0);
  loop.advance(seconds(1));
  EXPECT_EQ(due, 1);
}

TEST_F(UpdateScheduleTest, NothingIsDueAtStartWithinADayOfTheLastCheck) {
  storeAutomatic(true);
  storeLastCheck(now() - kDay + 3600);
  start();
  loop.advance(minutes(59));
  EXPECT_EQ(due, 0);
  loop.advance(minutes(1));
  EXPECT_EQ(due, 1);
}

TEST_F(UpdateScheduleTest, OverdueCheckWaitsForTheStartToSettle) {
  storeAutomatic(true);
  storeLastCheck(now() - 10 * kDay);
  start();
  loop.advance(seconds(59));
  EXPECT_EQ(due, 0);
  loop.advance(seconds(1));
  EXPECT_EQ(due, 1);
}

TEST_F(UpdateScheduleTest, GoesOnOnceADayThroughOneTimerThatMayBeLate) {
  storeAutomatic(true);
  start();
  loop.advance(minutes(1));
  for (int day = 2; day <= 4; ++day) {
    loop.advance(hours(24));
    EXPECT_EQ(due, day);
    ASSERT_EQ(loop.wallTimers().size(), 1U);
    EXPECT_GE(loop.wallTimers()[0].leeway, minutes(30));
  }
  EXPECT_TRUE(loop.repeatingTimers().empty());
}

TEST_F(UpdateScheduleTest, ACheckForAnyReasonPutsOffTheNext) {
  storeAutomatic(true);
  storeLastCheck(now());
  start();
  loop.advance(hours(23));
  updater->checkForUpdates();
  EXPECT_EQ(lastCheck(), now());
  loop.advance(hours(23));
  EXPECT_EQ(due, 0);
  loop.advance(hours(1));
  EXPECT_EQ(due, 1);
}

TEST_F(UpdateScheduleTest, CheckIsNotedAlsoWhileItIsOff) {
  start();
  updater->checkForUpdates();
  EXPECT_EQ(lastCheck(), now());
  EXPECT_TRUE(loop.wallTimers().empty());
}

TEST_F(UpdateScheduleTest, DayPassesAlsoWhileTheMachineSleeps) {
  storeAutomatic(true);
  storeLastCheck(now());
  start();
  setWallClock(clock.now() + hours(30));
  EXPECT_EQ(due, 1);
}

TEST_F(UpdateScheduleTest, ClockThatWasSetBackPutsOffACheckByADayAtMost) {
  storeAutomatic(true);
  storeLastCheck(now() + 1000 * kDay);
  start();
  loop.advance(hours(24));
  EXPECT_EQ(due, 1);
}

TEST_F(UpdateScheduleTest, NonsenseInTheFileMeansNeverChecked) {
  storeAutomatic(true);
  for (const std::int64_t time : {std::numeric_limits<std::int64_t>::min(), std::int64_t{-1}, std::int64_t{0}}) {
    storeLastCheck(time);
    const int before = due;
    start();
    loop.advance(minutes(1));
    EXPECT_EQ(due, before + 1) << time;
  }
  storeLastCheck(std::numeric_limits<std::int64_t>::max());
  start();
  EXPECT_EQ(loop.wallTimers().at(0).when, std::chrono::floor<seconds>(clock.now()) + hours(24)) << "the future is now";
}

TEST_F(UpdateScheduleTest, SwitchedOffByHandItEndsWithTheNextTimer) {
  storeAutomatic(true);
  start();
  storeAutomatic(false);
  loop.advance(minutes(1));
  EXPECT_EQ(due, 0);
  EXPECT_TRUE(loop.wallTimers().empty());
}

TEST_F(UpdateScheduleTest, DestroyedItLeavesNoTimer) {
  storeAutomatic(true);
  start();
  updater.reset();
  EXPECT_TRUE(loop.wallTimers().empty());
}

}  // namespace
}  // namespace nimbo
