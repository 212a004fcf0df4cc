// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "platform/widget_center.h"
#include "usage/usage_model.h"

namespace nimbo {

/// What the program shares with its widgets: one JSON object whose keys are the names of the fields, in
/// their order. What is absent is left out; dates are numbers of seconds since 2001, UTC.
struct WidgetSnapshot {
  using Time = std::chrono::system_clock::time_point;

  Time date{};                          ///< when it was built
  std::optional<double> temperature{};  ///< °C, the last one accepted
  std::optional<Time> temperatureDate{};
  bool temperatureEnabled = false;  ///< whether the user watches the temperature
  UsageState codex{};
  UsageState claude{};
  bool operator==(const WidgetSnapshot&) const = default;

  [[nodiscard]] std::string encoded() const;

  /// Replaces "usage-snapshot.json" in the group's folder. False when there is no group, no folder for
  /// it, or the file could not be replaced. Waits for the disk. Any thread.
  [[nodiscard]] bool write(const WidgetCenter& to, const std::optional<std::string>& appGroup) const;
};

}  // namespace nimbo
