// SPDX-License-Identifier: MIT
#include "awake/awake_manager.h"

#include "awake/awake_fixture.h"

namespace nimbo {
namespace {

using namespace std::chrono_literals;

constexpr const char* kFirstMessage = "Keep AI jobs running while your display rests.";
constexpr const char* kChooseFuture = "Choose an end time in the future.";
constexpr const char* kEnded = "Session ended. Normal sleep is allowed.";

TEST_F(AwakeManagerTest, NewManagerIsIdleWithItsFirstMessage) {
  EXPECT_FALSE(manager.isActive());
  EXPECT_FALSE(manager.keepsDisplayOn());
  EXPECT_EQ(manager.endsAt(), std::nullopt);
  EXPECT_EQ(manager.message(), kFirstMessage);
  EXPECT_EQ(timerEnd(), std::nullopt);
  EXPECT_EQ(sources.subscriptions, 0);
  EXPECT_EQ(client.calls, Log{});
}

TEST_F(AwakeManagerTest, StartWithoutAnEndRunsUntilStopped) {
  EXPECT_TRUE(start());
  EXPECT_TRUE(manager.isActive());
  EXPECT_FALSE(manager.keepsDisplayOn());
  EXPECT_EQ(manager.endsAt(), std::nullopt);
  EXPECT_EQ(timerEnd(), std::nullopt);
  EXPECT_EQ(told, Log{""});
  loop.advance(24h * 30);
  EXPECT_TRUE(manager.isActive());
}

TEST_F(AwakeManagerTest, StartWithAnEndKeepsItAndWaitsForIt) {
  EXPECT_TRUE(start(at(14, 0)));
  EXPECT_EQ(manager.endsAt(), at(14, 0));
  EXPECT_EQ(timerEnd(), at(14, 0));
  EXPECT_EQ(told, Log{""});
}

TEST_F(AwakeManagerTest, StartKeepsTheDisplayOnWhenAsked) {
  EXPECT_TRUE(start({}, true));
  EXPECT_TRUE(manager.keepsDisplayOn());
  EXPECT_TRUE(client.holds(kPreventDisplaySleep));
}

TEST_F(AwakeManagerTest, EndThatIsNotInTheFutureStartsNothing) {
  EXPECT_FALSE(start(clock.now() - 1s));
  EXPECT_FALSE(start(clock.now()));
  EXPECT_EQ(told, (Log{kChooseFuture, kChooseFuture}));
  EXPECT_FALSE(manager.isActive());
  EXPECT_EQ(client.calls, Log{});
  EXPECT_EQ(sources.readings, 0);
  EXPECT_EQ(timerEnd(), std::nullopt);
}

TEST_F(AwakeManagerTest, EndJustAheadStarts) {
  EXPECT_TRUE(start(clock.now() + 1s));
  loop.advance(1s);
  EXPECT_FALSE(manager.isActive());
}

TEST_F(AwakeManagerTest, StartIsJudgedByTheTimeItIsGiven) {
  EXPECT_FALSE(manager.start(at(14, 0), false, at(15, 0)));
  EXPECT_TRUE(manager.start(at(12, 0) + 1h + 1s, false, at(12, 0)));
}

TEST_F(AwakeManagerTest, EndInThePastLeavesARunningSessionAsItWas) {
  start(at(14, 0), true);
  EXPECT_FALSE(start(at(12, 0), false));
  EXPECT_TRUE(manager.isActive());
  EXPECT_TRUE(manager.keepsDisplayOn());
  EXPECT_EQ(manager.endsAt(), at(14, 0));
  EXPECT_EQ(timerEnd(), at(14, 0));
  EXPECT_EQ(manager.message(), kChooseFuture);
}

TEST_F(AwakeManagerTest, StartWhileRunningReplacesEndAndDisplayChoice) {
  start(at(14, 0), true);
  client.calls.clear();
  EXPECT_TRUE(start(at(16, 30), false));
  EXPECT_EQ(manager.endsAt(), at(16, 30));
  EXPECT_EQ(timerEnd(), at(16, 30));
  EXPECT_EQ(client.calls, Log{"release PreventUserIdleDisplaySleep"});
}

TEST_F(AwakeManagerTest, StartUntilStoppedWhileRunningDropsTheEnd) {
  start(at(14, 0));
  EXPECT_TRUE(start());
  EXPECT_EQ(manager.endsAt(), std::nullopt);
  EXPECT_EQ(timerEnd(), std::nullopt);
  passUntil(at(15, 0));
  EXPECT_TRUE(manager.isActive());
}

TEST_F(AwakeManagerTest, RefusedAssertionStartsNothingAndNamesTheCode) {
  client.refuse(kPreventSystemSleep, -22);
  EXPECT_FALSE(start(at(14, 0)));
  EXPECT_FALSE(manager.isActive());
  EXPECT_EQ(manager.endsAt(), std::nullopt);
  EXPECT_EQ(timerEnd(), std::nullopt);
  EXPECT_EQ(sources.subscriptions, 0);
  EXPECT_EQ(told, Log{"macOS couldn’t keep your Mac awake (error -22). Please try again."});
}

TEST_F(AwakeManagerTest, RefusedDisplayStartsNothing) {
  client.refuse(kPreventDisplaySleep, 5);
  EXPECT_FALSE(start({}, true));
  EXPECT_FALSE(manager.isActive());
  EXPECT_TRUE(client.held().empty());
  EXPECT_EQ(told, Log{"macOS couldn’t keep your Mac awake (error 5). Please try again."});
}

TEST_F(AwakeManagerTest, RefusedDisplayLeavesARunningSessionAsItWas) {
  start(at(14, 0));
  client.refuse(kPreventDisplaySleep, 5);
  EXPECT_FALSE(start(at(16, 0), true));
  EXPECT_TRUE(manager.isActive());
  EXPECT_FALSE(manager.keepsDisplayOn());
  EXPECT_EQ(manager.endsAt(), at(14, 0));
  EXPECT_EQ(timerEnd(), at(14, 0));
  EXPECT_EQ(manager.message(), "macOS couldn’t keep your Mac awake (error 5). Please try again.");
}

TEST_F(AwakeManagerTest, UsersStopLetsEverythingGo) {
  start(at(14, 0), true);
  client.calls.clear();
  manager.stopByUser();
  EXPECT_FALSE(manager.isActive());
  EXPECT_EQ(manager.endsAt(), std::nullopt);
  EXPECT_EQ(timerEnd(), std::nullopt);
  EXPECT_EQ(sources.observers(), 0);
  EXPECT_EQ(client.calls, (Log{"release PreventUserIdleDisplaySleep", "release PreventUserIdleSystemSleep"}));
  EXPECT_EQ(told, (Log{"", kEnded}));
}

TEST_F(AwakeManagerTest, StopWhileIdleStillSetsTheMessageAndTells) {
  manager.stop("Good night.");
  EXPECT_EQ(told, Log{"Good night."});
  EXPECT_EQ(manager.message(), "Good night.");
  EXPECT_EQ(client.calls, Log{});
}

TEST_F(AwakeManagerTest, SessionCanBeStartedAgainAfterAStop) {
  start(at(14, 0));
  manager.stopByUser();
  EXPECT_TRUE(start(at(15, 0)));
  EXPECT_EQ(timerEnd(), at(15, 0));
  EXPECT_EQ(told, (Log{"", kEnded, ""}));
}

TEST_F(AwakeManagerTest, ToggleStartsAndStops) {
  settings.setAwakeDisplayOn(true);
  manager.toggle(at(14, 0));
  EXPECT_EQ(manager.endsAt(), at(14, 0));
  EXPECT_TRUE(manager.keepsDisplayOn());
  manager.toggle(at(15, 0));
  EXPECT_FALSE(manager.isActive());
}

TEST_F(AwakeManagerTest, StoppingFromTheChangeThatAStartTellsLeavesNothingBehind) {
  manager.onChange = [this] {
    told.push_back(manager.message());
    if (manager.isActive()) manager.stopByUser();
  };
  EXPECT_FALSE(start(at(14, 0), true));
  EXPECT_FALSE(manager.isActive());
  EXPECT_EQ(manager.endsAt(), std::nullopt);
  EXPECT_EQ(timerEnd(), std::nullopt);
  EXPECT_EQ(sources.observers(), 0);
  EXPECT_TRUE(client.held().empty());
  EXPECT_EQ(told, (Log{"", kEnded}));
}

TEST_F(AwakeManagerTest, StartingFromTheChangeThatAStopTellsRuns) {
  start(at(14, 0));
  manager.onChange = [this] {
    if (!manager.isActive()) start(at(15, 0));
  };
  manager.stopByUser();
  EXPECT_TRUE(manager.isActive());
  EXPECT_EQ(timerEnd(), at(15, 0));
}

TEST_F(AwakeManagerTest, NobodyNeedsToListen) {
  manager.onChange = nullptr;
  EXPECT_TRUE(start(at(14, 0)));
  manager.extend(30min);
  passUntil(at(14, 30));
  EXPECT_EQ(manager.message(), "Timer finished. Normal sleep is allowed.");
}

TEST_F(AwakeManagerTest, DestroyedManagerLetsEverythingGoAndHearsNothing) {
  int changes = 0;
  {
    AwakeManager brief({loop, clock, client, sources, display, settings, macWording()});
    brief.onChange = [&] { ++changes; };
    ASSERT_TRUE(brief.start(at(14, 0), false, clock.now()));
    brief.turnDisplayOff();
  }
  EXPECT_TRUE(client.held().empty());
  EXPECT_TRUE(loop.wallTimers().empty());
  EXPECT_EQ(sources.observers(), 0);
  EXPECT_EQ(display.pending(), 0U);
  passUntil(at(15, 0));
  sources.onBattery(1);
  EXPECT_EQ(changes, 1);
}

}  // namespace
}  // namespace nimbo
