// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>

#include "system/process_scan.h"
#include "system/system_readings.h"
#include "ui/dashboard/dashboard_content.h"

namespace nimbo {

inline constexpr std::size_t kCollapsedProcessLimit = 3;

/// What the resources page is made of.
struct ResourcesView {
  const SystemReadings& readings;
  const ProcessScan& processes;
  std::chrono::seconds refreshInterval{5};
  bool visible = true;  ///< all of it is hidden on the other pages
  bool memoryEnabled = true;
  bool cpuEnabled = false;
  bool temperatureEnabled = false;
  bool activityMonitorEnabled = true;
  std::size_t processLimit = kCollapsedProcessLimit;  ///< rows shown
};

/// Points, without the footer below every page.
[[nodiscard]] double resourcesHeight(const ResourcesView& view);

/// Sets the fields of `content` that belong to the page, hidden ones included.
void fillResources(DashboardContent& content, const ResourcesView& view);

}  // namespace nimbo
