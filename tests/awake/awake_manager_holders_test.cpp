// SPDX-License-Identifier: MIT
#include "awake_fixture.h"

namespace nimbo {
namespace {

using Names = std::vector<std::string>;

class AwakeHoldersTest : public AwakeManagerTest {
 protected:
  AwakeManager::HolderId hold(const std::string& name, bool keepDisplayOn = false) {
    const auto holder = manager.hold(name, keepDisplayOn);
    EXPECT_TRUE(holder);
    return holder.value_or(0);
  }
  [[nodiscard]] bool systemHeld() const { return client.holds("PreventUserIdleSystemSleep"); }
};

TEST_F(AwakeHoldersTest, MachineStaysAwakeUntilTheLastLetsGo) {
  const auto make = hold("make");
  const auto claude = hold("claude");
  EXPECT_EQ(told, (Log{"", ""}));
  EXPECT_EQ(manager.holders(), (Names{"make", "claude"}));
  EXPECT_FALSE(manager.isOwn());
  manager.letGo(make);
  EXPECT_TRUE(systemHeld());
  manager.letGo(make);
  EXPECT_TRUE(systemHeld()) << "again is once";
  manager.letGo(claude);
  EXPECT_FALSE(systemHeld());
  EXPECT_EQ(told, (Log{"", "", "", "Session ended. Normal sleep is allowed."}));
}

TEST_F(AwakeHoldersTest, DisplayStaysOnForAsLongAsSomebodyWantsIt) {
  const auto film = hold("film", true);
  hold("make");
  EXPECT_TRUE(manager.keepsDisplayOn());
  manager.letGo(film);
  EXPECT_TRUE(manager.isActive());
  EXPECT_FALSE(manager.keepsDisplayOn());
  start({}, true);
  EXPECT_TRUE(manager.keepsDisplayOn());
  manager.setKeepDisplayOn(false);
  EXPECT_FALSE(manager.keepsDisplayOn());
}

TEST_F(AwakeHoldersTest, OwnSessionEndsForItself) {
  const auto make = hold("make");
  start(at(14, 0), true);
  EXPECT_EQ(manager.endsAt(), at(14, 0));
  passUntil(at(14, 0));
  EXPECT_TRUE(manager.isActive());
  EXPECT_FALSE(manager.isOwn());
  EXPECT_FALSE(manager.keepsDisplayOn()) << "which only the own session wanted";
  EXPECT_EQ(manager.endsAt(), std::nullopt);
  EXPECT_EQ(told, (Log{"", "", ""}));
  manager.letGo(make);
  EXPECT_FALSE(systemHeld());
}

TEST_F(AwakeHoldersTest, HolderThatGoesLeavesTheOwnSession) {
  start(at(14, 0), true);
  manager.letGo(hold("make"));
  EXPECT_TRUE(manager.isActive());
  EXPECT_TRUE(manager.keepsDisplayOn());
  EXPECT_EQ(manager.endsAt(), at(14, 0));
}

TEST_F(AwakeHoldersTest, UserStopsItForAll) {
  const auto make = hold("make");
  start({}, true);
  manager.stopByUser();
  EXPECT_FALSE(systemHeld());
  EXPECT_EQ(manager.holders(), Names{});
  hold("claude");
  EXPECT_FALSE(manager.isOwn() || manager.keepsDisplayOn()) << "nothing is left of the user's";
  manager.letGo(make);
  EXPECT_TRUE(manager.isActive()) << "an old number is nobody's";
}

TEST_F(AwakeHoldersTest, BatteryRulesHoldForAll) {
  sources.onBattery(30);
  hold("make");
  sources.onBattery(20);
  EXPECT_FALSE(systemHeld());
  const auto refused = manager.hold("claude", false);
  ASSERT_FALSE(refused);
  EXPECT_EQ(refused.error(), manager.message());
  EXPECT_NE(refused.error(), "");
}

TEST_F(AwakeHoldersTest, WhatTheSystemRefusesIsToldAndHoldsNothing) {
  client.refuse("PreventUserIdleSystemSleep", 5);
  EXPECT_FALSE(manager.hold("make", false));
  EXPECT_EQ(manager.holders(), Names{});
}

TEST_F(AwakeHoldersTest, TheyAreNotWithoutNumber) {
  for (int count = 0; count < 64; ++count) hold("make");
  EXPECT_FALSE(manager.hold("make", false));
  EXPECT_TRUE(manager.isActive());
}

}  // namespace
}  // namespace nimbo
