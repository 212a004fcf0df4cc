// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace nimbo {

/// The dashboard's pages, in their default order.
enum class DashboardTab { ai, memory, awake };

inline constexpr std::array kAllDashboardTabs{DashboardTab::ai, DashboardTab::memory, DashboardTab::awake};

/// "ai", "memory" or "awake", as stored in the settings.
[[nodiscard]] std::string_view rawValue(DashboardTab tab);
[[nodiscard]] std::optional<DashboardTab> dashboardTab(std::string_view rawValue);

}  // namespace nimbo
