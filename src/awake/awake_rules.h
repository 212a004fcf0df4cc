// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include "awake/battery_state.h"

namespace nimbo {

/// When a session may not run on battery.
struct AwakeRules {
  bool onlyOnPower = false;
  int batteryFloor = 20;  ///< percent at or below which a session ends; less than 1 for no floor
  bool operator==(const AwakeRules&) const = default;
};

/// The message that ends a session, or absent when it may run.
[[nodiscard]] std::optional<std::string> stopReason(const std::optional<BatteryState>& battery,
                                                    const AwakeRules& rules);

}  // namespace nimbo
