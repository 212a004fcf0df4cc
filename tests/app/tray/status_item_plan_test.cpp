// SPDX-License-Identifier: MIT
#include "app/tray/status_items.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "support/fake_user_defaults.h"

namespace nimbo {
namespace {

using Items = std::vector<StatusItemTab>;

class StatusItemPlanTest : public ::testing::Test {
 protected:
  void show(bool ai, bool memory, bool awake) {
    settings.setMenuAi(ai);
    settings.setMenuMemory(memory);
    settings.setMenuAwake(awake);
  }

  FakeUserDefaultsDomains domains;
  FakeUserDefaults defaults{domains, "test"};
  Settings settings{defaults};
};

TEST_F(StatusItemPlanTest, FreshSettingsShowAiAndMemory) {
  EXPECT_EQ(planStatusItems(settings, {}), (StatusItemPlan{{DashboardTab::ai, DashboardTab::memory}, {}}));
}

TEST_F(StatusItemPlanTest, ItemsFollowTheTabOrder) {
  show(true, true, true);
  settings.setTabOrder(std::array{DashboardTab::awake, DashboardTab::memory, DashboardTab::ai});
  EXPECT_EQ(planStatusItems(settings, {}).shown, (Items{DashboardTab::awake, DashboardTab::memory, DashboardTab::ai}));
}

TEST_F(StatusItemPlanTest, EverySwitchOffShowsTheCompactItem) {
  show(false, false, false);
  EXPECT_EQ(planStatusItems(settings, {}), (StatusItemPlan{{std::nullopt}, {}}));
}

TEST_F(StatusItemPlanTest, CompactModeShowsOnlyTheCompactItem) {
  show(true, true, true);
  settings.setCompactMenuBar(true);
  EXPECT_EQ(planStatusItems(settings, {}).shown, Items{std::nullopt});
}

TEST_F(StatusItemPlanTest, CompactModeKeepsRotationOff) {
  settings.setCompactMenuBar(true);
  settings.setMenuRotation(true);
  EXPECT_EQ(planStatusItems(settings, DashboardTab::memory), (StatusItemPlan{{std::nullopt}, {}}));
}

TEST_F(StatusItemPlanTest, EverySwitchOffKeepsRotationOff) {
  show(false, false, false);
  settings.setMenuRotation(true);
  EXPECT_EQ(planStatusItems(settings, DashboardTab::memory), (StatusItemPlan{{std::nullopt}, {}}));
}

TEST_F(StatusItemPlanTest, RotationBeginsWithTheFirstTab) {
  settings.setMenuRotation(true);
  EXPECT_EQ(planStatusItems(settings, {}), (StatusItemPlan{{DashboardTab::ai}, DashboardTab::ai}));
}

TEST_F(StatusItemPlanTest, RotationKeepsItsTabWhileThatIsAChoice) {
  settings.setMenuRotation(true);
  EXPECT_EQ(planStatusItems(settings, DashboardTab::memory).shown, Items{DashboardTab::memory});
}

TEST_F(StatusItemPlanTest, RotationLeavesATabThatWasSwitchedOff) {
  settings.setMenuRotation(true);
  EXPECT_EQ(planStatusItems(settings, DashboardTab::awake).rotationTab, DashboardTab::ai);
}

TEST_F(StatusItemPlanTest, EveryCombinationOfSwitchesShowsExactlyThoseItems) {
  for (int bits = 1; bits < 8; ++bits) {
    show((bits & 1) != 0, (bits & 2) != 0, (bits & 4) != 0);
    Items expected;
    if ((bits & 1) != 0) expected.push_back(DashboardTab::ai);
    if ((bits & 2) != 0) expected.push_back(DashboardTab::memory);
    if ((bits & 4) != 0) expected.push_back(DashboardTab::awake);
    EXPECT_EQ(planStatusItems(settings, {}).shown, expected) << bits;
  }
}

TEST_F(StatusItemPlanTest, NextTabWrapsFromTheLastToTheFirst) {
  show(true, true, true);
  EXPECT_EQ(nextRotationTab(settings, DashboardTab::ai), DashboardTab::memory);
  EXPECT_EQ(nextRotationTab(settings, DashboardTab::memory), DashboardTab::awake);
  EXPECT_EQ(nextRotationTab(settings, DashboardTab::awake), DashboardTab::ai);
}

TEST_F(StatusItemPlanTest, OneTabHasNoNext) {
  show(false, true, false);
  EXPECT_EQ(nextRotationTab(settings, DashboardTab::memory), std::nullopt);
}

TEST_F(StatusItemPlanTest, TabThatIsNoChoiceHasNoNext) {
  EXPECT_EQ(nextRotationTab(settings, DashboardTab::awake), std::nullopt);
}

}  // namespace
}  // namespace nimbo
