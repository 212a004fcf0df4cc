// SPDX-License-Identifier: MIT
#include "app/app_delegate.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/app_delegate_fixture.h"

namespace nimbo {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using Names = std::vector<std::string>;

TEST_F(AppDelegateTest, LaunchMakesTheItemsTakesASampleAndStartsTheTimer) {
  launch();
  EXPECT_EQ(platform.bar.identifiers(), (Names{"nimbo-ai", "nimbo-memory"}));
  EXPECT_EQ(platform.bar.item("nimbo-memory")->content.toolTip,
            "Memory: 50% · 8.0 GB used of 16.0 GB; 8.0 GB available; normal pressure");
  ASSERT_EQ(platform.loop.repeatingTimers().size(), 1U);
  EXPECT_EQ(platform.loop.repeatingTimers()[0].interval, seconds(5));
  EXPECT_TRUE(platform.power.observed());
}

TEST_F(AppDelegateTest, LaunchMakesNoWindow) {
  launch();
  platform.loop.advance(seconds(60));
  EXPECT_EQ(window(), nullptr);
}

TEST_F(AppDelegateTest, TickRefreshesTheMemoryItem) {
  launch();
  platform.host->counts = MemoryCounts{.wired = kGibibyte * 12};
  platform.loop.advance(seconds(5));
  EXPECT_EQ(platform.bar.item("nimbo-memory")->content.title, "75%");
}

TEST_F(AppDelegateTest, FailedReadingIsToldByTheMemoryItem) {
  launch();
  platform.host->counts.reset();
  platform.loop.advance(seconds(5));
  EXPECT_EQ(platform.bar.item("nimbo-memory")->content.toolTip, "Memory unavailable; retrying");
}

TEST_F(AppDelegateTest, ClickOpensTheDashboardOnTheItemsTab) {
  launch();
  clickItem("nimbo-memory");
  ASSERT_TRUE(dashboardVisible());
  EXPECT_EQ(content().tabs.selected, 1U);
  EXPECT_EQ(resources().hero.text, "50%");
}

TEST_F(AppDelegateTest, ClickWhileOpenCloses) {
  launch();
  clickItem("nimbo-memory");
  clickItem("nimbo-memory");
  EXPECT_FALSE(dashboardVisible());
}

TEST_F(AppDelegateTest, ClickOnAnotherItemWhileOpenCloses) {
  launch();
  clickItem("nimbo-memory");
  clickItem("nimbo-ai");
  EXPECT_FALSE(dashboardVisible());
}

TEST_F(AppDelegateTest, ReopeningUsesTheSameWindow) {
  launch();
  for (int i = 0; i < 5; ++i) clickItem("nimbo-memory");
  EXPECT_EQ(interface.windows().size(), 1U);
  EXPECT_TRUE(dashboardVisible());
}

TEST_F(AppDelegateTest, TheClickThatClosedThePanelDoesNotOpenItAgain) {
  launch();
  clickItem("nimbo-memory");
  window()->activateOtherApplication();  // the panel's press has taken the focus
  ASSERT_FALSE(dashboardVisible());
  platform.loop.advance(milliseconds(100));
  clickItem("nimbo-memory");
  EXPECT_FALSE(dashboardVisible());
  platform.loop.advance(milliseconds(400));
  clickItem("nimbo-memory");
  EXPECT_TRUE(dashboardVisible());
}

TEST_F(AppDelegateTest, CompactItemOpensTheTabShownLast) {
  settings.setCompactMenuBar(true);
  settings.setLastDashboardTab(DashboardTab::memory);
  launch();
  clickItem("nimbo");
  EXPECT_EQ(content().tabs.selected, 1U);
}

TEST_F(AppDelegateTest, ShownTabIsRemembered) {
  launch();
  clickItem("nimbo-memory");
  EXPECT_EQ(settings.lastDashboardTab(), DashboardTab::memory);
  window()->act(chosen("tabs", 2));
  EXPECT_EQ(settings.lastDashboardTab(), DashboardTab::awake);
}

TEST_F(AppDelegateTest, OpeningOnTheMemoryTabScansAtOnceEvenWithinTheThrottle) {
  launch();
  clickItem("nimbo-memory");
  EXPECT_EQ(platform.utilities.waiting(), 1U);
  platform.utilities.runOne();
  platform.loop.runPosted();
  ASSERT_EQ(resources().processes.labels.size(), 2U);
  EXPECT_EQ(resources().processes.labels[0].text, "big");
  clickItem("nimbo-memory");
  clickItem("nimbo-memory");
  EXPECT_EQ(platform.utilities.waiting(), 1U);
}

TEST_F(AppDelegateTest, SwitchingToTheMemoryTabScansAndToAnotherDoesNot) {
  launch();
  clickItem("nimbo-ai");
  EXPECT_EQ(platform.utilities.waiting(), 0U);
  window()->act(chosen("tabs", 1));
  EXPECT_EQ(platform.utilities.waiting(), 1U);
}

TEST_F(AppDelegateTest, ClosedDashboardIsNotScannedFor) {
  launch();
  clickItem("nimbo-memory");
  platform.utilities.runOne();
  platform.loop.runPosted();
  clickItem("nimbo-memory");
  platform.loop.advance(seconds(60));
  EXPECT_EQ(platform.utilities.waiting(), 0U);
}

TEST_F(AppDelegateTest, ScanThatComesAfterTheDashboardClosedIsNotDrawn) {
  launch();
  clickItem("nimbo-memory");
  clickItem("nimbo-memory");
  const int before = window()->renders();
  ASSERT_TRUE(platform.utilities.runOne());
  platform.loop.runPosted();
  EXPECT_EQ(window()->renders(), before);
}

TEST_F(AppDelegateTest, OpenDashboardFollowsTheSamples) {
  launch();
  clickItem("nimbo-memory");
  platform.host->counts = MemoryCounts{.wired = kGibibyte * 4};
  platform.loop.advance(seconds(5));
  EXPECT_EQ(resources().hero.text, "25%");
  EXPECT_EQ(resources().time.text, "RECENT USAGE · 5s");
}

TEST_F(AppDelegateTest, ClosedDashboardIsNotRenderedAndCatchesUpOnOpening) {
  launch();
  clickItem("nimbo-memory");
  clickItem("nimbo-memory");
  const int renders = window()->renders();
  platform.host->counts = MemoryCounts{.wired = kGibibyte * 4};
  platform.loop.advance(seconds(10));
  EXPECT_EQ(window()->renders(), renders);
  clickItem("nimbo-memory");
  EXPECT_EQ(resources().hero.text, "25%");
}

TEST_F(AppDelegateTest, GrowingProcessListGrowsTheWindow) {
  for (int pid = 100; pid < 120; ++pid) platform.processes->add(pid, 1 << 20, "some");
  launch();
  clickItem("nimbo-memory");
  platform.utilities.runOne();
  platform.loop.runPosted();
  const double height = window()->frame().height;
  window()->act(pressed("more"));
  EXPECT_EQ(window()->frame().height, height + 87);
  EXPECT_EQ(resources().processTitle.text, "TOP 13 PROCESSES");
}

TEST_F(AppDelegateTest, SettingsChangedByHandAreSeenAtTheNextOpening) {
  launch();
  clickItem("nimbo-memory");
  clickItem("nimbo-memory");
  settings.setMonitorCpu(true);
  clickItem("nimbo-memory");
  EXPECT_TRUE(resources().cpu.visible);
}

TEST_F(AppDelegateTest, ActivityButtonOpensTheSystemMonitor) {
  launch();
  clickItem("nimbo-memory");
  EXPECT_TRUE(resources().activityButton.enabled);
  window()->act(pressed("activity"));
  EXPECT_EQ(platform.desktop.monitorsOpened, 1);
}

TEST_F(AppDelegateTest, WithoutASystemMonitorItsButtonIsDisabled) {
  platform.desktop.systemMonitor = false;
  launch();
  clickItem("nimbo-memory");
  EXPECT_FALSE(resources().activityButton.enabled);
}

TEST_F(AppDelegateTest, WindowsFollowTheDesktopsAppearance) {
  platform.desktop.setAppearance(Appearance::dark);
  launch();
  clickItem("nimbo-memory");
  platform.desktop.setAppearance(Appearance::light);
  EXPECT_EQ(interface.appearances(), (std::vector{Appearance::light, Appearance::dark, Appearance::light}));
}

TEST_F(AppDelegateTest, WithoutADisplayAClickChangesNothing) {
  const auto screens = interface.screens();
  interface.setScreens({});
  launch();
  clickItem("nimbo-memory");
  EXPECT_FALSE(dashboardVisible());
  EXPECT_FALSE(platform.bar.item("nimbo-memory")->highlighted);
  interface.setScreens(screens);
  clickItem("nimbo-memory");
  EXPECT_TRUE(dashboardVisible()) << "a display that appears later is found";
}

TEST_F(AppDelegateTest, MenuClosesThePanelAndHasItsEntries) {
  launch();
  clickItem("nimbo-memory");
  const auto menu = platform.bar.openMenu("nimbo-memory");
  EXPECT_FALSE(dashboardVisible());
  EXPECT_EQ(menu.title, "Nimbo");
  Names titles;
  for (const auto& entry : menu.entries) {
    const bool line = entry.kind == MenuEntry::Kind::separator;
    titles.push_back(line ? "-" : entry.title);
    EXPECT_EQ(entry.enabled, !line) << entry.title;
    EXPECT_EQ(entry.keyEquivalent, entry.title == "Settings…" ? "," : "") << entry.title;
  }
  EXPECT_EQ(titles, (Names{"Keep awake until stopped", "-", "Settings…", "Check for Updates…", "-", "Quit Nimbo"}));
}

TEST_F(AppDelegateTest, MenuOpensTheSettingsAndChecksForUpdates) {
  launch();
  EXPECT_TRUE(platform.bar.choose("nimbo-memory", "Settings…"));
  ASSERT_EQ(interface.settingsWindows().size(), 1U);
  EXPECT_TRUE(interface.settingsWindows()[0]->visible());
  EXPECT_TRUE(platform.bar.choose("nimbo-memory", "Check for Updates…"));
  ASSERT_EQ(interface.openAlerts().size(), 1U);
  EXPECT_EQ(interface.openAlerts()[0]->content().title, "Updates aren’t connected yet");
}

TEST_F(AppDelegateTest, QuitFromTheMenuEndsWithoutAsking) {
  launch();
  EXPECT_TRUE(platform.bar.choose("nimbo-memory", "Quit Nimbo"));
  EXPECT_TRUE(platform.loop.hasQuit());
}

TEST_F(AppDelegateTest, QuitFromTheDashboardEnds) {
  launch();
  clickItem("nimbo-memory");
  window()->act(pressed("quit"));
  EXPECT_TRUE(platform.loop.hasQuit());
}

TEST_F(AppDelegateTest, TerminationRequestEnds) {
  launch();
  platform.terminationRequests.request();
  EXPECT_TRUE(platform.loop.hasQuit());
}

TEST_F(AppDelegateTest, TerminationStopsEveryTimer) {
  settings.setMenuRotation(true);
  launch();
  EXPECT_EQ(platform.loop.repeatingTimers().size(), 2U);
  delegate->applicationWillTerminate();
  EXPECT_TRUE(platform.loop.repeatingTimers().empty());
  EXPECT_FALSE(platform.power.observed());
}

TEST_F(AppDelegateTest, SleepClosesThePanelAndStopsTheTimers) {
  settings.setMenuRotation(true);
  launch();
  clickItem("nimbo-rotation");
  platform.power.sleep();
  EXPECT_FALSE(dashboardVisible());
  EXPECT_TRUE(platform.loop.repeatingTimers().empty());
}

TEST_F(AppDelegateTest, WakeEmptiesTheHistoriesTakesASampleAndRestarts) {
  settings.setMenuRotation(true);
  launch();
  platform.loop.advance(seconds(20));
  platform.power.sleep();
  platform.power.wake();
  EXPECT_EQ(platform.loop.repeatingTimers().size(), 2U);
  clickItem("nimbo-rotation");
  window()->act(chosen("tabs", 1));
  EXPECT_EQ(resources().history.bars.size(), 40U + 1) << "one sample over the empty places";
  EXPECT_EQ(resources().time.text, "RECENT USAGE · 0s");
}

TEST_F(AppDelegateTest, RotationWaitsWhileThePanelIsOpen) {
  settings.setMenuRotation(true);
  launch();
  clickItem("nimbo-rotation");
  platform.loop.advance(seconds(30));
  EXPECT_EQ(platform.bar.item("nimbo-rotation")->content.accessibleName, "AI usage");
  clickItem("nimbo-rotation");
  platform.loop.advance(seconds(10));
  EXPECT_EQ(platform.bar.item("nimbo-rotation")->content.accessibleName, "Memory");
}

TEST_F(AppDelegateTest, SecondStartOpensTheDashboardOnTheTabShownLast) {
  settings.setLastDashboardTab(DashboardTab::memory);
  launch();
  delegate->activate();
  ASSERT_TRUE(dashboardVisible());
  EXPECT_EQ(content().tabs.selected, 1U);
}

TEST_F(AppDelegateTest, ItemIsHighlightedWhileTheDashboardHangsFromIt) {
  launch();
  clickItem("nimbo-memory");
  EXPECT_TRUE(platform.bar.item("nimbo-memory")->highlighted);
  clickItem("nimbo-memory");
  EXPECT_FALSE(platform.bar.item("nimbo-memory")->highlighted);
}

TEST_F(AppDelegateTest, WithoutATrayTheDashboardOpensAndTheUserIsToldWhatToDo) {
  launch();
  EXPECT_FALSE(dashboardVisible());
  ASSERT_TRUE(platform.bar.absent);
  platform.bar.absent("Add a tray.");
  EXPECT_TRUE(dashboardVisible());
  ASSERT_EQ(platform.desktop.notices.size(), 1U);
  EXPECT_EQ(platform.desktop.notices[0].second, "Add a tray. Until then, start Nimbo again to open it.");
}

TEST_F(AppDelegateTest, ItemsDrawTheFigureWhereTitlesAreNotSeen) {
  settings.setShowChart(false);
  launch();
  const auto beside = platform.bar.item("nimbo-memory")->content.image;
  platform.bar.titlesShown = false;
  platform.loop.advance(std::chrono::seconds(5));
  EXPECT_NE(platform.bar.item("nimbo-memory")->content.image, beside);
}

}  // namespace
}  // namespace nimbo
