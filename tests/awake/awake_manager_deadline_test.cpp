// SPDX-License-Identifier: MIT
#include "awake/awake_fixture.h"

namespace nimbo {
namespace {

using namespace std::chrono_literals;

constexpr const char* kFinished = "Timer finished. Normal sleep is allowed.";

class AwakeManagerDeadlineTest : public AwakeManagerTest {};

TEST_F(AwakeManagerDeadlineTest, SessionEndsAtItsEndAndNotBefore) {
  start(at(14, 0));
  passUntil(at(14, 0) - 1ms);
  EXPECT_TRUE(manager.isActive());
  passUntil(at(14, 0));
  EXPECT_FALSE(manager.isActive());
  EXPECT_EQ(manager.endsAt(), std::nullopt);
  EXPECT_TRUE(client.held().empty());
  EXPECT_EQ(told, (Log{"", kFinished}));
}

TEST_F(AwakeManagerDeadlineTest, TimerMayBeATenthOfASecondLate) {
  start(at(14, 0));
  ASSERT_EQ(loop.wallTimers().size(), 1U);
  EXPECT_EQ(loop.wallTimers()[0].leeway, 100ms);
  EXPECT_TRUE(loop.repeatingTimers().empty());
}

TEST_F(AwakeManagerDeadlineTest, EndThatPassedWhileTheMachineSleptEndsTheSessionAtWake) {
  start(at(14, 0));
  sleepUntil(at(17, 0));
  EXPECT_FALSE(manager.isActive());
  EXPECT_EQ(manager.message(), kFinished);
}

TEST_F(AwakeManagerDeadlineTest, SleepThatEndsBeforeTheEndKeepsTheSession) {
  start(at(14, 0));
  sleepUntil(at(13, 59));
  EXPECT_TRUE(manager.isActive());
  passUntil(at(14, 0));
  EXPECT_FALSE(manager.isActive());
}

TEST_F(AwakeManagerDeadlineTest, ClockSetForwardPastTheEndEndsTheSession) {
  start(at(14, 0));
  setWallClock(at(14, 1));
  EXPECT_FALSE(manager.isActive());
  EXPECT_EQ(manager.message(), kFinished);
}

TEST_F(AwakeManagerDeadlineTest, ClockSetBackKeepsTheSessionUntilItsTimeOfDay) {
  start(at(14, 0));
  setWallClock(at(10, 0));
  passUntil(at(14, 0) - 1ms);
  EXPECT_TRUE(manager.isActive());
  passUntil(at(14, 0));
  EXPECT_FALSE(manager.isActive());
}

TEST_F(AwakeManagerDeadlineTest, ClockSetBackJustAsTheTimerFiresDoesNotLoseTheEnd) {
  start(at(14, 0));
  passUntil(at(13, 59));
  loop.setWallClock(at(14, 0));
  EXPECT_TRUE(manager.isActive());
  EXPECT_EQ(timerEnd(), at(14, 0));
  setWallClock(at(14, 0));
  EXPECT_FALSE(manager.isActive());
}

TEST_F(AwakeManagerDeadlineTest, CheckEndsTheSessionFromItsEndOn) {
  start(at(14, 0));
  manager.checkDeadline(at(14, 0) - 1ms);
  EXPECT_TRUE(manager.isActive());
  manager.checkDeadline(at(14, 0));
  EXPECT_FALSE(manager.isActive());
  EXPECT_EQ(told, (Log{"", kFinished}));
}

TEST_F(AwakeManagerDeadlineTest, TickEndsTheSessionWhoseTimerIsLate) {
  start(at(14, 0));
  clock.setNow(at(14, 0));
  manager.tick(clock.now());
  EXPECT_FALSE(manager.isActive());
}

TEST_F(AwakeManagerDeadlineTest, CheckDoesNothingWhileIdleOrUntilStopped) {
  manager.checkDeadline(at(23, 0));
  EXPECT_EQ(told, Log{});
  start();
  manager.checkDeadline(at(23, 0));
  EXPECT_TRUE(manager.isActive());
  EXPECT_EQ(told, Log{""});
}

TEST_F(AwakeManagerDeadlineTest, ExtensionMovesTheOldEndAndItsTimer) {
  start(at(14, 0));
  passUntil(at(13, 59));
  manager.extend(1800s);
  EXPECT_EQ(manager.endsAt(), at(14, 30));
  EXPECT_EQ(timerEnd(), at(14, 30));
  EXPECT_EQ(loop.wallTimers()[0].leeway, 100ms);
  EXPECT_EQ(told, (Log{"", ""}));
  passUntil(at(14, 29));
  EXPECT_TRUE(manager.isActive());
  passUntil(at(14, 30));
  EXPECT_FALSE(manager.isActive());
}

TEST_F(AwakeManagerDeadlineTest, ExtensionsAddUp) {
  start(at(14, 0));
  for (int times = 0; times < 3; ++times) manager.extend(1800s);
  EXPECT_EQ(timerEnd(), at(15, 30));
}

TEST_F(AwakeManagerDeadlineTest, ExtensionMayCrossMidnight) {
  setWallClock(at(23, 40));
  start(at(23, 50));
  manager.extend(1800s);
  EXPECT_EQ(manager.endsAt(), at(24, 20));
  passUntil(at(24, 19));
  EXPECT_TRUE(manager.isActive());
  passUntil(at(24, 20));
  EXPECT_FALSE(manager.isActive());
}

TEST_F(AwakeManagerDeadlineTest, ExtensionKeepsTheMessage) {
  start(at(14, 0));
  client.refuse(kPreventDisplaySleep, 5);
  ASSERT_FALSE(manager.setKeepDisplayOn(true));
  manager.extend(1800s);
  EXPECT_EQ(manager.message(), "macOS couldn’t keep your Mac awake (error 5). Please try again.");
}

TEST_F(AwakeManagerDeadlineTest, ExtensionAfterTheEndHasJustPassedEndsTheSession) {
  start(at(14, 0));
  clock.setNow(at(14, 0));  // the timer has not come round yet
  manager.extend(1800s);
  EXPECT_FALSE(manager.isActive());
  EXPECT_EQ(manager.endsAt(), std::nullopt);
  EXPECT_EQ(timerEnd(), std::nullopt);
  EXPECT_EQ(told, (Log{"", kFinished}));
}

TEST_F(AwakeManagerDeadlineTest, SessionUntilStoppedIsNotExtended) {
  start();
  manager.extend(1800s);
  EXPECT_EQ(manager.endsAt(), std::nullopt);
  EXPECT_EQ(timerEnd(), std::nullopt);
  EXPECT_EQ(told, Log{""});
}

TEST_F(AwakeManagerDeadlineTest, NothingIsExtendedWhileIdle) {
  manager.extend(1800s);
  EXPECT_FALSE(manager.isActive());
  EXPECT_EQ(told, Log{});
}

}  // namespace
}  // namespace nimbo
