// SPDX-License-Identifier: MIT
#pragma once

#include <span>
#include <string>
#include <vector>

namespace nimbo {

/// What one start of the program is for.
enum class LaunchMode { claudeDesktopCheck, diagnostics, profile, menuBar };

/// By the first flag, in the order above, that any argument equals exactly. `arguments` begins with the
/// program's path, which counts like the others.
[[nodiscard]] LaunchMode launchMode(std::span<const std::string> arguments);

/// The links among the arguments that the menu-bar mode opens, in order: those of the scheme "nimbo" in
/// any case. The program's path is none.
[[nodiscard]] std::vector<std::string> launchLinks(std::span<const std::string> arguments);

}  // namespace nimbo
