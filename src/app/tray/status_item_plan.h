// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <vector>

#include "settings/dashboard_tab.h"
#include "settings/settings.h"

namespace nimbo {

/// The tab that a status item is for; absent for the compact item, which is for the whole program.
using StatusItemTab = std::optional<DashboardTab>;

/// Which status items should be there.
struct StatusItemPlan {
  /// In the order in which they are made; never empty, so that the program stays reachable.
  std::vector<StatusItemTab> shown;
  /// The tab whose item is shown while one item rotates through the tabs; absent when none does.
  std::optional<DashboardTab> rotationTab;

  bool operator==(const StatusItemPlan&) const = default;
};

/// `rotationTab` is the tab of the previous plan and is kept while it is still among the choices.
[[nodiscard]] StatusItemPlan planStatusItems(const Settings& settings, std::optional<DashboardTab> rotationTab);

/// The tab after `tab` in the menu's tabs, the first after the last; absent when there is nothing to
/// rotate.
[[nodiscard]] std::optional<DashboardTab> nextRotationTab(const Settings& settings, DashboardTab tab);

}  // namespace nimbo
