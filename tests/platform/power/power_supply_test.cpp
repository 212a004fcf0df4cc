// SPDX-License-Identifier: MIT
#include "platform/linux/power/power_supply.h"

#include <gtest/gtest.h>

namespace nimbo {
namespace {

using State = std::optional<std::string>;

PowerSupply battery(const char* status) {
  PowerSupply supply;
  supply.type = "Battery";
  supply.status = status;
  return supply;
}

PowerSupply mains(std::optional<std::int64_t> online, const char* type = "Mains") {
  PowerSupply supply;
  supply.type = type;
  supply.online = online;
  return supply;
}

PowerSupply ofDevice(PowerSupply supply) {
  supply.scope = "Device";
  return supply;
}

const State kAc = "AC Power";
const State kBattery = kBatteryPower;

TEST(PowerSourceState, OnlineMainsIsAcPowerWhateverTheBatterySays) {
  for (const char* status : {"Charging", "Discharging", "Not charging", "Full", "Unknown", ""}) {
    EXPECT_EQ(powerSourceState({mains(1), battery(status)}), kAc) << status;
  }
}

TEST(PowerSourceState, OneOnlineSupplyAmongSeveralIsEnough) {
  EXPECT_EQ(powerSourceState({mains(0), battery("Not charging"), mains(0, "USB"), mains(1, "USB")}), kAc);
}

TEST(PowerSourceState, UsbChargerThatGivesMoreThanAFixedCurrentIsOnlineToo) {
  EXPECT_EQ(powerSourceState({battery("Discharging"), mains(2, "USB")}), kAc);
}

TEST(PowerSourceState, MainsOfflineIsBatteryPowerAlsoWhileTheBatteryLagsBehind) {
  for (const char* status : {"Discharging", "Not charging", "Full", "Unknown", "", "nonsense"}) {
    EXPECT_EQ(powerSourceState({mains(0), battery(status)}), kBattery) << status;
  }
}

TEST(PowerSourceState, ChargingBatteryGivesAwayASupplyThatIsNotShownOnline) {
  EXPECT_EQ(powerSourceState({mains(0, "USB"), battery("Charging")}), kAc);
}

TEST(PowerSourceState, OneBatteryChargingTheOtherIsBatteryPower) {
  EXPECT_EQ(powerSourceState({mains(0), battery("Charging"), battery("Discharging")}), kBattery);
}

TEST(PowerSourceState, WithoutMainsOnlyADischargingBatteryMeansBatteryPower) {
  EXPECT_EQ(powerSourceState({battery("Discharging")}), kBattery);
  for (const char* status : {"Charging", "Not charging", "Full", "Unknown", "discharging"}) {
    EXPECT_EQ(powerSourceState({battery(status)}), kAc) << status;
  }
}

TEST(PowerSourceState, RestingBatteryBesideADischargingOneIsOnBatteryPowerToo) {
  EXPECT_EQ(powerSourceState({battery("Not charging"), battery("Discharging")}), kBattery);
}

TEST(PowerSourceState, NothingThatTellsIsAbsent) {
  EXPECT_EQ(powerSourceState({}), std::nullopt);
  EXPECT_EQ(powerSourceState({battery("")}), std::nullopt);
  EXPECT_EQ(powerSourceState({battery(""), mains(std::nullopt)}), std::nullopt);
}

TEST(PowerSourceState, EveryKindOfMainsCounts) {
  for (const char* type : {"Mains", "USB", "USB_C", "USB_PD", "USB_DCP", "Wireless", "BrickID"}) {
    EXPECT_EQ(powerSourceState({mains(1, type), battery("Discharging")}), kAc) << type;
  }
  for (const char* type : {"", "Unknown", "UPS", "Battery"}) {
    EXPECT_EQ(powerSourceState({mains(1, type), battery("Discharging")}), kBattery) << type;
  }
}

TEST(PowerSourceState, SuppliesOfADeviceSayNothingAboutTheMachine) {
  EXPECT_EQ(powerSourceState({ofDevice(mains(1)), battery("Discharging")}), kBattery);
  EXPECT_EQ(powerSourceState({ofDevice(battery("Discharging")), battery("Full")}), kAc);
  EXPECT_EQ(powerSourceState({mains(0), ofDevice(battery("Charging"))}), kBattery);
}

TEST(PowerSourceState, EmptyBaySaysNothing) {
  PowerSupply empty = battery("Discharging");
  empty.present = 0;
  EXPECT_EQ(powerSourceState({empty, battery("Full")}), kAc);
}

TEST(PowerSourceDescriptions, InternalBatteriesAreOneAndUpsFollow) {
  PowerSupply ups = battery("Discharging");
  ups.type = "UPS";
  ups.charge = {{80, 100}};
  PowerSupply second = battery("Full");
  second.present = 1;
  second.charge = {{4520, 5000}};
  const auto sources = describePowerSources({mains(1), battery("Charging"), second, ups});
  ASSERT_EQ(sources.size(), 2U);
  EXPECT_EQ(sources[0], (PowerSourceDescription{"InternalBattery", kAc, 90, 100}));
  EXPECT_EQ(sources[1], (PowerSourceDescription{"UPS", kBattery, 80, 100}));
}

TEST(PowerSourceDescriptions, UpsIsJudgedByItsOwnStatus) {
  PowerSupply ups = battery("Full");
  ups.type = "UPS";
  EXPECT_EQ(describePowerSources({battery("Discharging"), ups})[1].powerSourceState, kAc);
  ups.status = "";
  EXPECT_EQ(describePowerSources({battery("Discharging"), ups})[1].powerSourceState, std::nullopt);
}

}  // namespace
}  // namespace nimbo
