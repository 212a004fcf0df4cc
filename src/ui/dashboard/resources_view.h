// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "system/memory_snapshot.h"
#include "system/process_scan.h"
#include "ui/dashboard/dashboard_content.h"
#include "ui/dashboard/process_list_view.h"

namespace nimbo {

/// One tick's readings and the history that they end.
struct ResourcesSample {
  std::optional<MemorySnapshot> memory;
  std::optional<double> cpu;  ///< 0…1
  std::vector<double> memoryHistory;
  std::vector<double> cpuHistory;
  std::chrono::seconds interval{5};
  bool memoryFailed = false;
};

/// What the dashboard's resources page knows.
struct ResourcesPage {
  bool visible = false;
  bool memoryEnabled = true;
  bool cpuVisible = false;
  bool temperatureVisible = false;
  bool activityMonitorEnabled = true;
  std::optional<std::chrono::seconds> refreshInterval;  ///< absent before settings were applied
  std::optional<ResourcesSample> sample;                ///< absent before the first one
  std::string temperature;                              ///< the finished line
  ProcessScan processScan;
  std::size_t processLimit = kCollapsedProcessLimit;  ///< rows shown
};

/// The line for a temperature in degrees Celsius or for none.
[[nodiscard]] std::string temperatureLine(std::optional<double> celsius);

/// Points, without the footer below every page.
[[nodiscard]] double resourcesPageHeight(const ResourcesPage& page);

/// Sets the fields of `content` that belong to the page, hidden ones included.
void fillResourcesPage(DashboardContent& content, const ResourcesPage& page);

}  // namespace nimbo
