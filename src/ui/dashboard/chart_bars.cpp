// SPDX-License-Identifier: MIT
#include "ui/dashboard/chart_bars.h"

#include <algorithm>
#include <array>
#include <utility>

namespace nimbo {
namespace {

constexpr std::size_t kSlots = 40;
constexpr double kGap = 3;
constexpr double kRadius = 2;
constexpr double kMinimumHeight = 3;  // so that a sample of zero is still seen

}  // namespace

std::vector<ChartBar> historyBars(const std::vector<double>& history, ColorRole tint, Size size) {
  const double width = (size.width - kGap * (kSlots - 1)) / kSlots;
  const std::size_t used = std::min(history.size(), kSlots);
  const std::size_t firstUsed = kSlots - used;
  const std::size_t firstSample = history.size() - used;

  std::vector<ChartBar> bars;
  bars.reserve(kSlots + used);
  for (std::size_t slot = 0; slot < kSlots; ++slot) {
    const double x = (width + kGap) * static_cast<double>(slot);
    bars.push_back({{{x, 0, width, size.height}, kRadius}, ColorRole::quaternaryLabel, 0.13, {}});
    if (slot < firstUsed) continue;
    const double height = std::max(size.height * history[firstSample + slot - firstUsed], kMinimumHeight);
    const double alpha = slot == kSlots - 1 ? 1.0 : 0.65;
    bars.push_back({{{x, size.height - height, width, height}, kRadius}, tint, alpha, {}});
  }
  return bars;
}

std::vector<ChartBar> breakdownBars(const std::optional<MemorySnapshot>& snapshot, Size size) {
  const RoundedRect outline{{0, 0, size.width, size.height}, 4};
  std::vector<ChartBar> bars{{outline, ColorRole::quaternaryLabel, 0.25, {}}};
  if (!snapshot || snapshot->total == 0) return bars;

  const std::array parts{std::pair{snapshot->app, ColorRole::teal}, std::pair{snapshot->wired, ColorRole::indigo},
                         std::pair{snapshot->compressed, ColorRole::orangeFill}};
  double x = 0;
  for (const auto& [bytes, color] : parts) {
    const double width = size.width * static_cast<double>(bytes) / static_cast<double>(snapshot->total);
    bars.push_back({{{x, 0, width, size.height}, 0}, color, 1, outline});
    x += width;
  }
  return bars;
}

std::vector<ChartBar> allowanceBars(double fraction, ColorRole tint, Size size) {
  const RoundedRect track{{0, 0, size.width, size.height}, 4};
  std::vector<ChartBar> bars{{track, ColorRole::quaternaryLabel}};
  if (fraction > 0) bars.push_back({{{0, 0, size.width * fraction, size.height}, 0}, tint, {}, track});
  return bars;
}

}  // namespace nimbo
