// SPDX-License-Identifier: MIT
// The settings over the real files, where a hand-edited value and a migration meet the disk.
#include <gtest/gtest.h>

#include "settings/settings.h"
#include "support/services/temporary_tree.h"
#include "support/turning_user_defaults.h"

namespace nimbo {
namespace {

using nlohmann::json;
using namespace std::chrono_literals;

constexpr char kOwnDomain[] = "com.quellwerk.Nimbo";
constexpr char kFile[] = "com.quellwerk.Nimbo.json";
constexpr char kPreviousFile[] = "com.quellwerk.Velarin.json";

class SettingsInFiles : public ::testing::Test {
 protected:
  Settings launch() { return Settings(defaults, domains, kOwnDomain); }

  TemporaryTree tree;
  JsonUserDefaultsDomains domains{tree.path()};
  TurningUserDefaults defaults{tree.path(), kOwnDomain};
};

TEST_F(SettingsInFiles, FirstStartStoresNothingButTheMark) {
  EXPECT_EQ(launch().menuPreset(), 4);
  EXPECT_EQ(json::parse(tree.read(kFile)), json({{"didMigrateNimboIdentity", true}}));
}

TEST_F(SettingsInFiles, MigratedValuesAreSeenAtOnceAndThePreviousFileIsUntouched) {
  const std::string previous = "{ \"refreshInterval\" : 10, \"showChart\": 0 }";
  tree.write(kPreviousFile, previous);
  tree.write(kFile, R"({"awakeBatteryFloor": 30})");
  EXPECT_EQ(defaults.integer("awakeBatteryFloor"), 30);
  const Settings settings = launch();
  EXPECT_EQ(settings.refreshInterval(), 10s);
  EXPECT_FALSE(settings.showChart());
  EXPECT_EQ(settings.awakeBatteryFloor(), 30);
  EXPECT_EQ(tree.read(kPreviousFile), previous);
}

TEST_F(SettingsInFiles, ValuesOutOfRangeWrittenByHandReadAsFallbacks) {
  const Settings settings = launch();
  tree.write(kFile, R"({"refreshInterval": 3, "awakeBatteryFloor": 15, "tabOrder": ["awake", "bogus", "awake"]})");
  EXPECT_EQ(settings.refreshInterval(), 5s);
  EXPECT_EQ(settings.awakeBatteryFloor(), 20);
  EXPECT_EQ(settings.tabOrder(), (std::vector{DashboardTab::awake, DashboardTab::ai, DashboardTab::memory}));
  tree.write(kFile, R"({"refreshInterval": 30.0, "awakeBatteryFloor": 0})");
  EXPECT_EQ(settings.refreshInterval(), 30s);
  EXPECT_EQ(settings.awakeBatteryFloor(), 0);
}

TEST_F(SettingsInFiles, MistakeMadeBeforeTheStartIsLeftForItsUserToCorrect) {
  tree.write(kFile, R"({"refreshInterval": 30,})");
  tree.write(kPreviousFile, R"({"refreshInterval": 10})");
  const Settings settings = launch();
  EXPECT_EQ(settings.refreshInterval(), 5s);
  EXPECT_EQ(tree.read(kFile), R"({"refreshInterval": 30,})");
  tree.write(kFile, R"({"refreshInterval": 30})");
  EXPECT_EQ(settings.refreshInterval(), 30s);
}

TEST_F(SettingsInFiles, TwoStoresOverOneFileAgree) {
  Settings ours = launch();
  TurningUserDefaults otherDefaults(tree.path(), kOwnDomain);
  Settings theirs(otherDefaults);
  ours.setMenuPreset(3);
  EXPECT_EQ(theirs.menuPreset(), 3);
  theirs.setRefreshInterval(2s);
  EXPECT_EQ(ours.refreshInterval(), 2s);
}

}  // namespace
}  // namespace nimbo
