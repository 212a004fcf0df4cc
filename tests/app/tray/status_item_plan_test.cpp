// SPDX-License-Identifier: MIT
#include "app/tray/status_item_plan.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "support/fake_user_defaults.h"

namespace nimbo {
namespace {

using Kinds = std::vector<StatusItemKind>;

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
  EXPECT_EQ(planStatusItems(settings, {}), (StatusItemPlan{{StatusItemKind::ai, StatusItemKind::memory}, {}}));
}

TEST_F(StatusItemPlanTest, ItemsFollowTheTabOrder) {
  show(true, true, true);
  settings.setTabOrder(std::array{DashboardTab::awake, DashboardTab::memory, DashboardTab::ai});
  EXPECT_EQ(planStatusItems(settings, {}).shown,
            (Kinds{StatusItemKind::awake, StatusItemKind::memory, StatusItemKind::ai}));
}

TEST_F(StatusItemPlanTest, EverySwitchOffShowsTheCompactItem) {
  show(false, false, false);
  EXPECT_EQ(planStatusItems(settings, {}), (StatusItemPlan{{StatusItemKind::compact}, {}}));
}

TEST_F(StatusItemPlanTest, CompactModeShowsOnlyTheCompactItem) {
  show(true, true, true);
  settings.setCompactMenuBar(true);
  EXPECT_EQ(planStatusItems(settings, {}).shown, Kinds{StatusItemKind::compact});
}

TEST_F(StatusItemPlanTest, CompactModeKeepsRotationOff) {
  settings.setCompactMenuBar(true);
  settings.setMenuRotation(true);
  EXPECT_EQ(planStatusItems(settings, DashboardTab::memory), (StatusItemPlan{{StatusItemKind::compact}, {}}));
}

TEST_F(StatusItemPlanTest, EverySwitchOffKeepsRotationOff) {
  show(false, false, false);
  settings.setMenuRotation(true);
  EXPECT_EQ(planStatusItems(settings, DashboardTab::memory), (StatusItemPlan{{StatusItemKind::compact}, {}}));
}

TEST_F(StatusItemPlanTest, RotationBeginsWithTheFirstTab) {
  settings.setMenuRotation(true);
  EXPECT_EQ(planStatusItems(settings, {}), (StatusItemPlan{{StatusItemKind::ai}, DashboardTab::ai}));
}

TEST_F(StatusItemPlanTest, RotationKeepsItsTabWhileThatIsAChoice) {
  settings.setMenuRotation(true);
  EXPECT_EQ(planStatusItems(settings, DashboardTab::memory).shown, Kinds{StatusItemKind::memory});
}

TEST_F(StatusItemPlanTest, RotationLeavesATabThatWasSwitchedOff) {
  settings.setMenuRotation(true);
  EXPECT_EQ(planStatusItems(settings, DashboardTab::awake).rotationTab, DashboardTab::ai);
}

TEST_F(StatusItemPlanTest, EveryCombinationOfSwitchesShowsExactlyThoseItems) {
  for (int bits = 1; bits < 8; ++bits) {
    show((bits & 1) != 0, (bits & 2) != 0, (bits & 4) != 0);
    Kinds expected;
    if ((bits & 1) != 0) expected.push_back(StatusItemKind::ai);
    if ((bits & 2) != 0) expected.push_back(StatusItemKind::memory);
    if ((bits & 4) != 0) expected.push_back(StatusItemKind::awake);
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
