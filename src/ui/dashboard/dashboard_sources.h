// SPDX-License-Identifier: MIT
#pragma once

#include "awake/awake_manager.h"
#include "platform/clock.h"
#include "settings/settings.h"
#include "system/system_readings.h"
#include "usage/usage_monitor.h"

namespace nimbo {

/// Where the dashboard gets all that it shows, read again for every content. Outlives the dashboard.
struct DashboardSources {
  Settings& settings;
  const SystemReadings& readings;
  const AwakeManager& awake;
  const UsageStates& usage;
  const Clock& clock;
  const Dates& dates;
};

}  // namespace nimbo
