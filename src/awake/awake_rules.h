// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include "platform/power_sources.h"
#include "platform/wording.h"

namespace nimbo {

/// The internal battery at one moment.
struct BatteryState {
  bool onBattery = false;
  std::optional<int> percent{};  ///< charge, 0…100; absent when the capacities are missing or unusable
  bool operator==(const BatteryState&) const = default;
};

/// The first internal battery in the system's order. Absent on a machine without one, and when the
/// system does not tell.
[[nodiscard]] std::optional<BatteryState> readBattery(const PowerSources& sources);

/// When a session may not run on battery.
struct AwakeRules {
  bool onlyOnPower = false;
  int batteryFloor = 20;  ///< percent at or below which a session ends; less than 1 for no floor
  bool operator==(const AwakeRules&) const = default;
};

/// The message that ends a session, or absent when it may run.
[[nodiscard]] std::optional<std::string> stopReason(const std::optional<BatteryState>& battery, const AwakeRules& rules,
                                                    const Wording& wording);

}  // namespace nimbo
