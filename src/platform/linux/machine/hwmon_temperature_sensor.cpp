// SPDX-License-Identifier: MIT
#include "platform/linux/machine/hwmon_temperature_sensor.h"

#include <algorithm>
#include <array>

#include "base/text.h"
#include "platform/linux/machine/proc_file.h"

namespace nimbo {

bool isCpuSensor(std::string_view name) {
  constexpr std::array<std::string_view, 7> kNames = {"coretemp",    "k10temp",      "k8temp",     "zenpower",
                                                      "via_cputemp", "x86_pkg_temp", "soc_thermal"};
  // cpu-thermal, cpu0_thermal, cpuss-0, CPU-therm; the clusters of big.LITTLE chips.
  constexpr std::array<std::string_view, 3> kPrefixes = {"cpu", "bigcore", "littlecore"};
  std::string key = lowerCased(name);
  std::replace(key.begin(), key.end(), '-', '_');
  return std::find(kNames.begin(), kNames.end(), key) != kNames.end() ||
         std::any_of(kPrefixes.begin(), kPrefixes.end(),
                     [&](std::string_view prefix) { return key.starts_with(prefix); });
}

std::optional<double> parseMillidegrees(std::string_view text) {
  auto line = takeLine(text);
  const auto value = line ? parseDecimal(*line) : std::nullopt;
  return value ? std::optional(*value / 1000) : std::nullopt;
}

HwmonTemperatureSensor::HwmonTemperatureSensor(const std::string& sysRoot) {
  const std::string chips = sysRoot + "/class/hwmon/";
  visitFolder(chips, [&](std::string_view name) {
    const std::string chip = chips + std::string(name);
    if (isCpuSensor(readAttributeLine(chip + "/name"))) {
      for (Input& input : chipInputs(chip)) chips_.push_back(std::move(input));
    }
  });
  const std::string zones = sysRoot + "/class/thermal/";
  visitFolder(zones, [&](std::string_view name) {
    const std::string zone = zones + std::string(name);
    if (name.starts_with("thermal_zone") && isCpuSensor(readAttributeLine(zone + "/type"))) {
      zones_.push_back({zone + "/temp", ""});
    }
  });
}

std::optional<double> HwmonTemperatureSensor::temperature() {
  const auto byChips = hottest(chips_);
  return byChips ? byChips : hottest(zones_);
}

std::vector<HwmonTemperatureSensor::Input> HwmonTemperatureSensor::chipInputs(const std::string& chip) {
  constexpr std::string_view kSuffix = "_input";
  std::vector<Input> inputs;
  std::optional<Input> control;
  bool hasDie = false;
  visitFolder(chip, [&](std::string_view name) {
    if (!name.starts_with("temp") || !name.ends_with(kSuffix)) return;
    const std::string base = chip + '/' + std::string(name.substr(0, name.size() - kSuffix.size()));
    const std::string label = readAttributeLine(base + "_label");
    Input input{base + "_input", base + "_fault"};
    hasDie = hasDie || label == "Tdie";
    if (label == "Tctl") {
      control = std::move(input);
    } else {
      inputs.push_back(std::move(input));
    }
  });
  // AMD's Tctl steers the fan and is up to 27 degrees above the die on some models, which then have
  // a Tdie beside it (Documentation/hwmon/k10temp.rst).
  if (control && !hasDie) inputs.push_back(std::move(*control));
  return inputs;
}

std::optional<double> HwmonTemperatureSensor::hottest(const std::vector<Input>& inputs) {
  HottestTemperature hottest;
  for (const Input& input : inputs) {
    const bool faulty = !input.fault.empty() && readAttributeLine(input.fault) == "1";
    const auto text = faulty ? std::nullopt : readAttribute(input.value);
    if (text) hottest.add(parseMillidegrees(*text));
  }
  return hottest.value();
}

}  // namespace nimbo
