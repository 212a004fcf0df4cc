// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "platform/clock.h"
#include "settings/usage_provider.h"
#include "usage/usage_model.h"

namespace nimbo {

/// An empty one of a provider that is not among them.
[[nodiscard]] const UsageState& stateOf(const UsageStates& states, UsageProvider provider);

/// "OpenAI · Codex" or "Anthropic · Claude".
[[nodiscard]] std::string providerLabel(UsageProvider provider);

/// Whether what is known of the provider is no longer the present: too old, or overtaken by a failure.
[[nodiscard]] bool isStale(const UsageState& state, UsageTime now);

[[nodiscard]] std::string statusLine(const UsageState& state, UsageTime now, const Dates& dates);
[[nodiscard]] std::string resetCountdown(const UsageWindow& window, UsageTime now);

/// 100 − used, but never less than nothing.
[[nodiscard]] double percentLeft(const UsageWindow& window);

}  // namespace nimbo
