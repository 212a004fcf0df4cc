// SPDX-License-Identifier: MIT
#include "platform/linux/power/sysfs_power_sources.h"

#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <map>

#include "platform/posix/files/unique_fd.h"
#include "support/services/temporary_tree.h"

namespace nimbo {
namespace {

using Attributes = std::map<std::string, std::string>;
using Description = PowerSourceDescription;
using Descriptions = std::vector<Description>;

class SysfsPowerSourcesTest : public testing::Test {
 protected:
  /// Writes a supply as the kernel shows it, each value on a line of its own.
  void supply(const std::string& name, const Attributes& attributes) const {
    for (const auto& [attribute, value] : attributes) {
      tree.write("class/power_supply/" + name + '/' + attribute, value + '\n');
    }
  }
  [[nodiscard]] std::optional<Descriptions> list() const {
    return SysfsPowerSources(nullptr, tree.path().string()).list();
  }
  /// "now of maximum" of the only battery, whose state must be told; "absent" without capacities.
  [[nodiscard]] std::string capacity() const {
    const auto sources = list();
    if (!sources || sources->size() != 1) return "not one battery";
    const Description& battery = sources->front();
    EXPECT_EQ(battery.powerSourceState, "Battery Power");
    EXPECT_EQ(battery.currentCapacity.has_value(), battery.maxCapacity.has_value());
    if (!battery.currentCapacity || !battery.maxCapacity) return "absent";
    return std::to_string(*battery.currentCapacity) + " of " + std::to_string(*battery.maxCapacity);
  }

  TemporaryTree tree;
};

const Attributes kOffline{{"type", "Mains"}, {"online", "0"}};
const Attributes kOnline{{"type", "Mains"}, {"online", "1"}};
const Attributes kDischarging{{"type", "Battery"}, {"present", "1"}, {"status", "Discharging"}};

// Supplies as kernels 5.10 to 6.12 show them on such machines.

TEST_F(SysfsPowerSourcesTest, KernelWithoutPowerSuppliesHasNone) { EXPECT_EQ(list(), Descriptions()); }

TEST_F(SysfsPowerSourcesTest, DesktopWithAnEmptyFolderHasNone) {
  std::filesystem::create_directories(tree.path() / "class/power_supply");
  EXPECT_EQ(list(), Descriptions());
}

TEST_F(SysfsPowerSourcesTest, FolderThatCannotBeListedIsAbsent) {
  tree.write("class/power_supply", "no folder");
  EXPECT_EQ(list(), std::nullopt);
}

TEST_F(SysfsPowerSourcesTest, ThinkPadWithTwoBatteriesOnBattery) {
  supply("AC", kOffline);
  supply("BAT1", {{"type", "Battery"},
                  {"present", "1"},
                  {"status", "Discharging"},
                  {"capacity", "71"},
                  {"energy_now", "16930000"},
                  {"energy_full", "23800000"}});
  supply("BAT0", {{"type", "Battery"},
                  {"present", "1"},
                  {"status", "Not charging"},
                  {"capacity", "98"},
                  {"energy_now", "22500000"},
                  {"energy_full", "22940000"}});
  EXPECT_EQ(list(), (Descriptions{{"InternalBattery", "Battery Power", 39430000, 46740000}}));
}

TEST_F(SysfsPowerSourcesTest, LargeFullBatteryOutweighsASmallEmptyOneByChargeAndVoltage) {
  const auto battery = [this](const char* name, Attributes more) {
    more.insert(kDischarging.begin(), kDischarging.end());
    supply(name, more);
  };
  battery("BAT0",
          {{"capacity", "10"}, {"charge_now", "200000"}, {"charge_full", "2000000"}, {"voltage_now", "7500000"}});
  battery("BAT1", {{"capacity", "90"}, {"energy_now", "40500000"}, {"energy_full", "45000000"}});
  EXPECT_EQ(capacity(), "42000000 of 60000000");
  battery("BAT0", {{"voltage_min_design", "15000000"}});
  EXPECT_EQ(capacity(), "43500000 of 75000000");
}

TEST_F(SysfsPowerSourcesTest, BatteriesThatTellNoEnergyCountAlike) {
  supply("AC", kOffline);
  supply("BAT0", {{"type", "Battery"}, {"capacity", "15"}, {"energy_now", "3000000"}, {"energy_full", "20000000"}});
  supply("BAT1", {{"type", "Battery"}, {"charge_now", "95"}, {"charge_full", "100"}});
  EXPECT_EQ(capacity(), "110 of 200");
  supply("BAT2", {{"type", "Battery"}});
  EXPECT_EQ(capacity(), "110 of 200");
}

TEST_F(SysfsPowerSourcesTest, ThinkPadWithAnEmptyBayShowsTheOtherBattery) {
  supply("AC", kOnline);
  supply("BAT0", {{"type", "Battery"}, {"present", "0"}, {"status", "Unknown"}});
  supply("BAT1", {{"type", "Battery"}, {"present", "1"}, {"status", "Charging"}, {"capacity", "40"}});
  EXPECT_EQ(list(), (Descriptions{{"InternalBattery", "AC Power", 40, 100}}));
}

TEST_F(SysfsPowerSourcesTest, DellOnItsSecondUsbPort) {
  supply("AC", kOffline);
  supply("BAT0", {{"type", "Battery"},
                  {"present", "1"},
                  {"status", "Not charging"},
                  {"capacity", "80"},
                  {"charge_now", "5012000"},
                  {"charge_full", "6265000"}});
  supply("ucsi-source-psy-USBC000:001", {{"type", "USB"}, {"usb_type", "[C] PD PD_PPS"}, {"online", "0"}});
  supply("ucsi-source-psy-USBC000:002", {{"type", "USB"}, {"usb_type", "C [PD] PD_PPS"}, {"online", "1"}});
  EXPECT_EQ(list(), (Descriptions{{"InternalBattery", "AC Power", 80, 100}}));
}

TEST_F(SysfsPowerSourcesTest, DellThatFeedsAPhoneIsOnBattery) {
  supply("AC", kOffline);
  supply("BAT0", {{"type", "Battery"}, {"present", "1"}, {"status", "Discharging"}, {"capacity", "64"}});
  supply("ucsi-source-psy-USBC000:001", {{"type", "USB"}, {"scope", "Device"}, {"online", "1"}});
  EXPECT_EQ(list(), (Descriptions{{"InternalBattery", "Battery Power", 64, 100}}));
}

TEST_F(SysfsPowerSourcesTest, MacBookUnderLinux) {
  supply("ADP1", kOnline);
  supply("BAT0", {{"type", "Battery"},
                  {"present", "1"},
                  {"status", "Full"},
                  {"capacity", "100"},
                  {"charge_now", "6012000"},
                  {"charge_full", "5980000"}});
  EXPECT_EQ(list(), (Descriptions{{"InternalBattery", "AC Power", 100, 100}}));
}

TEST_F(SysfsPowerSourcesTest, ArmMacBookWithNamesOfItsOwn) {
  supply("macsmc-ac", kOffline);
  supply("macsmc-battery",
         {{"type", "Battery"}, {"scope", "System"}, {"present", "1"}, {"status", "Discharging"}, {"capacity", "55"}});
  EXPECT_EQ(list(), (Descriptions{{"InternalBattery", "Battery Power", 55, 100}}));
}

TEST_F(SysfsPowerSourcesTest, MouseOfADesktopIsLeftOut) {
  supply("hidpp_battery_0",
         {{"type", "Battery"}, {"scope", "Device"}, {"online", "1"}, {"status", "Discharging"}, {"capacity", "15"}});
  EXPECT_EQ(list(), Descriptions());
}

TEST_F(SysfsPowerSourcesTest, ChargeOfAMouseIsNotEvenAskedFor) {
  supply("hidpp_battery_0",
         {{"type", "Battery"}, {"scope", "Device"}, {"present", "1"}, {"status", "Full"}, {"capacity", "15"}});
  const UniqueFd watch(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
  for (const char* name : {"present", "status", "capacity"}) {
    const auto file = tree.path() / "class/power_supply/hidpp_battery_0" / name;
    ASSERT_GE(::inotify_add_watch(watch.get(), file.c_str(), IN_OPEN), 0);
  }
  EXPECT_EQ(list(), Descriptions());
  std::array<char, 4096> events;
  EXPECT_LT(::read(watch.get(), events.data(), events.size()), 0) << "an attribute was opened";
}

TEST_F(SysfsPowerSourcesTest, UpsIsNoInternalBattery) {
  supply("ups_hid", {{"type", "UPS"}, {"status", "Discharging"}, {"capacity", "90"}});
  EXPECT_EQ(list(), (Descriptions{{"UPS", "Battery Power", 90, 100}}));
}

TEST_F(SysfsPowerSourcesTest, BatteryAloneIsJudgedByItsStatus) {
  supply("battery", {{"type", "Battery"}, {"status", "Charging"}, {"capacity", "30"}});
  EXPECT_EQ(list(), (Descriptions{{"InternalBattery", "AC Power", 30, 100}}));
  supply("battery", {{"status", "Discharging"}});
  EXPECT_EQ(list(), (Descriptions{{"InternalBattery", "Battery Power", 30, 100}}));
}

TEST_F(SysfsPowerSourcesTest, CapacityIsWhatTheDesktopShows) {
  supply("BAT0", kDischarging);
  supply("BAT0", {{"capacity", "57"}, {"energy_now", "50"}, {"energy_full", "100"}});
  EXPECT_EQ(capacity(), "57 of 100");
}

TEST_F(SysfsPowerSourcesTest, EnergyStandsInForAMissingCapacity) {
  supply("BAT0", kDischarging);
  supply("BAT0", {{"energy_now", "29420000"}, {"energy_full", "50220000"}, {"charge_now", "1"}, {"charge_full", "9"}});
  EXPECT_EQ(capacity(), "29420000 of 50220000");
}

TEST_F(SysfsPowerSourcesTest, ChargeStandsInForMissingEnergy) {
  supply("BAT0", kDischarging);
  supply("BAT0", {{"charge_now", "2100000"}, {"charge_full", "4200000"}, {"energy_now", "7"}});
  EXPECT_EQ(capacity(), "2100000 of 4200000");
}

TEST_F(SysfsPowerSourcesTest, NonsenseInCapacityIsPassedOver) {
  supply("BAT0", kDischarging);
  supply("BAT0", {{"energy_now", "30"}, {"energy_full", "60"}});
  for (const char* text : {"101", "255", "-1", "57%", "fifty", "", " 57", "5.5", "0x10", "99999999999999999999"}) {
    supply("BAT0", {{"capacity", text}});
    EXPECT_EQ(capacity(), "30 of 60") << text;
  }
}

TEST_F(SysfsPowerSourcesTest, UnusableCapacitiesAreAbsentAndTheStateStays) {
  supply("BAT0", kDischarging);
  EXPECT_EQ(capacity(), "absent");
  supply("BAT0", {{"capacity", "N/A"}, {"energy_now", "30"}, {"energy_full", "0"}, {"charge_full", "60"}});
  EXPECT_EQ(capacity(), "absent");
  supply("BAT0", {{"charge_now", "18446744073709551615"}});
  EXPECT_EQ(capacity(), "absent");
}

TEST_F(SysfsPowerSourcesTest, LastLineNeedsNoNewline) {
  supply("BAT0", kDischarging);
  tree.write("class/power_supply/BAT0/capacity", "57");
  EXPECT_EQ(capacity(), "57 of 100");
}

TEST_F(SysfsPowerSourcesTest, AttributeThatCannotBeReadCountsAsMissing) {
  supply("BAT0", kDischarging);
  for (const char* name : {"capacity", "scope", "energy_now"}) {
    std::filesystem::create_directories(tree.path() / "class/power_supply/BAT0" / name);
  }
  EXPECT_EQ(capacity(), "absent");
}

TEST_F(SysfsPowerSourcesTest, NonsenseInOnlineMakesTheSupplyUnknown) {
  supply("AC", {{"type", "Mains"}, {"online", "yes"}});
  supply("BAT0", {{"type", "Battery"}, {"status", "Full"}, {"capacity", "100"}});
  EXPECT_EQ(list(), (Descriptions{{"InternalBattery", "AC Power", 100, 100}}));
}

TEST_F(SysfsPowerSourcesTest, BatteryWithoutStatusHasNoStateUnlessMainsTell) {
  supply("BAT0", {{"type", "Battery"}, {"capacity", "50"}});
  EXPECT_EQ(list(), (Descriptions{{"InternalBattery", std::nullopt, 50, 100}}));
  supply("AC", kOffline);
  EXPECT_EQ(list(), (Descriptions{{"InternalBattery", "Battery Power", 50, 100}}));
}

TEST_F(SysfsPowerSourcesTest, SupplyWithoutATypeIsNone) {
  supply("BAT0", {{"status", "Discharging"}, {"capacity", "50"}});
  supply("BAT1", {{"type", "battery"}, {"status", "Discharging"}, {"capacity", "50"}});
  tree.write("class/power_supply/README", "");
  EXPECT_EQ(list(), Descriptions());
}

TEST_F(SysfsPowerSourcesTest, EveryListIsReadAnew) {
  const SysfsPowerSources sources(nullptr, tree.path().string());
  EXPECT_EQ(sources.list(), Descriptions());
  supply("AC", kOffline);
  supply("BAT0", kDischarging);
  EXPECT_EQ(sources.list(), (Descriptions{{"InternalBattery", "Battery Power"}}));
  supply("AC", kOnline);
  EXPECT_EQ(sources.list(), (Descriptions{{"InternalBattery", "AC Power"}}));
}

TEST_F(SysfsPowerSourcesTest, SupplyMayBeALinkAsInTheRealFolder) {
  tree.write("devices/BAT0/type", "Battery\n");
  tree.write("devices/BAT0/status", "Discharging\n");
  std::filesystem::create_directories(tree.path() / "class/power_supply");
  std::filesystem::create_directory_symlink("../../devices/BAT0", tree.path() / "class/power_supply/BAT0");
  EXPECT_EQ(list(), (Descriptions{{"InternalBattery", "Battery Power"}}));
}

TEST(RealPowerSources, ListOfThisMachineMakesSense) {
  const auto sources = SysfsPowerSources(nullptr).list();
  ASSERT_TRUE(sources);
  for (const Description& source : *sources) {
    EXPECT_TRUE(source.type == "InternalBattery" || source.type == "UPS");
    EXPECT_EQ(source.currentCapacity.has_value(), source.maxCapacity.has_value());
  }
}

}  // namespace
}  // namespace nimbo
