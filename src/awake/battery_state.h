// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>

#include "platform/power_sources.h"

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

using BatteryReader = std::function<std::optional<BatteryState>()>;

}  // namespace nimbo
