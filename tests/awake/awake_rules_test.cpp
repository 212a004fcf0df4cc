// SPDX-License-Identifier: MIT
#include "awake/awake_rules.h"

#include <gtest/gtest.h>

#include "platform/mac_wording.h"

namespace nimbo {
namespace {

constexpr const char* kConnectTheCharger = "Connect the charger to keep this Mac awake.";

std::string floorMessage(int floor) {
  return "Session stopped: battery is at or below " + std::to_string(floor) + "%.";
}

TEST(AwakeRules, DefaultsAllowBatteryDownToTwentyPercent) { EXPECT_EQ(AwakeRules(), (AwakeRules{false, 20})); }

TEST(AwakeRules, MachineWithoutABatteryIsNeverStopped) {
  EXPECT_EQ(stopReason(std::nullopt, {true, 100}, macWording()), std::nullopt);
}

TEST(AwakeRules, MainsPowerIsNeverAReasonWhateverTheCharge) {
  EXPECT_EQ(stopReason(BatteryState{false, 1}, {true, 20}, macWording()), std::nullopt);
  EXPECT_EQ(stopReason(BatteryState{false, std::nullopt}, {true, 20}, macWording()), std::nullopt);
}

TEST(AwakeRules, OnlyOnPowerStopsOnBatteryWhateverTheCharge) {
  EXPECT_EQ(stopReason(BatteryState{true, 100}, {true, 0}, macWording()), kConnectTheCharger);
  EXPECT_EQ(stopReason(BatteryState{true, std::nullopt}, {true, 20}, macWording()), kConnectTheCharger);
}

TEST(AwakeRules, OnlyOnPowerComesBeforeTheFloor) {
  EXPECT_EQ(stopReason(BatteryState{true, 5}, {true, 20}, macWording()), kConnectTheCharger);
}

TEST(AwakeRules, ChargeAtTheFloorStopsAndOneAboveDoesNot) {
  EXPECT_EQ(stopReason(BatteryState{true, 20}, {false, 20}, macWording()), floorMessage(20));
  EXPECT_EQ(stopReason(BatteryState{true, 21}, {false, 20}, macWording()), std::nullopt);
}

TEST(AwakeRules, MessageNamesTheFloorAndNotTheCharge) {
  EXPECT_EQ(stopReason(BatteryState{true, 3}, {false, 50}, macWording()), floorMessage(50));
  EXPECT_EQ(stopReason(BatteryState{true, 0}, {false, 1}, macWording()), floorMessage(1));
  EXPECT_EQ(stopReason(BatteryState{true, 100}, {false, 100}, macWording()), floorMessage(100));
}

TEST(AwakeRules, FloorBelowOneMeansNone) {
  EXPECT_EQ(stopReason(BatteryState{true, 0}, {false, 0}, macWording()), std::nullopt);
  EXPECT_EQ(stopReason(BatteryState{true, 0}, {false, -5}, macWording()), std::nullopt);
}

TEST(AwakeRules, UnknownChargeIsAboveEveryFloor) {
  EXPECT_EQ(stopReason(BatteryState{true, std::nullopt}, {false, 100}, macWording()), std::nullopt);
}

}  // namespace
}  // namespace nimbo
