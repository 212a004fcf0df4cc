// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nimbo {

inline constexpr std::size_t kMaximumJsonBytes = std::size_t{1} << 20;

/// The JSON value that is the whole of `text`, which a stranger wrote; of duplicate keys the last counts. Absent for
/// anything else: not JSON, invalid UTF-8, more than `kMaximumJsonBytes`, or nested deeper than 64 levels. Linear time.
[[nodiscard]] std::optional<nlohmann::json> parseBoundedJson(std::string_view text);

/// A member of an object; null when the value is no object or has no such member.
[[nodiscard]] const nlohmann::json* jsonMember(const nlohmann::json& value, std::string_view key);

/// A number that is finite; absent for anything else.
[[nodiscard]] std::optional<double> jsonNumber(const nlohmann::json* value);

// What a stored preference is worth when read as one of the four types; absent when it is another type.
// Every implementation of `UserDefaults` reads through these.

/// A whole number, also one written as 5.0; one outside 64 bits is none.
[[nodiscard]] std::optional<std::int64_t> integerValue(const nlohmann::json& value);

/// A boolean, also one stored as the number 0 or 1, as property lists may hold it.
[[nodiscard]] std::optional<bool> booleanValue(const nlohmann::json& value);

[[nodiscard]] std::optional<std::string> stringValue(const nlohmann::json& value);

/// Only an array with nothing but strings in it.
[[nodiscard]] std::optional<std::vector<std::string>> stringArrayValue(const nlohmann::json& value);

}  // namespace nimbo
