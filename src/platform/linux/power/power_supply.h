// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/power_sources.h"

namespace nimbo {

/// One power supply as the kernel shows it (Documentation/ABI/testing/sysfs-class-power). A text that
/// it does not give is empty, a number that it does not give or that makes no sense is absent.
struct PowerSupply {
  struct Charge {
    std::int64_t now = 0;
    std::int64_t full = 0;
  };

  std::string type = {};                     ///< "Battery", "UPS", "Mains", "USB", …
  std::string scope = {};                    ///< "Device" for one that feeds a mouse or a headset only
  std::optional<std::int64_t> online = {};   ///< of mains: 0 while nothing comes from it
  std::optional<std::int64_t> present = {};  ///< of batteries: 0 for an empty bay
  std::string status = {};                   ///< of batteries and UPSs: "Charging", "Discharging", …
  std::optional<Charge> charge = {};         ///< in a unit of its own
  std::optional<Charge> energy = {};         ///< in µWh; only where batteries are weighed against each other
};

/// A battery that runs the machine itself.
[[nodiscard]] bool isInternalBattery(const PowerSupply& supply);

/// What the machine runs on, by all of its supplies: "AC Power" or "Battery Power"; absent when
/// nothing tells.
[[nodiscard]] std::optional<std::string> powerSourceState(const std::vector<PowerSupply>& supplies);

/// The internal batteries among the supplies, which are one to the user, then the UPSs.
[[nodiscard]] std::vector<PowerSourceDescription> describePowerSources(const std::vector<PowerSupply>& supplies);

}  // namespace nimbo
