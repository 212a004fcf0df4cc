// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

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

}  // namespace nimbo
