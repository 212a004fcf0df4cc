// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <vector>

#include "system/system_readings.h"
#include "ui/dashboard/dashboard_content.h"

namespace nimbo {

// The bars of a chart of that size, in drawing order.

/// Recent samples (0…1, oldest first): 40 slots, the newest sample in the rightmost one.
[[nodiscard]] std::vector<ChartBar> historyBars(const std::vector<double>& history, ColorRole tint, Size size);

/// Physical memory as one bar: app, wired and compressed over a background that stands for cached and
/// free memory.
[[nodiscard]] std::vector<ChartBar> breakdownBars(const std::optional<MemorySnapshot>& snapshot, Size size);

/// How much is left of an allowance (0…1), filled from the left.
[[nodiscard]] std::vector<ChartBar> allowanceBars(double fraction, ColorRole tint, Size size);

}  // namespace nimbo
