// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <string_view>

namespace nimbo {

/// A service whose allowances can be tracked, in the order in which all of them are visited.
enum class UsageProvider { codex, claude };

inline constexpr std::array kAllUsageProviders{UsageProvider::codex, UsageProvider::claude};

/// "codex" or "claude", as stored in the settings and written to files.
[[nodiscard]] constexpr std::string_view rawValue(UsageProvider provider) {
  return provider == UsageProvider::codex ? "codex" : "claude";
}

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
