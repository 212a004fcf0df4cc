// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

#include "settings/usage_provider.h"

namespace nimbo {

/// The name under which people know the service: "Codex" or "Claude".
[[nodiscard]] constexpr std::string_view displayName(UsageProvider provider) {
  return provider == UsageProvider::codex ? "Codex" : "Claude";
}

/// Where a user sees the provider's own account of the limits.
[[nodiscard]] constexpr const char* usagePage(UsageProvider provider) {
  return provider == UsageProvider::codex ? "https://chatgpt.com/codex/settings/usage"
                                          : "https://claude.ai/settings/usage";
}

}  // namespace nimbo
