// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "settings/dashboard_tab.h"

namespace nimbo {

/// What one start of the program is for.
enum class LaunchMode { claudeDesktopCheck, diagnostics, profile, command, menuBar };

/// By the first flag, in the order above, that any argument equals exactly; of a command only what stands before "--"
/// counts, as the rest is another program's. `arguments` begins with the program's path, which counts like the others.
[[nodiscard]] LaunchMode launchMode(std::span<const std::string> arguments);

/// The links among the arguments that the menu-bar mode opens, in order: those of the scheme "nimbo" in
/// any case. The program's path is none.
[[nodiscard]] std::vector<std::string> launchLinks(std::span<const std::string> arguments);

/// The tab that a link leads to: "nimbo://resources", "nimbo://awake" or "nimbo://usage", with a "/" behind
/// it or not, in any case of letters. A link that has anything more to it (user, port, query, fragment,
/// path, even when the query, fragment or user is empty) leads nowhere.
[[nodiscard]] std::optional<DashboardTab> tabOfLink(std::string_view url);

/// Where the last of the links that lead somewhere does.
[[nodiscard]] std::optional<DashboardTab> tabOfLastLink(std::span<const std::string> links);

}  // namespace nimbo
