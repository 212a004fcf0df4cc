// SPDX-License-Identifier: MIT
#include "settings/dashboard_tab.h"

#include <gtest/gtest.h>

#include "settings/usage_provider.h"

namespace nimbo {
namespace {

TEST(DashboardTab, RawValuesReadBackInDefaultOrder) {
  const std::array expected{"ai", "memory", "awake"};
  ASSERT_EQ(kAllDashboardTabs.size(), expected.size());
  for (std::size_t index = 0; index < expected.size(); ++index) {
    EXPECT_EQ(rawValue(kAllDashboardTabs[index]), expected[index]);
    EXPECT_EQ(dashboardTab(expected[index]), kAllDashboardTabs[index]);
  }
}

TEST(DashboardTab, UnknownTextIsNone) {
  for (const char* const text : {"", "AI", "ai ", "usage", "awak"}) EXPECT_EQ(dashboardTab(text), std::nullopt);
}

TEST(DashboardTab, NamesAreWhatUsersRead) {
  EXPECT_EQ(displayName(DashboardTab::ai), "AI");
  EXPECT_EQ(displayName(DashboardTab::memory), "Mem");
  EXPECT_EQ(displayName(DashboardTab::awake), "Awake");
}

TEST(DashboardTab, EveryOrderIsOfferedOnceBeginningWithTheDefault) {
  using enum DashboardTab;
  const std::vector<std::vector<DashboardTab>> expected{{ai, memory, awake}, {ai, awake, memory}, {memory, ai, awake},
                                                        {memory, awake, ai}, {awake, ai, memory}, {awake, memory, ai}};
  EXPECT_EQ(offeredTabOrders(), expected);
}

TEST(UsageProvider, RawValuesAreInOrder) {
  const std::array expected{"codex", "claude"};
  ASSERT_EQ(kAllUsageProviders.size(), expected.size());
  for (std::size_t index = 0; index < expected.size(); ++index) {
    EXPECT_EQ(rawValue(kAllUsageProviders[index]), expected[index]);
  }
}

}  // namespace
}  // namespace nimbo
