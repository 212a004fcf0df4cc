// SPDX-License-Identifier: MIT
#include "settings/settings.h"

#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <string>

#include "settings/settings_fixture.h"

namespace nimbo {
namespace {

using nlohmann::json;
using namespace std::chrono_literals;

TEST_F(SettingsTest, FreshDomainReadsItsDefaults) {
  const Settings settings(defaults);
  EXPECT_TRUE(settings.monitorMemory());
  EXPECT_FALSE(settings.monitorCpu());
  EXPECT_FALSE(settings.monitorTemperature());
  EXPECT_FALSE(settings.compactMenuBar());
  EXPECT_FALSE(settings.usageEnabled(UsageProvider::codex));
  EXPECT_FALSE(settings.usageEnabled(UsageProvider::claude));
  EXPECT_EQ(settings.displayMode(), "usedPercent");
  EXPECT_EQ(settings.refreshInterval(), 5s);
  EXPECT_TRUE(settings.showChart());
  EXPECT_EQ(settings.awakeDuration(), 0);
  EXPECT_EQ(settings.awakeCustomMinutes(), 60);
  EXPECT_FALSE(settings.awakeDisplayOn());
  EXPECT_FALSE(settings.awakeOnlyOnPower());
  EXPECT_EQ(settings.awakeBatteryFloor(), 20);
  EXPECT_TRUE(settings.menuAi());
  EXPECT_TRUE(settings.menuMemory());
  EXPECT_FALSE(settings.menuAwake());
  EXPECT_TRUE(settings.aiMenuRemaining());
  EXPECT_EQ(settings.aiMenuWindows(), 1);
  EXPECT_FALSE(settings.menuRotation());
  EXPECT_EQ(settings.menuRotationInterval(), 10s);
  EXPECT_EQ(settings.lastDashboardTab(), kAi);
  EXPECT_EQ(settings.tabOrder(), (Tabs{kAi, kMemory, kAwake}));
  EXPECT_FALSE(settings.claudeFirst());
  EXPECT_EQ(settings.menuTabs(), (Tabs{kAi, kMemory}));
  EXPECT_EQ(settings.menuPreset(), 4);
  EXPECT_EQ(settings.providerOrder(), (Providers{UsageProvider::codex, UsageProvider::claude}));
}

TEST_F(SettingsTest, CreationOverAFreshDomainWritesNothing) {
  const Settings settings(defaults);
  EXPECT_TRUE(domains.writes.empty());
}

TEST_F(SettingsTest, ExactlyTheSixteenDefaultsAreRegistered) {
  const Settings settings(defaults);
  EXPECT_EQ(defaults.registered, json::parse(R"({
    "monitorMemory": true, "monitorCPU": false, "displayMode": "usedPercent", "refreshInterval": 5,
    "showChart": true, "awakeDuration": 0, "awakeCustomMinutes": 60, "awakeDisplayOn": false,
    "awakeOnlyOnPower": false, "awakeBatteryFloor": 20, "menuAI": true, "menuMemory": true,
    "menuAwake": false, "aiMenuRemaining": true, "aiMenuWindows": 1, "menuRotationInterval": 10})"));
}

TEST_F(SettingsTest, BothMonitorsStoredOffTurnsMemoryOn) {
  store("monitorMemory", false);
  store("monitorCPU", false);
  const Settings settings(defaults);
  EXPECT_TRUE(settings.monitorMemory());
  EXPECT_FALSE(settings.monitorCpu());
  EXPECT_EQ(stored("monitorMemory"), true);
}

TEST_F(SettingsTest, MemoryStoredOffAndCpuNeverSetTurnsMemoryOn) {
  store("monitorMemory", false);
  const Settings settings(defaults);
  EXPECT_TRUE(settings.monitorMemory());
}

TEST_F(SettingsTest, MemoryStoredOffStaysOffWhileCpuIsOn) {
  store("monitorMemory", false);
  store("monitorCPU", true);
  const Settings settings(defaults);
  EXPECT_FALSE(settings.monitorMemory());
  EXPECT_TRUE(domains.writes.empty());
}

TEST_F(SettingsTest, NothingIsCached) {
  const Settings settings(defaults);
  const Settings other(defaults);
  store("refreshInterval", 30);
  EXPECT_EQ(settings.refreshInterval(), 30s);
  EXPECT_EQ(other.refreshInterval(), 30s);
}

struct Switch {
  const char* key;
  bool byDefault;
  bool (Settings::*get)() const;
  void (Settings::*set)(bool);
};

class SettingsSwitch : public SettingsTest, public ::testing::WithParamInterface<Switch> {};

TEST_P(SettingsSwitch, SetterStoresUnderItsKeyAndGetterReadsIt) {
  Settings settings(defaults);
  for (const bool on : {!GetParam().byDefault, GetParam().byDefault}) {
    (settings.*GetParam().set)(on);
    EXPECT_EQ(stored(GetParam().key), on);
    EXPECT_EQ((settings.*GetParam().get)(), on);
  }
}

TEST_P(SettingsSwitch, MistypedValueReadsAsTheDefault) {
  const Settings settings(defaults);
  for (const json& wrong : {json("yes"), json(2), json(0.5), json::array({true}), json(nullptr)}) {
    store(GetParam().key, wrong);
    EXPECT_EQ((settings.*GetParam().get)(), GetParam().byDefault) << wrong;
  }
}

INSTANTIATE_TEST_SUITE_P(
    Keys, SettingsSwitch,
    ::testing::Values(Switch{"monitorMemory", true, &Settings::monitorMemory, &Settings::setMonitorMemory},
                      Switch{"monitorCPU", false, &Settings::monitorCpu, &Settings::setMonitorCpu},
                      Switch{"monitorTemperature", false, &Settings::monitorTemperature,
                             &Settings::setMonitorTemperature},
                      Switch{"compactMenuBar", false, &Settings::compactMenuBar, &Settings::setCompactMenuBar},
                      Switch{"showChart", true, &Settings::showChart, &Settings::setShowChart},
                      Switch{"awakeDisplayOn", false, &Settings::awakeDisplayOn, &Settings::setAwakeDisplayOn},
                      Switch{"awakeOnlyOnPower", false, &Settings::awakeOnlyOnPower, &Settings::setAwakeOnlyOnPower},
                      Switch{"menuAI", true, &Settings::menuAi, &Settings::setMenuAi},
                      Switch{"menuMemory", true, &Settings::menuMemory, &Settings::setMenuMemory},
                      Switch{"menuAwake", false, &Settings::menuAwake, &Settings::setMenuAwake},
                      Switch{"aiMenuRemaining", true, &Settings::aiMenuRemaining, &Settings::setAiMenuRemaining},
                      Switch{"menuRotation", false, &Settings::menuRotation, &Settings::setMenuRotation},
                      Switch{"claudeFirst", false, &Settings::claudeFirst, &Settings::setClaudeFirst}),
    [](const auto& test) { return std::string(test.param.key); });

TEST_F(SettingsTest, UsageSwitchesAreKeptPerProvider) {
  Settings settings(defaults);
  settings.setUsageEnabled(UsageProvider::claude, true);
  EXPECT_EQ(stored("usage.claude"), true);
  EXPECT_EQ(stored("usage.codex"), "(absent)");
  EXPECT_TRUE(settings.usageEnabled(UsageProvider::claude));
  EXPECT_FALSE(settings.usageEnabled(UsageProvider::codex));
  settings.setUsageEnabled(UsageProvider::codex, true);
  EXPECT_EQ(stored("usage.codex"), true);
  EXPECT_TRUE(settings.usageEnabled(UsageProvider::codex));
}

TEST_F(SettingsTest, RefreshIntervalIsOneOfItsChoices) {
  const Settings settings(defaults);
  for (const int seconds : {2, 5, 10, 30}) {
    store("refreshInterval", seconds);
    EXPECT_EQ(settings.refreshInterval(), std::chrono::seconds(seconds));
  }
  for (const json& wrong : {json(1), json(3), json(4), json(6), json(29), json(31), json(0), json(-2), json(2.5),
                            json("10"), json(std::numeric_limits<std::int64_t>::max()), json(1e300), json(true)}) {
    store("refreshInterval", wrong);
    EXPECT_EQ(settings.refreshInterval(), 5s) << wrong;
  }
}

TEST_F(SettingsTest, MenuRotationIntervalIsOneOfItsChoices) {
  const Settings settings(defaults);
  for (const int seconds : {5, 10, 15, 30, 60, 120, 300, 600}) {
    store("menuRotationInterval", seconds);
    EXPECT_EQ(settings.menuRotationInterval(), std::chrono::seconds(seconds));
  }
  for (const int seconds : {0, 4, 6, 9, 11, 14, 16, 29, 31, 59, 61, 119, 121, 299, 301, 599, 601, -5}) {
    store("menuRotationInterval", seconds);
    EXPECT_EQ(settings.menuRotationInterval(), 10s) << seconds;
  }
}

TEST_F(SettingsTest, AwakeDurationIsOneOfItsChoices) {
  const Settings settings(defaults);
  for (const int duration : {0, 1800, 3600, 7200, 14400, -1, -2}) {
    store("awakeDuration", duration);
    EXPECT_EQ(settings.awakeDuration(), duration);
  }
  for (const int duration : {1, -3, 1799, 1801, 3599, 3601, 7199, 7201, 14399, 14401}) {
    store("awakeDuration", duration);
    EXPECT_EQ(settings.awakeDuration(), 0) << duration;
  }
}

TEST_F(SettingsTest, AwakeBatteryFloorIsOneOfItsChoices) {
  const Settings settings(defaults);
  for (const int percent : {0, 10, 20, 30, 50}) {
    store("awakeBatteryFloor", percent);
    EXPECT_EQ(settings.awakeBatteryFloor(), percent);
  }
  for (const int percent : {-1, 1, 9, 11, 15, 19, 21, 29, 31, 40, 49, 51, 100}) {
    store("awakeBatteryFloor", percent);
    EXPECT_EQ(settings.awakeBatteryFloor(), 20) << percent;
  }
  store("awakeBatteryFloor", std::int64_t{1} << 32);
  EXPECT_EQ(settings.awakeBatteryFloor(), 20) << "must not be cut to 32 bits, which would give 0";
}

TEST_F(SettingsTest, NumbersAreStoredUnderTheirKeys) {
  Settings settings(defaults);
  settings.setRefreshInterval(30s);
  settings.setMenuRotationInterval(2min);
  settings.setAwakeDuration(-2);
  settings.setAwakeCustomMinutes(90);
  settings.setAwakeBatteryFloor(0);
  settings.setAiMenuWindows(0);
  EXPECT_EQ(domains.domains[kDomain], json::parse(R"({"refreshInterval": 30, "menuRotationInterval": 120,
    "awakeDuration": -2, "awakeCustomMinutes": 90, "awakeBatteryFloor": 0, "aiMenuWindows": 0})"));
  EXPECT_EQ(settings.refreshInterval(), 30s);
  EXPECT_EQ(settings.menuRotationInterval(), 120s);
  EXPECT_EQ(settings.awakeDuration(), -2);
  EXPECT_EQ(settings.awakeCustomMinutes(), 90);
  EXPECT_EQ(settings.awakeBatteryFloor(), 0);
  EXPECT_EQ(settings.aiMenuWindows(), 0);
}

TEST_F(SettingsTest, CustomMinutesAndMenuWindowsReadAsStored) {
  const Settings settings(defaults);
  for (const std::int64_t value : {std::int64_t{-5}, std::int64_t{0}, std::int64_t{10081}, std::int64_t{1} << 40}) {
    store("awakeCustomMinutes", value);
    store("aiMenuWindows", value);
    EXPECT_EQ(settings.awakeCustomMinutes(), value);
    EXPECT_EQ(settings.aiMenuWindows(), value);
  }
  store("awakeCustomMinutes", "90");
  store("aiMenuWindows", true);
  EXPECT_EQ(settings.awakeCustomMinutes(), 60);
  EXPECT_EQ(settings.aiMenuWindows(), 1);
}

TEST_F(SettingsTest, DisplayModeIsKeptAsGiven) {
  Settings settings(defaults);
  settings.setDisplayMode("free");
  EXPECT_EQ(stored("displayMode"), "free");
  EXPECT_EQ(settings.displayMode(), "free");
  store("displayMode", 3);
  EXPECT_EQ(settings.displayMode(), "usedPercent");
}

TEST_F(SettingsTest, LastDashboardTabIsStoredByRawValue) {
  Settings settings(defaults);
  for (const DashboardTab tab : kAllDashboardTabs) {
    settings.setLastDashboardTab(tab);
    EXPECT_EQ(stored("lastDashboardTab"), rawValue(tab));
    EXPECT_EQ(settings.lastDashboardTab(), tab);
  }
  for (const json& wrong : {json("Memory"), json(""), json(1), json::array({"memory"})}) {
    store("lastDashboardTab", wrong);
    EXPECT_EQ(settings.lastDashboardTab(), kAi) << wrong;
  }
}

}  // namespace
}  // namespace nimbo
