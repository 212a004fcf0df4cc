// SPDX-License-Identifier: MIT
#include "settings/dashboard_tab.h"

#include <algorithm>

namespace nimbo {

std::string_view rawValue(DashboardTab tab) {
  switch (tab) {
    case DashboardTab::ai:
      return "ai";
    case DashboardTab::memory:
      return "memory";
    case DashboardTab::awake:
      return "awake";
  }
  return {};
}

std::optional<DashboardTab> dashboardTab(std::string_view raw) {
  for (const DashboardTab tab : kAllDashboardTabs) {
    if (rawValue(tab) == raw) return tab;
  }
  return std::nullopt;
}

std::string_view displayName(DashboardTab tab) {
  switch (tab) {
    case DashboardTab::ai:
      return "AI";
    case DashboardTab::memory:
      return "Mem";
    case DashboardTab::awake:
      return "Awake";
  }
  return {};
}

std::vector<std::vector<DashboardTab>> offeredTabOrders() {
  std::vector<std::vector<DashboardTab>> orders;
  std::vector<DashboardTab> order(kAllDashboardTabs.begin(), kAllDashboardTabs.end());
  do {
    orders.push_back(order);
  } while (std::ranges::next_permutation(order).found);
  return orders;
}

}  // namespace nimbo
