// SPDX-License-Identifier: MIT
#include "ui/tray/usage_menu_gauge.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "usage/usage_status.h"

namespace nimbo {
namespace {

constexpr double kTrackAlpha = 0.18;
constexpr double kStaleAlpha = 0.4;

bool isShortWindow(const UsageWindow& window) { return window.title == "5-hour" || window.title == "Session"; }
bool isWeeklyWindow(const UsageWindow& window) { return window.title == "Weekly"; }

std::optional<UsageWindow> selectedWindow(const UsageState& state, bool shortWindow) {
  if (!state.enabled || !state.snapshot) return std::nullopt;
  const auto& windows = state.snapshot->windows;
  const auto found = std::find_if(windows.begin(), windows.end(), shortWindow ? isShortWindow : isWeeklyWindow);
  return found == windows.end() ? std::nullopt : std::optional(*found);
}

/// How far a bar is filled, 0…1; absent without a figure.
std::optional<double> fillOf(const std::optional<UsageWindow>& window, bool remaining) {
  if (!window || !std::isfinite(window->usedPercent)) return std::nullopt;
  const double percent = remaining ? percentLeft(*window) : window->usedPercent;
  return std::clamp(percent / 100, 0.0, 1.0);
}

void addBar(TemplateImage& image, double y, double alpha, std::optional<double> fill) {
  const RoundedRect track{{1, y, 16, 4}, 2};
  image.shapes.push_back({track, kTrackAlpha, {}, {}});
  if (fill) {
    image.shapes.push_back({{{1, y, 16 * *fill, 4}, 0}, alpha, track, {}});
  } else {
    image.shapes.push_back({{{6, y + 1.5, 6, 1}, 0}, alpha, {}, {}});
  }
}

TemplateImage imageOf(const std::vector<UsageMenuGauge>& gauges, bool remaining) {
  TemplateImage image;
  image.shapes.reserve(2 * std::max<std::size_t>(gauges.size(), 1));
  if (gauges.empty()) addBar(image, 7, 1, std::nullopt);
  double y = 4 * (static_cast<double>(gauges.size()) - 1) + 7;
  for (const auto& gauge : gauges) {
    addBar(image, y, gauge.stale ? kStaleAlpha : 1, fillOf(gauge.window, remaining));
    y -= 8;
  }
  return image;
}

std::string windowLine(const std::optional<UsageWindow>& window, bool remaining, UsageTime now) {
  if (!window) return "Usage unavailable";
  return fmt::format("{}: {:.0f}% {} · {}", window->title, remaining ? percentLeft(*window) : window->usedPercent,
                     remaining ? "remaining" : "used", resetCountdown(*window, now));
}

std::string toolTipOf(const std::vector<UsageMenuGauge>& gauges, bool remaining, UsageTime now) {
  if (gauges.empty()) return "AI usage · enable a subscription in Settings";
  std::string text = "AI usage · bars top to bottom";
  for (const auto& gauge : gauges) {
    text += "\n\n" + providerLabel(gauge.provider) + (gauge.stale ? " · Last known" : "") + "\n" +
            windowLine(gauge.window, remaining, now) + "\n" + gauge.status;
  }
  return text;
}

}  // namespace

std::vector<UsageMenuGauge> menuGauges(const Settings& settings, const UsageStates& states, UsageTime now,
                                       const Dates& dates) {
  std::vector<UsageMenuGauge> gauges;
  for (const auto provider : settings.providerOrder()) {
    if (!settings.usageEnabled(provider)) continue;
    const UsageState& state = stateOf(states, provider);
    gauges.push_back({provider, selectedWindow(state, settings.aiMenuWindows() == 0), isStale(state, now),
                      statusLine(state, now, dates)});
  }
  return gauges;
}

StatusItemContent usageItemContent(const std::vector<UsageMenuGauge>& gauges, bool remaining, UsageTime now) {
  return {{}, imageOf(gauges, remaining), toolTipOf(gauges, remaining, now), "AI usage"};
}

}  // namespace nimbo
