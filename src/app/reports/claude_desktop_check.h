// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "usage/claude/claude_desktop_usage.h"

namespace nimbo {

/// What a console mode leaves behind: text for the two output streams and the exit status.
struct ClaudeDesktopCheck {
  std::string output;
  std::string errorOutput;
  int exitStatus = 0;
};

/// The outcome of "--claude-desktop-check": one reading of the desktop application's usage page, as one
/// line of JSON, or what the user would be told instead. Blocks like the reading.
[[nodiscard]] ClaudeDesktopCheck makeClaudeDesktopCheck(const ClaudeDesktopUsage& usage, std::string_view localZone);

}  // namespace nimbo
