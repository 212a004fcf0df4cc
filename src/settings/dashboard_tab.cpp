// SPDX-License-Identifier: MIT
#include "settings/dashboard_tab.h"

#include <algorithm>

namespace nimbo {
namespace {

struct Names {
  std::string_view raw;
  std::string_view shown;
};

// In the order of the tabs.
constexpr std::array<Names, kAllDashboardTabs.size()> kNames{{{"ai", "AI"}, {"memory", "Mem"}, {"awake", "Awake"}}};

const Names& namesOf(DashboardTab tab) { return kNames.at(static_cast<std::size_t>(tab)); }

}  // namespace

std::string_view rawValue(DashboardTab tab) { return namesOf(tab).raw; }
std::string_view displayName(DashboardTab tab) { return namesOf(tab).shown; }

std::optional<DashboardTab> dashboardTab(std::string_view raw) {
  for (const DashboardTab tab : kAllDashboardTabs) {
    if (rawValue(tab) == raw) return tab;
  }
  return std::nullopt;
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
