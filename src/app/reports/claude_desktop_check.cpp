// SPDX-License-Identifier: MIT
#include "app/reports/claude_desktop_check.h"

#include <nlohmann/json.hpp>

#include "usage/usage_json.h"

namespace nimbo {

ClaudeDesktopCheck makeClaudeDesktopCheck(const ClaudeDesktopUsage& usage, std::string_view localZone) {
  const auto snapshot = usage.read(localZone);
  if (!snapshot) return {"", snapshot.error().message + '\n', 1};
  return {compactJsonText(usageJson(*snapshot, DateCoding::secondsSince2001)) + '\n', "", 0};
}

}  // namespace nimbo
