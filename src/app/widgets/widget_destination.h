// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "settings/dashboard_tab.h"

namespace nimbo {

/// What a widget's link asks the program to show.
enum class WidgetDestination { resources, awake, usage };

inline constexpr std::array kAllWidgetDestinations{WidgetDestination::resources, WidgetDestination::awake,
                                                   WidgetDestination::usage};

/// "resources", "awake" or "usage": the host of the link.
[[nodiscard]] std::string_view rawValue(WidgetDestination destination);

/// The destination of "nimbo://usage" or "nimbo://usage/", in any case of letters. A link that has
/// anything more to it (user, port, query, fragment, path, even when the query, fragment or user is
/// empty) has none.
[[nodiscard]] std::optional<WidgetDestination> widgetDestination(std::string_view url);

/// The destination of the last link that has one.
[[nodiscard]] std::optional<WidgetDestination> lastWidgetDestination(std::span<const std::string> links);

[[nodiscard]] DashboardTab tabFor(WidgetDestination destination);

}  // namespace nimbo
