// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <vector>

#include "system/memory_snapshot.h"
#include "ui/dashboard/chart_bar.h"

namespace nimbo {

/// Physical memory as one bar, in drawing order: app, wired and compressed over a background that
/// stands for cached and free memory.
[[nodiscard]] std::vector<ChartBar> breakdownBars(const std::optional<MemorySnapshot>& snapshot, Size size);

}  // namespace nimbo
