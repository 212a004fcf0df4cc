// SPDX-License-Identifier: MIT
#include "settings/dashboard_tab.h"

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

}  // namespace nimbo
