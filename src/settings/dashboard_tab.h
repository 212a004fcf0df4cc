// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <optional>
#include <string_view>
#include <vector>

namespace nimbo {

/// The dashboard's pages, in their default order.
enum class DashboardTab { ai, memory, awake };

inline constexpr std::array kAllDashboardTabs{DashboardTab::ai, DashboardTab::memory, DashboardTab::awake};

/// "ai", "memory" or "awake", as stored in the settings.
[[nodiscard]] std::string_view rawValue(DashboardTab tab);
[[nodiscard]] std::optional<DashboardTab> dashboardTab(std::string_view rawValue);

/// "AI", "Mem" or "Awake", as the user reads it.
[[nodiscard]] std::string_view displayName(DashboardTab tab);

/// Every order that the tabs can be put in, beginning with the default one.
[[nodiscard]] std::vector<std::vector<DashboardTab>> offeredTabOrders();

}  // namespace nimbo
