// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string_view>

namespace nimbo {

inline constexpr std::size_t kMaximumJsonBytes = std::size_t{1} << 20;

/// The JSON value that is the whole of `text`, which a stranger wrote; of duplicate keys the last counts. Absent for
/// anything else: not JSON, invalid UTF-8, more than `kMaximumJsonBytes`, or nested deeper than 64 levels. Linear time.
[[nodiscard]] std::optional<nlohmann::json> parseBoundedJson(std::string_view text);

/// A member of an object; null when the value is no object or has no such member.
[[nodiscard]] const nlohmann::json* jsonMember(const nlohmann::json& value, std::string_view key);

/// A number that is finite; absent for anything else.
[[nodiscard]] std::optional<double> jsonNumber(const nlohmann::json* value);

}  // namespace nimbo
