// SPDX-License-Identifier: MIT
#include "ui/dashboard/dashboard_pages.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cmath>

#include "ui/dashboard/chart_bars.h"
#include "usage/usage_status.h"

namespace nimbo {
namespace {

constexpr double kPageTop = 56;
constexpr double kCardGap = 10;
constexpr double kUsageRowHeight = 58;
constexpr double kFirstRow = 58;  // in its card
constexpr double kVisibleHeight = 371;
constexpr double kStaleOpacity = 0.45;
constexpr const char* kNothingLeft = "0% left";  // its bar is empty, so that the amount has the colour
constexpr const char* kUsageNote = "Updates every 5 minutes · hover for countdowns";

const TextStyle kSecondaryText{11, FontWeight::regular, ColorRole::secondaryLabel};

/// What a card's parts have in common.
struct CardState {
  UsageProvider provider;
  const UsageState& state;
  UsageTime now;
  const Dates& dates;
  bool stale;
  std::string status;
};

ColorRole tintFor(const UsageWindow& window, UsageProvider provider) {
  if (window.usedPercent >= 90) return ColorRole::red;
  if (window.usedPercent >= 75 || provider == UsageProvider::claude) return ColorRole::orangeFill;
  return ColorRole::teal;
}

std::string resetText(const UsageWindow& window, const Dates& dates) {
  if (!window.resetsAt) return "Reset time unavailable";
  return "Resets " + dates.abbreviatedDateAndShortTime(*window.resetsAt);
}

// Of a wait so long that the time of day, which the message tells, could be that of any day.
std::string retryDate(const CardState& card) {
  const auto& retry = card.state.retryNotBefore;
  if (!retry || *retry - card.now < std::chrono::hours(24)) return "";
  return "Retry at " + card.dates.abbreviatedDateAndShortTime(*retry);
}

ChartContent barFor(const UsageWindow& window, const CardState& card) {
  const double left = percentLeft(window);
  const double fraction = std::isfinite(left) ? std::clamp(left / 100, 0.0, 1.0) : 0;
  ChartContent bar{{0, 24, 276, 7}, allowanceBars(fraction, tintFor(window, card.provider), {276, 7})};
  bar.opacity = card.stale ? kStaleOpacity : 1;
  bar.accessibleName = std::string(displayName(card.provider)) + " " + window.title;
  bar.progress = true;
  bar.percent = fraction * 100;
  bar.reading = fmt::format("{:.0f} percent remaining", bar.percent);
  return bar;
}

UsageRowContent rowFor(const UsageWindow& window, const CardState& card, double y) {
  UsageRowContent row{{12, y, 276, 52}, {}, {}, barFor(window, card), {}};
  const std::string amount = fmt::format("{:.0f}% left", percentLeft(window));
  const std::string reset = resetText(window, card.dates);
  const std::string toolTip =
      fmt::format("{} · {} · {}\n{}\n{}", window.title, amount, resetCountdown(window, card.now), reset, card.status);
  row.title = {{0, 0, 170, 20}, {12, FontWeight::medium}, window.title, toolTip};
  const auto amountColor = amount == kNothingLeft ? ColorRole::red : ColorRole::label;
  row.amount = {{170, 0, 106, 20}, {12, FontWeight::medium, amountColor, TextAlignment::right, true}, amount, toolTip};
  row.bar.toolTip = toolTip;
  row.reset = {{0, 34, 276, 18}, kSecondaryText, reset, toolTip};
  return row;
}

UsageCardContent cardFor(const CardState& card, double y) {
  static const std::vector<UsageWindow> kNone;
  const auto& windows = card.state.enabled && card.state.snapshot ? card.state.snapshot->windows : kNone;
  const std::string name(displayName(card.provider));
  const double height = windows.empty() ? 110 : kUsageRowHeight * static_cast<double>(windows.size()) + 63;

  UsageCardContent content{card.provider, {0, y, 300, height}};
  content.title = {{12, 11, 245, 22}, {14, FontWeight::semibold}, providerLabel(card.provider), retryDate(card)};
  content.link = {linkIdentifier(card.provider), {263, 10, 26, 24}, ButtonLook::inlined, 12, "↗"};
  content.link.accessibleName = content.link.toolTip = "Open " + name + " usage dashboard";
  const bool lastKnown = card.stale && !windows.empty();
  // Two lines would otherwise reach into the first row.
  content.status = {{12, 35, 276, windows.empty() ? 26 : kFirstRow - 35},
                    {10, FontWeight::regular, ColorRole::secondaryLabel},
                    lastKnown ? "Last known · " + card.status : card.status,
                    card.status};
  content.status.lines = 2;
  content.connect = {"connect." + std::string(rawValue(card.provider)), {8, 71, 230, 28}};
  content.connect.title = "Connect in Settings…";
  content.connect.visible = windows.empty() && !card.state.isRefreshing;
  double rowY = kFirstRow;
  for (const auto& window : windows) {
    content.rows.push_back(rowFor(window, card, rowY));
    rowY += kUsageRowHeight;
  }
  return content;
}

bool anyState(const UsageStates& states, bool UsageState::*flag) {
  return std::any_of(states.begin(), states.end(), [flag](const auto& entry) { return entry.second.*flag; });
}

}  // namespace

std::string linkIdentifier(UsageProvider provider) { return "link." + std::string(rawValue(provider)); }

UsageContent usageContent(const DashboardSources& sources) {
  const auto& states = sources.usage;
  const auto now = sources.clock.now();
  UsageContent content;
  double y = 0;
  for (const auto provider : sources.settings.providerOrder()) {
    const UsageState& state = stateOf(states, provider);
    content.cards.push_back(
        cardFor({provider, state, now, sources.dates, isStale(state, now), statusLine(state, now, sources.dates)}, y));
    y += content.cards.back().frame.height + kCardGap;
  }
  content.scroll = {20, kPageTop + 6, 306, kVisibleHeight};
  content.document = {300, std::max(y, kVisibleHeight)};

  content.refresh = {"refresh", {16, kPageTop + 388, 95, 28}, ButtonLook::rounded, 13, "Refresh"};
  content.refresh.toolTip =
      "Read the latest limits and reset times. Claude Code is checked first, then Claude Desktop.";
  content.refresh.enabled = anyState(states, &UsageState::enabled);
  content.progress = {{119, kPageTop + 393, 90, 18}, kSecondaryText};
  if (anyState(states, &UsageState::isRefreshing)) content.progress.text = "Refreshing…";
  content.configure = {"configure", {216, kPageTop + 390, 110, 24}, ButtonLook::inlined, 12, "Configure…"};
  content.note = {
      {20, kPageTop + 421, 300, 18}, {10, FontWeight::regular, ColorRole::tertiaryLabel}, kUsageNote, kUsageNote};
  return content;
}

}  // namespace nimbo
