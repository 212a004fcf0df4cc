// SPDX-License-Identifier: MIT
#include "platform/linux/machine/hwmon_temperature_sensor.h"

#include "platform/contracts/temperature_sensor_contract.h"
#include "support/services/temporary_tree.h"

namespace nimbo {
namespace {

TEST(CpuSensorName, DriversAndZonesOfCpusAreKnown) {
  for (const char* name :
       {"coretemp", "k10temp", "k8temp", "zenpower", "via_cputemp", "cpu_thermal", "cpu-thermal", "cpu0-thermal",
        "cpuss0_thermal", "CPU-therm", "x86_pkg_temp", "soc-thermal", "bigcore0_thermal", "littlecore-thermal"}) {
    EXPECT_TRUE(isCpuSensor(name)) << name;
  }
}

TEST(CpuSensorName, OtherDevicesAreNot) {
  for (const char* name : {"", "acpitz", "nvme", "drivetemp", "amdgpu", "nouveau", "iwlwifi_1", "BAT0", "thinkpad",
                           "pch_cannonlake", "gpu-thermal", "nct6798", "mycpu", "core"}) {
    EXPECT_FALSE(isCpuSensor(name)) << name;
  }
}

TEST(MillidegreesText, ThousandthsOfADegree) {
  EXPECT_EQ(parseMillidegrees("42500\n"), 42.5);
  EXPECT_EQ(parseMillidegrees("-5000\n"), -5.0);
}

TEST(MillidegreesText, CutAndForeignTextIsAbsent) {
  for (const char* text : {"", "\n", "42", "hot\n", "42 C\n"}) EXPECT_EQ(parseMillidegrees(text), std::nullopt) << text;
}

struct HwmonHost final : TemperatureSensorHost {
  void show(const Readings& readings) override {
    tree.write("class/hwmon/README", "");
    for (std::size_t index = 0; index < readings.size(); ++index) {
      const auto& celsius = readings[index];
      tree.write("class/hwmon/hwmon0/name", "coretemp\n");
      tree.write("class/hwmon/hwmon0/temp" + std::to_string(index + 1) + "_input",
                 celsius ? std::to_string(std::lround(*celsius * 1000)) + "\n" : "");
    }
  }
  [[nodiscard]] TemperatureSensor& sensor() override {
    if (!hwmon) hwmon.emplace(tree.path().string());
    return *hwmon;
  }

  TemporaryTree tree;
  std::optional<HwmonTemperatureSensor> hwmon;
};
INSTANTIATE_TEST_SUITE_P(Hwmon, TemperatureSensorContract, testing::Values(makeTemperatureSensorHost<HwmonHost>));

class HwmonTemperatureSensorTest : public testing::Test {
 protected:
  void chip(const std::string& folder, const std::string& name) {
    tree.write("class/hwmon/" + folder + "/name", name + "\n");
  }
  void sensor(const std::string& folder, const std::string& sensor, int millidegrees, const std::string& label = "") {
    const std::string base = "class/hwmon/" + folder + '/' + sensor;
    tree.write(base + "_input", std::to_string(millidegrees) + "\n");
    if (!label.empty()) tree.write(base + "_label", label + "\n");
  }
  void zone(const std::string& folder, const std::string& type, const std::string& temp) {
    tree.write("class/thermal/" + folder + "/type", type + "\n");
    tree.write("class/thermal/" + folder + "/temp", temp + "\n");
  }
  std::optional<double> temperature() { return HwmonTemperatureSensor(tree.path().string()).temperature(); }

  TemporaryTree tree;
};

TEST_F(HwmonTemperatureSensorTest, HottestSensorOfTheCpuWinsOverHotterDevices) {
  chip("hwmon0", "acpitz");
  sensor("hwmon0", "temp1", 99000);
  chip("hwmon1", "nvme");
  sensor("hwmon1", "temp1", 88850);
  chip("hwmon2", "coretemp");
  sensor("hwmon2", "temp1", 61000, "Package id 0");
  sensor("hwmon2", "temp2", 58000, "Core 0");
  sensor("hwmon2", "temp10", 63500, "Core 8");
  EXPECT_EQ(temperature(), 63.5);
}

TEST_F(HwmonTemperatureSensorTest, EverySocketCounts) {
  chip("hwmon0", "coretemp");
  sensor("hwmon0", "temp1", 51000);
  chip("hwmon1", "coretemp");
  sensor("hwmon1", "temp1", 57000);
  EXPECT_EQ(temperature(), 57.0);
}

TEST_F(HwmonTemperatureSensorTest, AmdControlValueYieldsToTheDie) {
  chip("hwmon0", "k10temp");
  sensor("hwmon0", "temp1", 87000, "Tctl");
  sensor("hwmon0", "temp2", 60000, "Tdie");
  sensor("hwmon0", "temp3", 58250, "Tccd1");
  EXPECT_EQ(temperature(), 60.0);
}

TEST_F(HwmonTemperatureSensorTest, AmdControlValueIsTheDieWhereThereIsNoOther) {
  chip("hwmon0", "k10temp");
  sensor("hwmon0", "temp1", 47125, "Tctl");
  sensor("hwmon0", "temp3", 40000, "Tccd1");
  EXPECT_EQ(temperature(), 47.125);
}

TEST_F(HwmonTemperatureSensorTest, FaultySensorIsLeftOut) {
  chip("hwmon0", "coretemp");
  sensor("hwmon0", "temp1", 90000);
  sensor("hwmon0", "temp2", 50000);
  tree.write("class/hwmon/hwmon0/temp1_fault", "1\n");
  tree.write("class/hwmon/hwmon0/temp2_fault", "0\n");
  EXPECT_EQ(temperature(), 50.0);
}

TEST_F(HwmonTemperatureSensorTest, OtherFilesOfTheChipAreNoReadings) {
  chip("hwmon0", "coretemp");
  sensor("hwmon0", "temp1", 50000);
  tree.write("class/hwmon/hwmon0/temp1_crit", "100000\n");
  tree.write("class/hwmon/hwmon0/temp1_max", "90000\n");
  tree.write("class/hwmon/hwmon0/fan1_input", "120000\n");
  EXPECT_EQ(temperature(), 50.0);
}

TEST_F(HwmonTemperatureSensorTest, ThermalZonesOfTheCpuStandInForMissingChips) {
  zone("thermal_zone0", "acpitz", "95000");
  zone("thermal_zone1", "x86_pkg_temp", "54000");
  zone("thermal_zone2", "cpu-thermal", "56000");
  zone("cooling_device0", "cpu-thermal", "90000");
  EXPECT_EQ(temperature(), 56.0);
}

TEST_F(HwmonTemperatureSensorTest, ThermalZonesStandInForChipsThatGiveNothing) {
  chip("hwmon0", "coretemp");
  sensor("hwmon0", "temp1", 0);
  zone("thermal_zone0", "x86_pkg_temp", "54000");
  EXPECT_EQ(temperature(), 54.0);
}

TEST_F(HwmonTemperatureSensorTest, ChipsComeBeforeHotterThermalZones) {
  chip("hwmon0", "cpu_thermal");
  sensor("hwmon0", "temp1", 48000);
  zone("thermal_zone0", "cpu-thermal", "60000");
  EXPECT_EQ(temperature(), 48.0);
}

TEST(RealTemperatureSensor, ReadingOfThisMachineIsPlausibleOrAbsent) {
  const auto celsius = HwmonTemperatureSensor().temperature();
  if (celsius) {
    EXPECT_GE(*celsius, 1.0);
    EXPECT_LE(*celsius, 125.0);
  }
}

}  // namespace
}  // namespace nimbo
