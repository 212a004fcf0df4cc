// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "settings/settings.h"
#include "support/fake_user_defaults.h"

namespace nimbo {
namespace {

using nlohmann::json;
using namespace std::chrono_literals;

constexpr char kCurrent[] = "com.quellwerk.Nimbo";
constexpr char kPrevious[] = "com.quellwerk.Velarin";

class SettingsMigration : public ::testing::Test {
 protected:
  Settings launch(const std::optional<std::string>& identifier = kCurrent) {
    return Settings(defaults, domains, identifier);
  }

  FakeUserDefaultsDomains domains;
  FakeUserDefaults defaults{domains, kCurrent};
};

class MigratedKey : public SettingsMigration, public ::testing::WithParamInterface<const char*> {};

TEST_P(MigratedKey, IsCopiedAsStoredWhenOnlyThePreviousDomainHasIt) {
  for (const json& value : {json(true), json(-7), json(2.5), json("text"), json({1, {{"a", nullptr}}})}) {
    domains.domains = {{kPrevious, {{GetParam(), value}}}};
    migratePreviousIdentity(domains);
    EXPECT_EQ(domains.domains[kCurrent], json({{GetParam(), value}, {"didMigrateNimboIdentity", true}}));
  }
}

TEST_P(MigratedKey, IsLeftAloneWhenTheCurrentDomainHasIt) {
  domains.domains = {{kPrevious, {{GetParam(), 1}}}, {kCurrent, {{GetParam(), nullptr}}}};
  migratePreviousIdentity(domains);
  EXPECT_EQ(domains.domains[kCurrent], json({{GetParam(), nullptr}, {"didMigrateNimboIdentity", true}}));
}

INSTANTIATE_TEST_SUITE_P(Keys, MigratedKey,
                         ::testing::Values("monitorMemory", "monitorCPU", "monitorTemperature", "compactMenuBar",
                                           "usage.codex", "usage.claude", "displayMode", "refreshInterval", "showChart",
                                           "awakeDuration", "awakeCustomMinutes", "awakeDisplayOn", "awakeOnlyOnPower",
                                           "awakeBatteryFloor", "SUEnableAutomaticChecks", "SUAutomaticallyUpdate"),
                         [](const auto& test) {
                           std::string name = test.param;
                           std::replace(name.begin(), name.end(), '.', '_');
                           return name;
                         });

TEST_F(SettingsMigration, NewerAndUnknownKeysAreNotCopied) {
  for (const char* const key : {"menuAI", "menuMemory", "menuAwake", "aiMenuRemaining", "aiMenuWindows", "menuRotation",
                                "menuRotationInterval", "lastDashboardTab", "tabOrder", "claudeFirst", "unknown"}) {
    domains.domains[kPrevious][key] = 1;
  }
  migratePreviousIdentity(domains);
  EXPECT_EQ(domains.domains[kCurrent], json({{"didMigrateNimboIdentity", true}}));
}

TEST_F(SettingsMigration, CurrentValueStaysTheRestIsCopiedAndASecondCreationDoesNothingMore) {
  domains.domains[kPrevious] = {{"refreshInterval", 10}, {"showChart", false}, {"usage.claude", true}};
  domains.domains[kCurrent] = {{"refreshInterval", 2}, {"menuAwake", true}};
  const json previous = domains.domains[kPrevious];

  const Settings first = launch();
  EXPECT_EQ(first.refreshInterval(), 2s);
  EXPECT_FALSE(first.showChart());
  EXPECT_TRUE(first.usageEnabled(UsageProvider::claude));
  EXPECT_TRUE(first.menuAwake());
  EXPECT_EQ(domains.writes, std::vector<std::string>{kCurrent}) << "one write of the whole domain";
  EXPECT_EQ(domains.domains[kPrevious], previous);

  domains.domains[kPrevious]["monitorTemperature"] = true;
  domains.domains[kCurrent].erase("showChart");
  const Settings second = launch();
  EXPECT_TRUE(second.showChart());
  EXPECT_FALSE(second.monitorTemperature());
  EXPECT_EQ(domains.writes.size(), 1U);
}

TEST_F(SettingsMigration, PreviousDomainIsNeitherChangedNorRemoved) {
  domains.domains[kPrevious] = {{"refreshInterval", 10}};
  launch();
  EXPECT_EQ(domains.domains[kPrevious], json({{"refreshInterval", 10}}));
}

TEST_F(SettingsMigration, WithoutAnyDomainOnlyTheMarkIsWritten) {
  const Settings settings = launch();
  EXPECT_EQ(domains.domains[kCurrent], json({{"didMigrateNimboIdentity", true}}));
  EXPECT_EQ(domains.domains.count(kPrevious), 0U);
  EXPECT_EQ(settings.refreshInterval(), 5s);
}

TEST_F(SettingsMigration, MonitorsMigratedAsOffTurnMemoryOn) {
  domains.domains[kPrevious] = {{"monitorMemory", false}, {"monitorCPU", false}};
  EXPECT_TRUE(launch().monitorMemory());
  EXPECT_EQ(domains.domains[kCurrent]["monitorMemory"], true);
}

TEST_F(SettingsMigration, OnlyATrueMarkStopsIt) {
  for (const json& mark : {json(false), json("true"), json(2), json(nullptr)}) {
    domains.domains = {{kPrevious, {{"refreshInterval", 10}}}, {kCurrent, {{"didMigrateNimboIdentity", mark}}}};
    EXPECT_EQ(launch().refreshInterval(), 10s) << mark;
    EXPECT_EQ(domains.domains[kCurrent]["didMigrateNimboIdentity"], true);
  }
  for (const json& mark : {json(true), json(1)}) {
    domains.domains = {{kPrevious, {{"refreshInterval", 10}}}, {kCurrent, {{"didMigrateNimboIdentity", mark}}}};
    EXPECT_EQ(launch().refreshInterval(), 5s) << mark;
  }
}

TEST_F(SettingsMigration, AnotherOrMissingIdentifierNeverMigrates) {
  domains.domains[kPrevious] = {{"refreshInterval", 10}};
  for (const std::optional<std::string>& identifier :
       {std::optional<std::string>(), std::optional<std::string>(""), std::optional<std::string>("com.quellwerk.nimbo"),
        std::optional<std::string>("com.quellwerk.Nimbo.dev"), std::optional<std::string>(kPrevious)}) {
    EXPECT_EQ(launch(identifier).refreshInterval(), 5s);
  }
  EXPECT_TRUE(domains.writes.empty());
}

TEST_F(SettingsMigration, NonStandardDomainNeverMigrates) {
  domains.domains[kPrevious] = {{"refreshInterval", 10}};
  FakeUserDefaults other(domains, "Nimbo.Performance.1");
  EXPECT_EQ(Settings(other).refreshInterval(), 5s);
  EXPECT_EQ(Settings(defaults).refreshInterval(), 5s);
  EXPECT_TRUE(domains.writes.empty());
}

TEST_F(SettingsMigration, FailedWriteIsTriedAgainAtTheNextStart) {
  domains.domains[kPrevious] = {{"refreshInterval", 10}};
  domains.failsToWrite = true;
  EXPECT_EQ(launch().refreshInterval(), 5s);
  domains.failsToWrite = false;
  EXPECT_EQ(launch().refreshInterval(), 10s);
}

}  // namespace
}  // namespace nimbo
