// SPDX-License-Identifier: MIT
#include "awake/awake_rules.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace nimbo {
namespace {

std::optional<int> percentOf(const PowerSourceDescription& source) {
  if (!source.currentCapacity || !source.maxCapacity || *source.maxCapacity < 1) return std::nullopt;
  // Multiplied first: 57 of 100 is 57, where 0.57 times 100 would be cut to 56.
  const double percent = static_cast<double>(*source.currentCapacity) * 100 / static_cast<double>(*source.maxCapacity);
  return static_cast<int>(std::clamp(std::trunc(percent), 0.0, 100.0));
}

}  // namespace

std::optional<BatteryState> readBattery(const PowerSources& sources) {
  const auto list = sources.list();
  if (!list) return std::nullopt;
  for (const auto& source : *list) {
    if (source.type != kInternalBattery || !source.powerSourceState) continue;
    return BatteryState{source.powerSourceState == kBatteryPower, percentOf(source)};
  }
  return std::nullopt;
}

std::optional<std::string> stopReason(const std::optional<BatteryState>& battery, const AwakeRules& rules,
                                      const Wording& wording) {
  if (!battery || !battery->onBattery) return std::nullopt;
  if (rules.onlyOnPower) return fmt::format("Connect the charger to keep this {} awake.", wording.computer);
  if (rules.batteryFloor < 1 || !battery->percent || *battery->percent > rules.batteryFloor) return std::nullopt;
  return fmt::format("Session stopped: battery is at or below {}%.", rules.batteryFloor);
}

}  // namespace nimbo
