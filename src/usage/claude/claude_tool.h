// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/pseudo_terminal.h"
#include "platform/user_files.h"

/// How Claude Code is found and run so that it shows its usage screen and does nothing else.
namespace nimbo::claude_tool {

/// Wide and high enough for the whole screen.
inline constexpr TerminalSize kTerminalSize{.columns = 160, .rows = 80};

/// Where users have it, then the folders of `searchPath` (in the form of PATH). Relative folders are passed
/// over: they would be looked for in whatever folder this program happens to run.
[[nodiscard]] std::optional<std::filesystem::path> findExecutable(const std::filesystem::path& home,
                                                                  std::string_view searchPath, const ToolFiles& files);

/// Its own folder below the user's caches folder. It runs there so that it finds no project to read.
[[nodiscard]] std::filesystem::path workspace(const std::filesystem::path& caches);

[[nodiscard]] std::vector<std::string> arguments();

/// `inherited` without other sign-ins and services than the user's subscription, for a plain terminal.
[[nodiscard]] std::vector<std::string> environment(const std::vector<std::string>& inherited);

}  // namespace nimbo::claude_tool
