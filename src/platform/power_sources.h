// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/subscription.h"

namespace nimbo {

inline constexpr const char* kInternalBattery = "InternalBattery";
inline constexpr const char* kBatteryPower = "Battery Power";

/// What the system says about one power source. A value that is missing or of another type than the
/// one here is absent.
struct PowerSourceDescription {
  std::optional<std::string> type;                ///< "InternalBattery", or another kind such as "UPS"
  std::optional<std::string> powerSourceState;    ///< "Battery Power", "AC Power" or "Off Line"
  std::optional<std::int64_t> currentCapacity{};  ///< in the same unit as `maxCapacity`
  std::optional<std::int64_t> maxCapacity{};
  bool operator==(const PowerSourceDescription&) const = default;
};

/// Batteries and mains of the machine. Main thread only.
class PowerSources {
 public:
  virtual ~PowerSources() = default;

  /// Read anew at each call, in the system's order. Absent when the system does not answer; empty on
  /// a machine without any. A source that cannot be described has nothing set.
  [[nodiscard]] virtual std::optional<std::vector<PowerSourceDescription>> list() const = 0;

  /// Calls `changed` whenever the system reports that a source came, went or changed. Costs nothing
  /// while nobody observes; where the system cannot tell, it is never called.
  [[nodiscard]] virtual Subscription observe(std::function<void()> changed) = 0;
};

}  // namespace nimbo
