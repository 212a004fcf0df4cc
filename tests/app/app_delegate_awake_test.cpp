// SPDX-License-Identifier: MIT
// The Keep Awake session as the application controller runs it.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "app/app_delegate_fixture.h"

namespace nimbo {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t kAwakeTab = 2;
const StatusClick kAlternateClick{true, kClick.anchor};

class AppDelegateAwakeTest : public AppDelegateTest {
 protected:
  AppDelegateAwakeTest() { settings.setMenuAwake(true); }

  const AwakeContent& page() const { return std::get<AwakeContent>(content().page); }
  AwakeManager& awake() { return delegate->awake(); }
  std::string itemToolTip() const { return platform.bar.item("nimbo-awake")->content.toolTip; }

  void launchAndOpen() {
    launch();
    clickItem("nimbo-awake");
    ASSERT_TRUE(dashboardVisible());
    ASSERT_EQ(content().tabs.selected, kAwakeTab);
  }
  std::shared_ptr<FakeAlert> alert() const {
    const auto open = interface.openAlerts();
    return open.empty() ? nullptr : open.back();
  }
};

TEST_F(AppDelegateAwakeTest, NothingIsHeldOrObservedAfterLaunch) {
  launch();
  EXPECT_TRUE(platform.assertions.calls.empty());
  EXPECT_EQ(platform.batteries.observers(), 0);
  EXPECT_TRUE(platform.loop.wallTimers().empty());
  EXPECT_EQ(itemToolTip(), "Keep Awake is off · click for session controls");
}

TEST_F(AppDelegateAwakeTest, PageStartsExtendsAndStopsASession) {
  launchAndOpen();
  EXPECT_EQ(page().detail.text, "Keep AI jobs running while your display rests.");
  window()->act(chosen("duration", 2));
  window()->act(pressed("start"));
  EXPECT_EQ(page().state.text, "Your Mac is staying awake");
  EXPECT_EQ(itemToolTip(), "Keep Awake is on");
  EXPECT_EQ(awake().endsAt(), platform.clock->now() + 1h);

  window()->act(pressed("extend"));
  EXPECT_EQ(awake().endsAt(), platform.clock->now() + 90min);

  window()->act(pressed("start"));
  EXPECT_EQ(page().detail.text, "Session ended. Normal sleep is allowed.");
  EXPECT_EQ(itemToolTip(), "Keep Awake is off · click for session controls");
  EXPECT_TRUE(platform.assertions.held().empty());
}

using Told = std::vector<std::pair<std::string, std::string>>;
const std::string kLowBattery = "Session stopped: battery is at or below 20%.";

TEST_F(AppDelegateAwakeTest, RefusalThatNobodySeesIsToldUntilTheNextClick) {
  platform.batteries.onBattery(20);
  launch();
  clickItem("nimbo-awake", kAlternateClick);
  EXPECT_EQ(platform.desktop.notices, (Told{{"Keep Awake", kLowBattery}}));
  const std::string notice = "Keep Awake: " + kLowBattery + "\n\n";
  EXPECT_EQ(itemToolTip(), notice + "Keep Awake is off · click for session controls");
  EXPECT_TRUE(platform.bar.item("nimbo-memory")->content.toolTip.starts_with(notice));
  platform.loop.advance(10s);
  EXPECT_TRUE(itemToolTip().starts_with(notice)) << "ticks leave it there";
  platform.bar.openMenu("nimbo-memory");
  EXPECT_EQ(itemToolTip(), "Keep Awake is off · click for session controls");
}

TEST_F(AppDelegateAwakeTest, SessionThatARuleEndsIsTold) {
  platform.batteries.onBattery(21);
  launch();
  toggleAwake();
  platform.batteries.onBattery(20);
  EXPECT_EQ(platform.desktop.notices, (Told{{"Keep Awake", kLowBattery}}));
  EXPECT_TRUE(platform.assertions.held().empty());
}

TEST_F(AppDelegateAwakeTest, RefusalBySystemIsTold) {
  launch();
  platform.assertions.refuse("PreventUserIdleSystemSleep", 5);
  clickItem("nimbo-awake", kAlternateClick);
  ASSERT_EQ(platform.desktop.notices.size(), 1U);
  EXPECT_EQ(platform.desktop.notices[0].second, awake().message());
}

TEST_F(AppDelegateAwakeTest, NothingIsToldThatThePageShowsOrTheUserAskedFor) {
  platform.batteries.onBattery(20);
  launchAndOpen();
  window()->act(pressed("start"));
  EXPECT_EQ(page().detail.text, kLowBattery);
  platform.batteries.onMains(20);
  window()->act(chosen("duration", 1));
  window()->act(pressed("start"));
  platform.loop.advance(30min);
  toggleAwake();
  toggleAwake();
  EXPECT_TRUE(platform.desktop.notices.empty());
}

TEST_F(AppDelegateAwakeTest, SessionEndsAtItsDeadline) {
  launchAndOpen();
  window()->act(chosen("duration", 1));
  window()->act(pressed("start"));
  platform.loop.advance(30min - 1ms);
  EXPECT_TRUE(awake().isActive());
  platform.loop.advance(1ms);
  EXPECT_FALSE(awake().isActive());
  EXPECT_EQ(page().detail.text, "Timer finished. Normal sleep is allowed.");
}

TEST_F(AppDelegateAwakeTest, TickEndsASessionThatHasRunOut) {
  launch();
  awake().start(platform.clock->now() + 1s, false, platform.clock->now());
  platform.clock->setNow(platform.clock->now() + 1h);  // the timer has not heard of it
  ASSERT_TRUE(awake().isActive());
  platform.loop.advance(5s);
  EXPECT_FALSE(awake().isActive());
}

TEST_F(AppDelegateAwakeTest, SessionWhoseEndPassedDuringSleepEndsAtWake) {
  launch();
  awake().start(platform.clock->now() + 1h, false, platform.clock->now());
  platform.power.sleep();
  platform.clock->setNow(platform.clock->now() + 2h);
  ASSERT_TRUE(awake().isActive());
  platform.power.wake();
  EXPECT_FALSE(awake().isActive());
  EXPECT_EQ(awake().message(), "Timer finished. Normal sleep is allowed.");
}

TEST_F(AppDelegateAwakeTest, WakeOnBatteryBelowTheFloorEndsTheSession) {
  platform.batteries.onMains(80);
  launch();
  toggleAwake();
  platform.power.sleep();
  ASSERT_TRUE(awake().isActive());
  platform.batteries.changeSilently(std::vector{FakePowerSources::battery(kBatteryPower, 5)});
  ASSERT_TRUE(awake().isActive());
  platform.power.wake();
  EXPECT_FALSE(awake().isActive());
  EXPECT_EQ(awake().message(), "Session stopped: battery is at or below 20%.");
}

TEST_F(AppDelegateAwakeTest, ChargeThatFallsWithoutAWordEndsTheSessionWithinHalfAMinute) {
  platform.batteries.onBattery(21);
  launch();
  toggleAwake();
  platform.loop.advance(10s);
  platform.batteries.changeSilently(std::vector{FakePowerSources::battery(kBatteryPower, 20)});
  ASSERT_TRUE(awake().isActive());
  platform.loop.advance(30s);
  EXPECT_FALSE(awake().isActive());
  EXPECT_EQ(awake().message(), "Session stopped: battery is at or below 20%.");
}

TEST_F(AppDelegateAwakeTest, RulesOfTheSettingsHoldFromLaunch) {
  settings.setAwakeOnlyOnPower(true);
  platform.batteries.onBattery(90);
  launch();
  toggleAwake();
  EXPECT_FALSE(awake().isActive());
  EXPECT_EQ(awake().message(), "Connect the charger to keep this Mac awake.");
}

TEST_F(AppDelegateAwakeTest, PullingTheChargerEndsASessionThatNeedsPower) {
  settings.setAwakeOnlyOnPower(true);
  platform.batteries.onMains(90);
  launchAndOpen();
  window()->act(pressed("start"));
  ASSERT_TRUE(awake().isActive());
  platform.batteries.onBattery(90);
  EXPECT_FALSE(awake().isActive());
  EXPECT_EQ(page().detail.text, "Connect the charger to keep this Mac awake.");
  EXPECT_EQ(itemToolTip(), "Keep Awake is off · click for session controls");
}

TEST_F(AppDelegateAwakeTest, ChangedRuleAppliesToTheRunningSessionAtOnce) {
  platform.batteries.onBattery(40);
  launchAndOpen();
  window()->act(pressed("start"));
  ASSERT_TRUE(awake().isActive());
  window()->act(chosen("battery", 4));
  EXPECT_FALSE(awake().isActive());
  EXPECT_EQ(page().detail.text, "Session stopped: battery is at or below 50%.");
}

TEST_F(AppDelegateAwakeTest, DisplayChoiceOfARunningSessionIsStoredOnceItHolds) {
  launchAndOpen();
  window()->act(pressed("start"));
  window()->act(switched("display", true));
  EXPECT_TRUE(platform.assertions.holds(kPreventDisplaySleep));
  EXPECT_TRUE(settings.awakeDisplayOn());
  EXPECT_EQ(page().detail.text, "Until you stop it. Display stays on.");
}

TEST_F(AppDelegateAwakeTest, RefusedDisplayChoiceIsNotStoredAndTheSwitchGoesBack) {
  launchAndOpen();
  window()->act(pressed("start"));
  platform.assertions.refuse(kPreventDisplaySleep, -7);
  window()->act(switched("display", true));
  EXPECT_FALSE(settings.awakeDisplayOn());
  EXPECT_FALSE(page().display.on);
  EXPECT_EQ(page().detail.text, "macOS couldn’t keep your Mac awake (error -7). Please try again.");
  EXPECT_TRUE(awake().isActive());
}

TEST_F(AppDelegateAwakeTest, DisplayChoiceWithoutASessionIsOnlyStored) {
  launchAndOpen();
  window()->act(switched("display", true));
  EXPECT_TRUE(settings.awakeDisplayOn());
  EXPECT_TRUE(page().display.on);
  EXPECT_TRUE(platform.assertions.calls.empty());
  window()->act(pressed("start"));
  EXPECT_TRUE(awake().keepsDisplayOn());
}

TEST_F(AppDelegateAwakeTest, DisplayIsTurnedOffFromThePage) {
  launchAndOpen();
  window()->act(pressed("displayOff"));
  EXPECT_EQ(platform.display.requests, 0) << "no session runs";
  window()->act(pressed("start"));
  window()->act(pressed("displayOff"));
  EXPECT_EQ(platform.display.pending(), 1U);
  platform.display.fail();
  EXPECT_EQ(page().detail.text, "macOS couldn’t turn the display off. Your Mac is still awake.");
}

TEST_F(AppDelegateAwakeTest, AlternateClickTogglesASessionOfTheStoredLengthAndOpensNothing) {
  settings.setAwakeDuration(7200);
  settings.setAwakeDisplayOn(true);
  launch();
  clickItem("nimbo-memory", kAlternateClick);
  EXPECT_EQ(awake().endsAt(), platform.clock->now() + 2h);
  EXPECT_TRUE(awake().keepsDisplayOn());
  clickItem("nimbo-ai", kAlternateClick);
  EXPECT_FALSE(awake().isActive());
  EXPECT_EQ(awake().message(), "Session ended. Normal sleep is allowed.");
  EXPECT_EQ(window(), nullptr);
}

TEST_F(AppDelegateAwakeTest, AlternateClickUsesTheStoredCustomLengthWithinItsRange) {
  settings.setAwakeDuration(-1);
  settings.setAwakeCustomMinutes(20000);
  launch();
  clickItem("nimbo-memory", kAlternateClick);
  EXPECT_EQ(awake().endsAt(), platform.clock->now() + 7 * 24h);
}

TEST_F(AppDelegateAwakeTest, AlternateClickWithAChosenDateMeansTheNextHour) {
  settings.setAwakeDuration(-2);
  launch();
  clickItem("nimbo-memory", kAlternateClick);
  EXPECT_EQ(awake().endsAt(), std::chrono::floor<std::chrono::minutes>(platform.clock->now() + 1h));
}

TEST_F(AppDelegateAwakeTest, AlternateClickOnTheOpenDashboardLeavesItOpen) {
  launchAndOpen();
  clickItem("nimbo-awake", kAlternateClick);
  EXPECT_TRUE(dashboardVisible());
  EXPECT_EQ(page().state.text, "Your Mac is staying awake");
}

TEST_F(AppDelegateAwakeTest, MenuKeepsAwakeUntilStoppedWhateverTheStoredLength) {
  settings.setAwakeDuration(1800);
  launch();
  EXPECT_TRUE(platform.bar.choose("nimbo-memory", "Keep awake until stopped"));
  EXPECT_TRUE(awake().isActive());
  EXPECT_FALSE(awake().endsAt());
  EXPECT_TRUE(platform.bar.choose("nimbo-memory", "Stop awake session"));
  EXPECT_FALSE(awake().isActive());
}

TEST_F(AppDelegateAwakeTest, CompactItemTellsOfTheSession) {
  settings.setCompactMenuBar(true);
  launch();
  toggleAwake();
  EXPECT_EQ(platform.bar.item("nimbo")->content.toolTip,
            "Nimbo · Resources, AI usage & Keep Awake · Keeping Mac awake");
}

TEST_F(AppDelegateAwakeTest, ClosedDashboardCatchesUpWithTheSessionWhenItOpens) {
  launchAndOpen();
  clickItem("nimbo-awake");
  const int renders = window()->renders();
  toggleAwake();
  EXPECT_EQ(window()->renders(), renders);
  clickItem("nimbo-awake");
  EXPECT_EQ(page().state.text, "Your Mac is staying awake");
}

TEST_F(AppDelegateAwakeTest, SessionAloneAddsNoTimerAndNoSignal) {
  launch();
  const auto timers = platform.loop.repeatingTimers().size();
  toggleAwake();
  EXPECT_EQ(platform.loop.repeatingTimers().size(), timers);
  EXPECT_TRUE(platform.loop.wallTimers().empty());
}

TEST_F(AppDelegateAwakeTest, QuitAlertHasItsTextsAndClosesTheDashboard) {
  launchAndOpen();
  window()->act(pressed("start"));
  window()->act(pressed("quit"));
  EXPECT_FALSE(dashboardVisible());
  ASSERT_NE(alert(), nullptr);
  EXPECT_EQ(alert()->content().title, "Keep Awake is running");
  EXPECT_EQ(alert()->content().text,
            "Quitting or installing an update ends this session. Your Mac may sleep afterward.");
  EXPECT_EQ(alert()->content().buttons, (std::vector<std::string>{"Keep Running", "End Session & Quit"}));
  EXPECT_FALSE(platform.loop.hasQuit());
}

TEST_F(AppDelegateAwakeTest, KeepRunningTakesTheAlertAwayAndTheSessionGoesOn) {
  launch();
  toggleAwake();
  delegate->quit();
  EXPECT_TRUE(alert()->answer(0));
  EXPECT_EQ(alert(), nullptr);
  EXPECT_FALSE(platform.loop.hasQuit());
  EXPECT_TRUE(awake().isActive());
  delegate->quit();
  EXPECT_NE(alert(), nullptr) << "asked again the next time";
}

TEST_F(AppDelegateAwakeTest, EndSessionAndQuitEndsBoth) {
  launch();
  toggleAwake();
  delegate->quit();
  EXPECT_TRUE(alert()->answer(1));
  EXPECT_TRUE(platform.loop.hasQuit());
  delegate->applicationWillTerminate();
  EXPECT_TRUE(platform.assertions.held().empty());
}

TEST_F(AppDelegateAwakeTest, SessionThatEndsWhileTheUserIsAskedTakesTheQuestionAwayAndQuits) {
  launch();
  awake().start(platform.clock->now() + 1h, false, platform.clock->now());
  delegate->quit();
  awake().extend(1h);
  EXPECT_FALSE(platform.loop.hasQuit()) << "the session goes on";
  ASSERT_NE(alert(), nullptr);
  platform.loop.advance(2h);
  EXPECT_EQ(alert(), nullptr);
  EXPECT_TRUE(platform.loop.hasQuit());
}

TEST_F(AppDelegateAwakeTest, SessionThatEndsAfterTheQuestionWasAnsweredQuitsNothing) {
  launch();
  toggleAwake();
  delegate->quit();
  EXPECT_TRUE(alert()->answer(0));
  toggleAwake();
  EXPECT_FALSE(awake().isActive());
  EXPECT_FALSE(platform.loop.hasQuit());
}

TEST_F(AppDelegateAwakeTest, QuittingAgainBringsTheAlertToTheFront) {
  launch();
  toggleAwake();
  delegate->quit();
  delegate->quit();
  EXPECT_EQ(interface.alerts().size(), 1U);
  EXPECT_EQ(alert()->presents(), 1);
}

TEST_F(AppDelegateAwakeTest, WithoutADisplayQuittingDoesNotAsk) {
  launch();
  toggleAwake();
  delegate->quit();
  alert()->fail();
  EXPECT_TRUE(platform.loop.hasQuit());
}

TEST_F(AppDelegateAwakeTest, LogOutDuringASessionDoesNotAsk) {
  launch();
  toggleAwake();
  platform.terminationRequests.request();
  EXPECT_TRUE(platform.loop.hasQuit());
  EXPECT_TRUE(interface.alerts().empty());
}

TEST_F(AppDelegateAwakeTest, TerminationEndsTheSessionAndWhatItAskedFor) {
  launch();
  awake().start(platform.clock->now() + 1h, false, platform.clock->now());
  awake().turnDisplayOff();
  ASSERT_EQ(platform.display.pending(), 1U);
  delegate->applicationWillTerminate();
  EXPECT_EQ(platform.display.pending(), 0U);
  EXPECT_TRUE(platform.assertions.held().empty());
  EXPECT_TRUE(platform.loop.wallTimers().empty());
  EXPECT_EQ(awake().message(), "Session ended. Normal sleep is allowed.");
}

TEST_F(AppDelegateAwakeTest, OtherProgramsSteerTheSessionThatThePageShows) {
  launchAndOpen();
  const RemoteControlHandlers others = delegate->remoteControlHandlers();
  EXPECT_FALSE(others.extend(1h)) << "there is no end to move";
  EXPECT_FALSE(others.start(platform.clock->now() - 1s, false));
  EXPECT_TRUE(others.start(platform.clock->now() + 1h, true));
  EXPECT_TRUE(others.extend(1h));
  EXPECT_EQ(others.awake().endsAt, platform.clock->now() + 2h);
  others.stop();
  EXPECT_FALSE(others.awake().active);

  const int changes = platform.remote.changes;
  const auto make = others.hold("make", false);
  const auto claude = others.hold("claude", true);
  ASSERT_TRUE(make && claude);
  EXPECT_GT(platform.remote.changes, changes);
  EXPECT_EQ(page().detail.text, "For make and claude. Display stays on.");
  EXPECT_TRUE(others.hold("cargo", false));
  EXPECT_EQ(page().detail.text, "For make and 2 others. Display stays on.");
  others.letGo(*claude);
  window()->act(pressed("start"));
  EXPECT_FALSE(others.awake().active) << "the user stops it for all";
}

}  // namespace
}  // namespace nimbo
