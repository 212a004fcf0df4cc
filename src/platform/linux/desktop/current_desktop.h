// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>
#include <vector>

// `currentDesktop` is the value of XDG_CURRENT_DESKTOP ("ubuntu:GNOME").
namespace nimbo {

/// Whether `name` is one of the desktops. Letter case does not matter.
[[nodiscard]] bool desktopIs(std::string_view currentDesktop, std::string_view name);

/// Names of programs that show all processes, those of the desktop itself first.
[[nodiscard]] std::vector<std::string_view> systemMonitorPrograms(std::string_view currentDesktop);

}  // namespace nimbo
