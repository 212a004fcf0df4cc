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

}  // namespace nimbo
