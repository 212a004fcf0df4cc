// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "platform/clock.h"
#include "settings/usage_provider.h"
#include "usage/usage_model.h"

namespace nimbo {

/// The name under which people know the service: "Codex" or "Claude".
[[nodiscard]] constexpr std::string_view displayName(UsageProvider provider) {
  return provider == UsageProvider::codex ? "Codex" : "Claude";
}

/// "OpenAI · Codex" or "Anthropic · Claude".
[[nodiscard]] std::string providerLabel(UsageProvider provider);

/// Where a user sees the provider's own account of the limits.
[[nodiscard]] constexpr const char* usagePage(UsageProvider provider) {
  return provider == UsageProvider::codex ? "https://chatgpt.com/codex/settings/usage"
                                          : "https://claude.ai/settings/usage";
}

/// Whether what is known of the provider is no longer the present: too old, or overtaken by a failure.
[[nodiscard]] bool isStale(const UsageState& state, UsageTime now);

[[nodiscard]] std::string statusLine(const UsageState& state, UsageTime now, const Dates& dates);
[[nodiscard]] std::string resetCountdown(const UsageWindow& window, UsageTime now);

/// 100 − used, but never less than nothing.
[[nodiscard]] double percentLeft(const UsageWindow& window);

}  // namespace nimbo
