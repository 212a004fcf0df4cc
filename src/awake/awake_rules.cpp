// SPDX-License-Identifier: MIT
#include "awake/awake_rules.h"

namespace nimbo {

std::optional<std::string> stopReason(const std::optional<BatteryState>& battery, const AwakeRules& rules) {
  if (!battery || !battery->onBattery) return std::nullopt;
  if (rules.onlyOnPower) return "Connect the charger to keep this Mac awake.";
  if (rules.batteryFloor < 1 || !battery->percent || *battery->percent > rules.batteryFloor) return std::nullopt;
  return "Session stopped: battery is at or below " + std::to_string(rules.batteryFloor) + "%.";
}

}  // namespace nimbo
