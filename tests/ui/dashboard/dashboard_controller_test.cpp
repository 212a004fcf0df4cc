// SPDX-License-Identifier: MIT
#include "ui/dashboard/dashboard_controller.h"

#include <gtest/gtest.h>

#include "ui/dashboard/awake_view_fixture.h"

namespace nimbo {
namespace {

using namespace std::chrono_literals;

class DashboardControllerTest : public testing::Test {
 protected:
  DashboardControllerTest() {
    controller_.onContentChanged = [this] { ++changes_; };
    controller_.onTabChanged = [this] { ++tabChanges_; };
    controller_.onExpand = [this] { ++expansions_; };
  }

  const DashboardContent& content() const { return controller_.content(); }

  void showMemory(DashboardPreferences preferences = {}) {
    preferences.lastDashboardTab = DashboardTab::memory;
    controller_.apply(preferences);
  }

  static ProcessScan scanOf(int count) {
    ProcessScan scan;
    for (int pid = 1; pid <= count; ++pid) scan.processes.push_back({pid, "p", 1ULL << 20U});
    return scan;
  }

  AwakeViewWorld world_;
  DashboardController controller_{world_.viewServices()};
  int changes_ = 0;
  int tabChanges_ = 0;
  int expansions_ = 0;
};

TEST_F(DashboardControllerTest, HeaderAndFooterAreThereFromTheStart) {
  EXPECT_EQ(content().title.text, "Nimbo");
  EXPECT_EQ(content().title.frame, (Rect{20, 19, 48, 22}));
  EXPECT_EQ(content().title.style, (TextStyle{15, FontWeight::semibold}));
  EXPECT_EQ(content().tabs.frame, (Rect{70, 17, 218, 26}));
  EXPECT_EQ(content().tabs.labels, (std::vector<std::string>{"AI", "Mem", "Awake"}));
  EXPECT_EQ(content().settingsButton.frame, (Rect{293, 16, 28, 28}));
  EXPECT_EQ(content().settingsButton.look, ButtonLook::icon);
  EXPECT_EQ(content().settingsButton.title, "gearshape");
  EXPECT_EQ(content().settingsButton.accessibleName, "Settings");
  EXPECT_EQ(content().settingsButton.toolTip, "Settings: monitors, display, refresh interval");
  EXPECT_EQ(content().quitButton.title, "Quit Nimbo");
  EXPECT_EQ(content().quitButton.keyEquivalent, "q");
  EXPECT_EQ(content().quitButton.toolTip, "Quit Nimbo and end any Keep Awake session");
  EXPECT_EQ(content().quitHint.text, "⌘Q");
  EXPECT_EQ(content().quitHint.style.color, ColorRole::secondaryLabel);
}

TEST_F(DashboardControllerTest, FooterFollowsThePage) {
  EXPECT_EQ(content().size, (Size{340, 534}));
  EXPECT_EQ(content().footerSeparator, (Rect{20, 496, 300, 1}));
  EXPECT_EQ(content().quitButton.frame, (Rect{211, 503, 86, 24}));
  EXPECT_EQ(content().quitHint.frame, (Rect{299, 507, 25, 18}));
  showMemory();
  EXPECT_EQ(content().size, (Size{340, 634}));
  EXPECT_EQ(content().footerSeparator, (Rect{20, 596, 300, 1}));
  EXPECT_EQ(content().quitButton.frame, (Rect{211, 603, 86, 24}));
  EXPECT_EQ(content().quitHint.frame, (Rect{299, 607, 25, 18}));
}

TEST_F(DashboardControllerTest, EachTabHasItsHeight) {
  showMemory();
  controller_.selectTab(DashboardTab::awake);
  EXPECT_EQ(content().size, (Size{340, 484}));
  controller_.selectTab(DashboardTab::ai);
  EXPECT_EQ(content().size, (Size{340, 534}));
  controller_.selectTab(DashboardTab::memory);
  EXPECT_EQ(content().size, (Size{340, 634}));
}

TEST_F(DashboardControllerTest, MemoryOffMakesTheMemoryTab278PointsTallAndTheHeroShowsCpu) {
  DashboardPreferences preferences;
  preferences.monitorMemory = false;
  preferences.monitorCpu = true;
  showMemory(preferences);
  ResourcesSample sample;
  sample.cpu = 0.42;
  controller_.update(sample);
  EXPECT_EQ(content().size, (Size{340, 278 + 38}));
  EXPECT_EQ(content().hero.text, "42%");
  preferences.monitorTemperature = true;
  controller_.apply(preferences);
  EXPECT_EQ(content().size, (Size{340, 302 + 38}));
  EXPECT_TRUE(content().temperature.visible);
}

TEST_F(DashboardControllerTest, ResourcesAreVisibleOnTheMemoryTabOnly) {
  controller_.apply({});
  EXPECT_EQ(controller_.selectedTab(), DashboardTab::ai);
  EXPECT_FALSE(content().hero.visible);
  EXPECT_FALSE(content().activityButton.visible);
  controller_.tabChanged(1);
  EXPECT_TRUE(content().hero.visible);
  EXPECT_TRUE(content().activityButton.visible);
  controller_.tabChanged(2);
  EXPECT_EQ(controller_.selectedTab(), DashboardTab::awake);
  EXPECT_FALSE(content().hero.visible);
  EXPECT_TRUE(content().title.visible && content().settingsButton.visible && content().quitButton.visible);
}

TEST_F(DashboardControllerTest, FirstSettingsChooseThePreferredTabAndLaterOnesKeepTheShownOne) {
  DashboardPreferences preferences;
  preferences.lastDashboardTab = DashboardTab::awake;
  controller_.apply(preferences);
  EXPECT_EQ(controller_.selectedTab(), DashboardTab::awake);
  controller_.tabChanged(0);
  controller_.apply(preferences);
  EXPECT_EQ(controller_.selectedTab(), DashboardTab::ai);
}

TEST_F(DashboardControllerTest, ShownTabFollowsItsSegmentWhenTheOrderChanges) {
  DashboardPreferences preferences;
  preferences.lastDashboardTab = DashboardTab::memory;
  controller_.apply(preferences);
  preferences.tabOrder = {DashboardTab::memory, DashboardTab::awake, DashboardTab::ai};
  controller_.apply(preferences);
  EXPECT_EQ(controller_.selectedTab(), DashboardTab::memory);
  EXPECT_EQ(content().tabs.selected, 0U);
  EXPECT_EQ(content().tabs.labels, (std::vector<std::string>{"Mem", "Awake", "AI"}));
}

TEST_F(DashboardControllerTest, TabThatIsNotInTheOrderGivesWayToTheFirst) {
  DashboardPreferences preferences;
  preferences.tabOrder = {DashboardTab::memory, DashboardTab::awake};
  controller_.apply(preferences);
  EXPECT_EQ(controller_.selectedTab(), DashboardTab::memory);
  controller_.tabChanged(1);
  controller_.selectTab(DashboardTab::ai);
  EXPECT_EQ(controller_.selectedTab(), DashboardTab::memory);
}

TEST_F(DashboardControllerTest, SelectionBeyondTwoTabsIsClampedToTheLast) {
  DashboardPreferences preferences;
  preferences.tabOrder = {DashboardTab::memory, DashboardTab::awake};
  controller_.apply(preferences);
  controller_.tabChanged(5);
  EXPECT_EQ(controller_.selectedTab(), DashboardTab::awake);
  EXPECT_EQ(content().tabs.selected, 1U);
  EXPECT_EQ(content().size.height, 446 + 38);
}

TEST_F(DashboardControllerTest, EmptyTabOrderKeepsTheOldOne) {
  DashboardPreferences preferences;
  preferences.tabOrder.clear();
  controller_.apply(preferences);
  EXPECT_EQ(content().tabs.labels.size(), 3U);
}

TEST_F(DashboardControllerTest, UsersTabIsReportedAfterTheContentAndTheProgramsIsNot) {
  controller_.apply({});
  double heightWhenTold = 0;
  controller_.onTabChanged = [&] { heightWhenTold = content().size.height; };
  controller_.tabChanged(1);
  EXPECT_EQ(heightWhenTold, 634);
  heightWhenTold = 0;
  controller_.selectTab(DashboardTab::awake);
  EXPECT_EQ(heightWhenTold, 0);
  EXPECT_EQ(controller_.selectedTab(), DashboardTab::awake);
}

TEST_F(DashboardControllerTest, FooterNamesTheRefreshInterval) {
  DashboardPreferences preferences;
  EXPECT_EQ(content().footer.text, "");
  controller_.apply(preferences);
  EXPECT_EQ(content().footer.text, "Updates every 5s");
  preferences.refreshInterval = 30s;
  controller_.apply(preferences);
  EXPECT_EQ(content().footer.text, "Updates every 30s");
}

TEST_F(DashboardControllerTest, CpuLineNeedsBothMonitors) {
  DashboardPreferences preferences;
  showMemory(preferences);
  EXPECT_FALSE(content().cpu.visible);
  preferences.monitorCpu = true;
  controller_.apply(preferences);
  EXPECT_TRUE(content().cpu.visible);
}

TEST_F(DashboardControllerTest, TemperatureIsShownWhenMonitored) {
  DashboardPreferences preferences;
  preferences.monitorTemperature = true;
  showMemory(preferences);
  EXPECT_EQ(content().temperature.text, "");
  controller_.updateTemperature(54.4);
  EXPECT_EQ(content().temperature.text, "CPU temperature  54°C · hottest sensor");
  EXPECT_TRUE(content().temperature.visible);
  controller_.updateTemperature(std::nullopt);
  EXPECT_EQ(content().temperature.text, "CPU temperature unavailable on this Mac");
}

TEST_F(DashboardControllerTest, ShowMoreAddsTenRowsEachTimeAndShowLessGoesBackToThree) {
  showMemory();
  controller_.updateProcesses(scanOf(30));
  EXPECT_EQ(content().processes.labels.size(), 6U);
  controller_.expandClicked();
  EXPECT_EQ(content().processTitle.text, "TOP 13 PROCESSES");
  EXPECT_EQ(content().processes.labels.size(), 26U);
  EXPECT_EQ(content().size.height, 596 + 87 + 38);
  EXPECT_TRUE(content().lessButton.visible);
  controller_.expandClicked();
  EXPECT_EQ(content().processTitle.text, "TOP 23 PROCESSES");
  EXPECT_EQ(content().size.height, 596 + 87 + 38);
  EXPECT_TRUE(content().moreButton.enabled);
  controller_.collapseClicked();
  EXPECT_EQ(content().processTitle.text, "TOP 3 PROCESSES");
  EXPECT_FALSE(content().lessButton.visible);
  EXPECT_EQ(content().size.height, 596 + 38);
  EXPECT_EQ(expansions_, 3);
}

TEST_F(DashboardControllerTest, ExpansionIsReportedAfterTheContentHasGrown) {
  showMemory();
  double heightWhenTold = 0;
  controller_.onExpand = [&] { heightWhenTold = content().size.height; };
  controller_.expandClicked();
  EXPECT_EQ(heightWhenTold, 596 + 87 + 38);
}

TEST_F(DashboardControllerTest, ButtonsCallTheirCallbacks) {
  int settings = 0;
  int quits = 0;
  int monitors = 0;
  controller_.onSettings = [&] { ++settings; };
  controller_.onQuit = [&] { ++quits; };
  controller_.onActivityMonitor = [&] { ++monitors; };
  controller_.settingsClicked();
  EXPECT_EQ(std::tuple(settings, quits, monitors), std::tuple(1, 0, 0));
  controller_.quitClicked();
  EXPECT_EQ(std::tuple(settings, quits, monitors), std::tuple(1, 1, 0));
  controller_.activityClicked();
  EXPECT_EQ(std::tuple(settings, quits, monitors), std::tuple(1, 1, 1));
}

TEST(DashboardController, WorksWithoutCallbacks) {
  AwakeViewWorld world;
  DashboardController controller(world.viewServices());
  controller.apply({});
  controller.tabChanged(1);
  controller.expandClicked();
  controller.collapseClicked();
  controller.settingsClicked();
  controller.quitClicked();
  controller.activityClicked();
  EXPECT_EQ(controller.selectedTab(), DashboardTab::memory);
}

TEST_F(DashboardControllerTest, AwakePageIsVisibleOnItsTabOnlyAndFollowsTheSettings) {
  world_.settings.setAwakeDuration(7200);
  DashboardPreferences preferences;
  preferences.lastDashboardTab = DashboardTab::awake;
  controller_.apply(preferences);
  EXPECT_TRUE(content().awake.start.visible);
  EXPECT_EQ(content().awake.duration.selected, 3U);
  EXPECT_FALSE(content().hero.visible);
  controller_.selectTab(DashboardTab::memory);
  EXPECT_FALSE(content().awake.start.visible);
}

TEST_F(DashboardControllerTest, ChangeOfTheAwakePageIsAChangeOfTheContent) {
  controller_.selectTab(DashboardTab::awake);
  changes_ = 0;
  controller_.awakeView().refresh(world_.manager);
  EXPECT_EQ(changes_, 1);
  EXPECT_EQ(content().awake.detail.text, "Keep AI jobs running while your display rests.");
  controller_.awakeView().actions().selectDuration(5);
  EXPECT_EQ(changes_, 2);
  EXPECT_TRUE(content().awake.minutes.visible);
}

TEST_F(DashboardControllerTest, ButtonThatLeadsNowhereIsDisabled) {
  showMemory();
  EXPECT_TRUE(content().activityButton.enabled);
  controller_.setActivityMonitorEnabled(false);
  EXPECT_FALSE(content().activityButton.enabled);
  EXPECT_TRUE(content().activityButton.visible);
}

TEST_F(DashboardControllerTest, ChangeIsReportedOnceAndNothingWhenNothingChanged) {
  controller_.apply({});
  EXPECT_EQ(changes_, 1);
  controller_.apply({});
  EXPECT_EQ(changes_, 1);
  ResourcesSample sample;
  sample.memory = MemorySnapshot{};
  controller_.update(sample);
  EXPECT_EQ(changes_, 2);
  controller_.update(sample);
  EXPECT_EQ(changes_, 2);
  controller_.updateProcesses(scanOf(2));
  EXPECT_EQ(changes_, 3);
  controller_.updateProcesses(scanOf(2));
  EXPECT_EQ(changes_, 3);
  controller_.updateTemperature(50.1);
  EXPECT_EQ(changes_, 4);
  controller_.updateTemperature(50.2);
  EXPECT_EQ(changes_, 4);
  controller_.tabChanged(0);
  EXPECT_EQ(changes_, 4);
  EXPECT_EQ(tabChanges_, 1);
}

}  // namespace
}  // namespace nimbo
