// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace nimbo {

inline constexpr std::size_t kMaximumJsonBytes = std::size_t{1} << 20;

/// The JSON object that is the whole text; of duplicate keys the last counts. Absent for anything else:
/// not JSON, invalid UTF-8, another root, more than `kMaximumJsonBytes`, or nested deeper than 64 levels.
[[nodiscard]] std::optional<nlohmann::json> parseJsonObject(std::string_view text);

/// For people to edit: one member a line, sorted by key. Invalid UTF-8 becomes U+FFFD.
[[nodiscard]] std::string jsonObjectText(const nlohmann::json& object);

}  // namespace nimbo
