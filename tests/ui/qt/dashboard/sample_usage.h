// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "usage/usage_monitor.h"

namespace nimbo {

inline UsageWindow sampleWindow(std::string title, double usedPercent, std::optional<UsageTime> resetsAt = {}) {
  return {std::move(title), usedPercent, resetsAt};
}

inline UsageState connectedState(std::vector<UsageWindow> windows, UsageTime fetchedAt) {
  return {true, UsageSnapshot{std::move(windows), fetchedAt}, {}, false};
}

inline UsageState failedState(std::string message) { return {true, {}, std::move(message), false}; }

/// Both providers connected and read two minutes ago. Together the cards are higher than the page.
inline UsageStates sampleUsage(UsageTime now) {
  using namespace std::chrono_literals;
  const auto fetchedAt = now - 2min;
  UsageStates states;
  states[UsageProvider::codex] =
      connectedState({sampleWindow("5-hour", 38, now + 133min), sampleWindow("Weekly", 61.4, now + 75h)}, fetchedAt);
  states[UsageProvider::claude] =
      connectedState({sampleWindow("Session", 12, now + 49min), sampleWindow("Weekly", 78, now + 121h),
                      sampleWindow("Opus weekly", 93)},
                     fetchedAt);
  states[UsageProvider::claude].snapshot->source = "Claude Code";
  return states;
}

}  // namespace nimbo
