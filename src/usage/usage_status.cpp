// SPDX-License-Identifier: MIT
#include "usage/usage_status.h"

#include <fmt/format.h>

#include <algorithm>

namespace nimbo {
namespace {

constexpr std::chrono::seconds kFresh{900};

bool isOld(const UsageSnapshot& snapshot, UsageTime now) { return now - snapshot.fetchedAt > kFresh; }

}  // namespace

const UsageState& stateOf(const UsageStates& states, UsageProvider provider) {
  static const UsageState kUnknown;
  const auto found = states.find(provider);
  return found == states.end() ? kUnknown : found->second;
}

std::string providerLabel(UsageProvider provider) {
  return (provider == UsageProvider::codex ? "OpenAI · " : "Anthropic · ") + std::string(displayName(provider));
}

bool isStale(const UsageState& state, UsageTime now) {
  return (state.snapshot && isOld(*state.snapshot, now)) || state.message;
}

std::string statusLine(const UsageState& state, UsageTime now, const Dates& dates) {
  if (!state.enabled) return "Enable in Settings to connect your sign-in.";
  if (state.message) return *state.message;
  if (state.isRefreshing) return "Refreshing…";
  if (!state.snapshot) return "Waiting for usage…";
  std::string text = "Updated " + dates.shortTime(state.snapshot->fetchedAt);
  if (state.snapshot->source) text += " · " + *state.snapshot->source;
  if (isOld(*state.snapshot, now)) text += " · Stale";
  return text;
}

std::string resetCountdown(const UsageWindow& window, UsageTime now) {
  if (!window.resetsAt) return "Reset time unavailable";
  if (*window.resetsAt <= now) return "Reset due · refresh";
  constexpr std::int64_t kHundredYears = 52'560'000;
  const auto minutes =
      std::min<std::int64_t>(std::chrono::ceil<std::chrono::minutes>(*window.resetsAt - now).count(), kHundredYears);
  if (minutes < 60) return fmt::format("Resets in {}m", minutes);
  if (minutes < 1440) return fmt::format("Resets in {}h {}m", minutes / 60, minutes % 60);
  return fmt::format("Resets in {}d {}h", minutes / 1440, minutes % 1440 / 60);
}

double percentLeft(const UsageWindow& window) { return std::max(100 - window.usedPercent, 0.0); }

}  // namespace nimbo
