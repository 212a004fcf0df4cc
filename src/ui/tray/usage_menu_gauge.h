// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/clock.h"
#include "platform/status_bar.h"
#include "platform/template_image.h"
#include "settings/settings.h"
#include "usage/usage_monitor.h"

namespace nimbo {

/// One bar of the AI item.
struct UsageMenuGauge {
  UsageProvider provider = UsageProvider::codex;
  std::optional<UsageWindow> window;  ///< the limit shown
  bool stale = false;                 ///< the reading is old or the last refresh failed
  std::string status;                 ///< the provider's status line
  bool operator==(const UsageMenuGauge&) const = default;
};

/// One for each provider that is switched on, in the user's order.
[[nodiscard]] std::vector<UsageMenuGauge> menuGauges(const Settings& settings, const UsageStates& states, UsageTime now,
                                                     const Dates& dates);

/// The AI status item; bars tell what is left of the limits, or else what is used.
[[nodiscard]] StatusItemContent usageItemContent(const std::vector<UsageMenuGauge>& gauges, bool remaining,
                                                 UsageTime now);

}  // namespace nimbo
