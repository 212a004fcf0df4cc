// SPDX-License-Identifier: MIT
#include "app/tray/status_item_plan.h"

#include <algorithm>

namespace nimbo {
namespace {

bool contains(const std::vector<DashboardTab>& tabs, DashboardTab tab) {
  return std::find(tabs.begin(), tabs.end(), tab) != tabs.end();
}

}  // namespace

StatusItemKind statusItemKind(DashboardTab tab) {
  switch (tab) {
    case DashboardTab::ai:
      return StatusItemKind::ai;
    case DashboardTab::memory:
      return StatusItemKind::memory;
    case DashboardTab::awake:
      return StatusItemKind::awake;
  }
  return StatusItemKind::compact;
}

StatusItemPlan planStatusItems(const Settings& settings, std::optional<DashboardTab> rotationTab) {
  const auto tabs = settings.menuTabs();
  if (settings.compactMenuBar() || tabs.empty()) return {{StatusItemKind::compact}, std::nullopt};

  if (settings.menuRotation()) {
    const bool kept = rotationTab && contains(tabs, *rotationTab);
    const DashboardTab tab = kept ? *rotationTab : tabs.front();
    return {{statusItemKind(tab)}, tab};
  }

  StatusItemPlan plan;
  for (const auto tab : tabs) plan.shown.push_back(statusItemKind(tab));
  return plan;
}

std::optional<DashboardTab> nextRotationTab(const Settings& settings, DashboardTab tab) {
  const auto tabs = settings.menuTabs();
  const auto found = std::find(tabs.begin(), tabs.end(), tab);
  if (tabs.size() < 2 || found == tabs.end()) return std::nullopt;
  return std::next(found) == tabs.end() ? tabs.front() : *std::next(found);
}

}  // namespace nimbo
