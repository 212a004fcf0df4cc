// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>

#include "awake/awake_manager.h"
#include "platform/clock.h"
#include "platform/wording.h"
#include "settings/settings.h"
#include "system/process_scan.h"
#include "system/system_readings.h"
#include "ui/dashboard/dashboard_content.h"
#include "usage/usage_monitor.h"

namespace nimbo {

/// Where the dashboard gets all that it shows, read again for every content. Outlives the dashboard.
struct DashboardSources {
  Settings& settings;
  const SystemReadings& readings;
  AwakeManager& awake;
  const UsageStates& usage;
  const Clock& clock;
  const Dates& dates;
  const Wording& wording;
};

inline constexpr std::size_t kCollapsedProcessLimit = 3;
inline constexpr std::size_t kProcessLimitStep = 10;

/// What the resources page shows besides.
struct ProcessView {
  ProcessScan scan = {};                       ///< empty before the first; any has this program at least
  std::size_t limit = kCollapsedProcessLimit;  ///< rows shown
  bool activityMonitorEnabled = true;
};

/// Points, without the footer below every page.
[[nodiscard]] double resourcesHeight(const DashboardSources& sources, const ProcessView& processes);

[[nodiscard]] ResourcesContent resourcesContent(const DashboardSources& sources, const ProcessView& processes);

/// Of the button that opens the provider's own page.
[[nodiscard]] std::string linkIdentifier(UsageProvider provider);

/// The AI page: one card for each provider with its limit windows.
[[nodiscard]] UsageContent usageContent(const DashboardSources& sources);

}  // namespace nimbo
