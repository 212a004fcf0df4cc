// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

namespace nimbo {

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
