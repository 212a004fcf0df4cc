// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>
#include <vector>

namespace nimbo {

/// Names of programs that show all processes, those of the desktop itself first. `desktop` is the
/// value of XDG_CURRENT_DESKTOP.
[[nodiscard]] std::vector<std::string_view> systemMonitorPrograms(std::string_view desktop);

}  // namespace nimbo
