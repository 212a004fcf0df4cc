// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace nimbo {

/// A service whose allowances can be tracked, in the order in which all of them are visited.
enum class UsageProvider { codex, claude };

inline constexpr std::array kAllUsageProviders{UsageProvider::codex, UsageProvider::claude};

/// "codex" or "claude", as stored in the settings and written to files.
[[nodiscard]] std::string_view rawValue(UsageProvider provider);
[[nodiscard]] std::optional<UsageProvider> usageProvider(std::string_view rawValue);

}  // namespace nimbo
