// SPDX-License-Identifier: MIT
#pragma once

#include <systemd/sd-event.h>

#include <string>

#include "platform/power_sources.h"

namespace nimbo {

/// The kernel's power supplies, and udev's notice when one of them changes. Batteries of mice, headsets
/// and the like are left out and never asked for their charge, which may wake them.
class SysfsPowerSources final : public PowerSources {
 public:
  /// `event` outlives it and its subscriptions.
  explicit SysfsPowerSources(sd_event* event, const std::string& sysRoot = "/sys");

  [[nodiscard]] std::optional<std::vector<PowerSourceDescription>> list() const override;
  [[nodiscard]] Subscription observe(std::function<void()> changed) override;

 private:
  sd_event* const event_;
  const std::string folder_;
};

}  // namespace nimbo
