// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "ui/dashboard/chart_bar.h"

namespace nimbo {

/// The sparkline of recent samples (0…1, oldest first), in drawing order: 40 slots, the newest
/// sample in the rightmost one.
[[nodiscard]] std::vector<ChartBar> historyBars(const std::vector<double>& history, ColorRole tint, Size size);

}  // namespace nimbo
