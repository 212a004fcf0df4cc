// SPDX-License-Identifier: MIT
#include "app/tray/status_item_plan.h"

#include <algorithm>

namespace nimbo {

StatusItemPlan planStatusItems(const Settings& settings, std::optional<DashboardTab> rotationTab) {
  const auto tabs = settings.menuTabs();
  if (settings.compactMenuBar() || tabs.empty()) return {{std::nullopt}, std::nullopt};

  if (settings.menuRotation()) {
    const bool kept = rotationTab && std::ranges::find(tabs, *rotationTab) != tabs.end();
    const DashboardTab tab = kept ? *rotationTab : tabs.front();
    return {{tab}, tab};
  }

  return {{tabs.begin(), tabs.end()}, std::nullopt};
}

std::optional<DashboardTab> nextRotationTab(const Settings& settings, DashboardTab tab) {
  const auto tabs = settings.menuTabs();
  const auto found = std::ranges::find(tabs, tab);
  if (tabs.size() < 2 || found == tabs.end()) return std::nullopt;
  return std::next(found) == tabs.end() ? tabs.front() : *std::next(found);
}

}  // namespace nimbo
