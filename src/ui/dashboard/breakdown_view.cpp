// SPDX-License-Identifier: MIT
#include "ui/dashboard/breakdown_view.h"

#include <array>
#include <utility>

namespace nimbo {

std::vector<ChartBar> breakdownBars(const std::optional<MemorySnapshot>& snapshot, Size size) {
  const RoundedRect outline{{0, 0, size.width, size.height}, 4};
  std::vector<ChartBar> bars{{outline, ColorRole::quaternaryLabel, 0.25, {}}};
  if (!snapshot || snapshot->total == 0) return bars;

  const std::array parts{std::pair{snapshot->app, ColorRole::teal}, std::pair{snapshot->wired, ColorRole::indigo},
                         std::pair{snapshot->compressed, ColorRole::orange}};
  double x = 0;
  for (const auto& [bytes, color] : parts) {
    const double width = size.width * static_cast<double>(bytes) / static_cast<double>(snapshot->total);
    bars.push_back({{{x, 0, width, size.height}, 0}, color, 1, outline});
    x += width;
  }
  return bars;
}

}  // namespace nimbo
