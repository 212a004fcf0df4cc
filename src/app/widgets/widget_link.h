// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "settings/dashboard_tab.h"

namespace nimbo {

/// The tab that a widget's link leads to: "nimbo://resources", "nimbo://awake" or "nimbo://usage", with a
/// "/" behind it or not, in any case of letters. A link that has anything more to it (user, port, query,
/// fragment, path, even when the query, fragment or user is empty) leads nowhere.
[[nodiscard]] std::optional<DashboardTab> tabOfLink(std::string_view url);

/// Where the last of the links that lead somewhere does.
[[nodiscard]] std::optional<DashboardTab> tabOfLastLink(std::span<const std::string> links);

}  // namespace nimbo
