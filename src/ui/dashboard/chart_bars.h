// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <vector>

#include "platform/template_image.h"
#include "ui/dashboard/dashboard_content.h"

namespace nimbo {

/// One filled shape of a chart, in points from the chart's top left corner.
struct ChartBar {
  RoundedRect shape;
  ColorRole color = ColorRole::label;
  double alpha = 1;  ///< takes the place of the colour's own
  std::optional<RoundedRect> clip;
  bool operator==(const ChartBar&) const = default;
};

// The bars of a chart of that size, in drawing order.

/// Recent samples (0…1, oldest first): 40 slots, the newest sample in the rightmost one.
[[nodiscard]] std::vector<ChartBar> historyBars(const std::vector<double>& history, ColorRole tint, Size size);

/// Physical memory as one bar: app, wired and compressed over a background that stands for cached and
/// free memory.
[[nodiscard]] std::vector<ChartBar> breakdownBars(const std::optional<MemorySnapshot>& snapshot, Size size);

}  // namespace nimbo
