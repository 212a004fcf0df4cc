// SPDX-License-Identifier: MIT
#include "ui/dashboard/dashboard_controller.h"

#include <gtest/gtest.h>

#include "support/control_events.h"
#include "ui/dashboard/dashboard_world.h"

namespace nimbo {
namespace {

using namespace std::chrono_literals;

class DashboardControllerTest : public testing::Test {
 protected:
  DashboardControllerTest() {
    controller_.onContentChanged = [this] { ++changes_; };
    controller_.open(std::nullopt);
  }

  DashboardContent content() const { return controller_.content(); }
  ResourcesContent resources() const { return std::get<ResourcesContent>(content().page); }
  AwakeContent awake() const { return std::get<AwakeContent>(content().page); }

  static ProcessScan scanOf(int count) {
    ProcessScan scan;
    for (int pid = 1; pid <= count; ++pid) scan.processes.push_back({pid, "p", 1ULL << 20U});
    return scan;
  }

  DashboardWorld world_;
  DashboardController controller_{world_.sources()};
  int changes_ = 0;
};

TEST_F(DashboardControllerTest, HeaderAndFooterAreComplete) {
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
  EXPECT_EQ(content().settingsButton.keyEquivalent, ",");
  EXPECT_EQ(content().quitButton.toolTip, "Quit Nimbo and end any Keep Awake session");
  EXPECT_EQ(content().quitHint.text, "⌘Q");
  EXPECT_EQ(content().quitHint.style.color, ColorRole::secondaryLabel);
}

TEST_F(DashboardControllerTest, FooterFollowsThePage) {
  EXPECT_EQ(content().size, (Size{340, 534}));
  EXPECT_EQ(content().footerSeparator, (Rect{20, 496, 300, 1}));
  EXPECT_EQ(content().quitButton.frame, (Rect{211, 503, 86, 24}));
  EXPECT_EQ(content().quitHint.frame, (Rect{299, 507, 25, 18}));
  controller_.open(DashboardTab::memory);
  EXPECT_EQ(content().size, (Size{340, 634}));
  EXPECT_EQ(content().footerSeparator, (Rect{20, 596, 300, 1}));
  EXPECT_EQ(content().quitButton.frame, (Rect{211, 603, 86, 24}));
  EXPECT_EQ(content().quitHint.frame, (Rect{299, 607, 25, 18}));
  controller_.open(DashboardTab::awake);
  EXPECT_EQ(content().size, (Size{340, 484}));
}

TEST_F(DashboardControllerTest, ResourcesFollowTheMonitors) {
  world_.settings.setMonitorCpu(true);
  controller_.open(DashboardTab::memory);
  EXPECT_TRUE(resources().cpu.visible);
  EXPECT_FALSE(resources().temperature.visible);
  world_.settings.setMonitorMemory(false);
  world_.readings.cpu = 0.42;
  EXPECT_EQ(content().size, (Size{340, 278 + 38}));
  EXPECT_EQ(resources().hero.text, "42%");
  EXPECT_FALSE(resources().cpu.visible);
  world_.settings.setMonitorTemperature(true);
  EXPECT_EQ(content().size, (Size{340, 302 + 38}));
  EXPECT_TRUE(resources().temperature.visible);
}

TEST_F(DashboardControllerTest, PageIsThatOfItsTabAlone) {
  EXPECT_TRUE(std::holds_alternative<UsageContent>(content().page));
  controller_.handle(chosen("tabs", 1));
  EXPECT_TRUE(std::holds_alternative<ResourcesContent>(content().page));
  controller_.handle(chosen("tabs", 2));
  EXPECT_TRUE(std::holds_alternative<AwakeContent>(content().page));
  EXPECT_TRUE(content().title.visible && content().settingsButton.visible && content().quitButton.visible);
}

TEST_F(DashboardControllerTest, BeginsOnTheStoredTabAndThenKeepsTheShownOne) {
  world_.settings.setLastDashboardTab(DashboardTab::awake);
  controller_.open(std::nullopt);
  EXPECT_EQ(controller_.selectedTab(), DashboardTab::ai);
  DashboardController later(world_.sources());
  EXPECT_EQ(later.selectedTab(), DashboardTab::awake);
}

TEST_F(DashboardControllerTest, ShownTabKeepsItsPageWhenTheOrderChanges) {
  controller_.open(DashboardTab::memory);
  world_.settings.setTabOrder(std::vector{DashboardTab::memory, DashboardTab::awake, DashboardTab::ai});
  EXPECT_EQ(controller_.selectedTab(), DashboardTab::memory);
  EXPECT_EQ(content().tabs.selected, 0U);
  EXPECT_EQ(content().tabs.labels, (std::vector<std::string>{"Mem", "Awake", "AI"}));
}

TEST_F(DashboardControllerTest, TabBeyondTheLastIsTheLast) {
  controller_.handle(chosen("tabs", 5));
  EXPECT_EQ(controller_.selectedTab(), DashboardTab::awake);
  EXPECT_EQ(content().tabs.selected, 2U);
}

TEST_F(DashboardControllerTest, ShowMoreAddsTenRowsEachTimeAndShowLessGoesBackToThree) {
  controller_.open(DashboardTab::memory);
  controller_.showProcesses(scanOf(30));
  EXPECT_EQ(resources().processes.labels.size(), 6U);
  EXPECT_EQ(controller_.processesWanted(), 13U);
  controller_.handle(pressed("more"));
  EXPECT_EQ(controller_.processesWanted(), 23U);
  EXPECT_EQ(resources().processTitle.text, "TOP 13 PROCESSES");
  EXPECT_EQ(resources().processes.labels.size(), 26U);
  EXPECT_EQ(content().size.height, 596 + 87 + 38);
  EXPECT_TRUE(resources().lessButton.visible);
  controller_.handle(pressed("more"));
  EXPECT_EQ(resources().processTitle.text, "TOP 23 PROCESSES");
  EXPECT_EQ(content().size.height, 596 + 87 + 38);
  EXPECT_TRUE(resources().moreButton.enabled);
  controller_.handle(pressed("less"));
  EXPECT_EQ(resources().processTitle.text, "TOP 3 PROCESSES");
  EXPECT_FALSE(resources().lessButton.visible);
  EXPECT_EQ(content().size.height, 596 + 38);
}

TEST_F(DashboardControllerTest, ChangeOfTheAwakePageIsAChangeOfTheContent) {
  controller_.open(DashboardTab::awake);
  changes_ = 0;
  EXPECT_EQ(awake().detail.text, "Keep AI jobs running while your display rests.");
  controller_.handle(chosen("duration", 5));
  EXPECT_EQ(changes_, 1);
  EXPECT_TRUE(awake().minutes.visible);
}

TEST_F(DashboardControllerTest, OpeningForgetsWhatWasEntered) {
  controller_.open(DashboardTab::awake);
  controller_.handle(typed("minutes", "x"));
  EXPECT_EQ(awake().minutes.text, "x");
  controller_.open(std::nullopt);
  EXPECT_EQ(awake().minutes.text, "60");
}

TEST_F(DashboardControllerTest, ButtonThatLeadsNowhereIsDisabled) {
  controller_.open(DashboardTab::memory);
  EXPECT_TRUE(resources().activityButton.enabled);
  controller_.setActivityMonitorEnabled(false);
  controller_.open(DashboardTab::memory);
  EXPECT_FALSE(resources().activityButton.enabled);
  EXPECT_TRUE(resources().activityButton.visible);
}

TEST_F(DashboardControllerTest, EachCauseReportsOneChange) {
  EXPECT_EQ(changes_, 1);
  controller_.open(DashboardTab::memory);
  EXPECT_EQ(changes_, 2);
  controller_.showProcesses(scanOf(2));
  EXPECT_EQ(changes_, 3);
  controller_.handle(chosen("tabs", 1));
  EXPECT_EQ(changes_, 4);
}

}  // namespace
}  // namespace nimbo
