// SPDX-License-Identifier: MIT
// Which tabs, status items and providers are shown, and in which order.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "settings/settings_fixture.h"

namespace nimbo {
namespace {

using nlohmann::json;

TEST_F(SettingsTest, TabOrderHoldingOnlyMemoryIsFilledUp) {
  const Settings settings(defaults);
  store("tabOrder", json::array({"memory"}));
  EXPECT_EQ(settings.tabOrder(), (Tabs{kMemory, kAi, kAwake}));
}

TEST_F(SettingsTest, TabOrderDropsUnknownAndRepeatedTabs) {
  const Settings settings(defaults);
  store("tabOrder", {"awake", "bogus", "awake"});
  EXPECT_EQ(settings.tabOrder(), (Tabs{kAwake, kAi, kMemory}));
}

TEST_F(SettingsTest, TabOrderThatIsNoArrayOfStringsIsTheDefault) {
  const Settings settings(defaults);
  for (const json& wrong : {json("awake"), json::array(), json({"awake", 1}), json({{"awake", 0}}), json(nullptr)}) {
    store("tabOrder", wrong);
    EXPECT_EQ(settings.tabOrder(), (Tabs{kAi, kMemory, kAwake})) << wrong;
  }
}

TEST_F(SettingsTest, EveryPermutationOfTabsReadsBack) {
  Settings settings(defaults);
  Tabs tabs{kAi, kMemory, kAwake};
  do {
    settings.setTabOrder(tabs);
    EXPECT_EQ(settings.tabOrder(), tabs);
  } while (std::next_permutation(tabs.begin(), tabs.end()));
}

TEST_F(SettingsTest, TabOrderIsStoredUnchanged) {
  Settings settings(defaults);
  settings.setTabOrder(Tabs{kAwake, kAwake});
  EXPECT_EQ(stored("tabOrder"), json({"awake", "awake"}));
  settings.setTabOrder({});
  EXPECT_EQ(stored("tabOrder"), json::array());
}

TEST_F(SettingsTest, MenuTabsAreThoseSwitchedOnInTabOrder) {
  Settings settings(defaults);
  settings.setTabOrder(Tabs{kAwake, kMemory, kAi});
  settings.setMenuAwake(true);
  EXPECT_EQ(settings.menuTabs(), (Tabs{kAwake, kMemory, kAi}));
  settings.setMenuMemory(false);
  EXPECT_EQ(settings.menuTabs(), (Tabs{kAwake, kAi}));
  settings.setMenuAi(false);
  EXPECT_EQ(settings.menuTabs(), Tabs{kAwake});
  settings.setMenuAwake(false);
  EXPECT_EQ(settings.menuTabs(), Tabs{});
}

TEST_F(SettingsTest, MenuPresetSummarisesEveryCombinationOfSwitches) {
  struct Row {
    bool ai, memory, awake;
    int preset;
  };
  constexpr std::array kRows{Row{true, true, true, 0},   Row{true, false, false, 1}, Row{false, true, false, 2},
                             Row{false, false, true, 3}, Row{true, true, false, 4},  Row{true, false, true, 4},
                             Row{false, true, true, 4},  Row{false, false, false, 4}};
  Settings settings(defaults);
  for (const Row& row : kRows) {
    settings.setMenuAi(row.ai);
    settings.setMenuMemory(row.memory);
    settings.setMenuAwake(row.awake);
    EXPECT_EQ(settings.menuPreset(), row.preset) << row.ai << row.memory << row.awake;
  }
}

TEST_F(SettingsTest, MenuPresetTwoShowsMemoryOnlyAndSamplesIt) {
  store("monitorMemory", false);
  store("monitorCPU", true);
  store("compactMenuBar", true);
  store("menuAwake", true);
  Settings settings(defaults);
  settings.setMenuPreset(2);
  EXPECT_EQ(stored("menuAI"), false);
  EXPECT_EQ(stored("menuMemory"), true);
  EXPECT_EQ(stored("menuAwake"), false);
  EXPECT_EQ(stored("compactMenuBar"), false);
  EXPECT_EQ(stored("monitorMemory"), true);
}

TEST_F(SettingsTest, EachMenuPresetReadsBackAndTurnsCompactOff) {
  Settings settings(defaults);
  for (int preset = 0; preset <= 3; ++preset) {
    settings.setCompactMenuBar(true);
    settings.setMenuPreset(preset);
    EXPECT_EQ(settings.menuPreset(), preset);
    EXPECT_FALSE(settings.compactMenuBar());
  }
}

TEST_F(SettingsTest, MenuPresetWithoutMemoryLeavesMemorySamplingOff) {
  store("monitorMemory", false);
  store("monitorCPU", true);
  Settings settings(defaults);
  settings.setMenuPreset(1);
  settings.setMenuPreset(3);
  EXPECT_EQ(stored("monitorMemory"), false);
  settings.setMenuPreset(0);
  EXPECT_EQ(stored("monitorMemory"), true);
}

TEST_F(SettingsTest, MenuPresetOutOfRangeDoesNothing) {
  Settings settings(defaults);
  for (const int preset : {-1, 4, 5}) settings.setMenuPreset(preset);
  EXPECT_TRUE(domains.writes.empty());
}

TEST_F(SettingsTest, ProviderOrderFollowsClaudeFirst) {
  Settings settings(defaults);
  settings.setClaudeFirst(true);
  EXPECT_EQ(settings.providerOrder(), (Providers{UsageProvider::claude, UsageProvider::codex}));
  settings.setClaudeFirst(false);
  EXPECT_EQ(settings.providerOrder(), (Providers{UsageProvider::codex, UsageProvider::claude}));
}

}  // namespace
}  // namespace nimbo
