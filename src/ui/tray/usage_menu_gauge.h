// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/dates.h"
#include "platform/status_bar.h"
#include "platform/template_image.h"
#include "settings/settings.h"
#include "usage/usage_monitor.h"

namespace nimbo {

/// One bar of the AI item.
struct UsageMenuGauge {
  UsageProvider provider = UsageProvider::codex;
  std::vector<std::optional<UsageWindow>> windows;  ///< one entry: the window shown, or an empty one
  bool stale = false;                               ///< the reading is old or the last refresh failed
  std::string status;                               ///< the provider's status line
  bool operator==(const UsageMenuGauge&) const = default;
};

/// One for each provider that is switched on, in the user's order.
[[nodiscard]] std::vector<UsageMenuGauge> menuGauges(const Settings& settings, const UsageStates& states, UsageTime now,
                                                     const Dates& dates);

/// 0…1, absent without a figure.
[[nodiscard]] std::optional<double> gaugeFraction(const std::vector<std::optional<UsageWindow>>& windows,
                                                  std::size_t index, bool remaining);
[[nodiscard]] TemplateImage gaugeImage(const std::vector<UsageMenuGauge>& gauges, bool remaining);
[[nodiscard]] std::string gaugeTooltip(const std::vector<UsageMenuGauge>& gauges, bool remaining, UsageTime now);

/// The AI status item.
[[nodiscard]] StatusItemContent usageItemContent(const std::vector<UsageMenuGauge>& gauges, bool remaining,
                                                 UsageTime now);

}  // namespace nimbo
