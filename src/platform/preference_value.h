// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

namespace nimbo {

// What a stored preference is worth when read as one of the four types; absent when it is another type.
// Every implementation of `UserDefaults` reads through these.

/// A whole number, also one written as 5.0; one outside 64 bits is none.
[[nodiscard]] inline std::optional<std::int64_t> integerValue(const nlohmann::json& value) {
  if (value.is_number_unsigned() && value.get<std::uint64_t>() > std::numeric_limits<std::int64_t>::max()) return {};
  if (value.is_number_integer()) return value.get<std::int64_t>();
  if (!value.is_number_float()) return {};
  const double number = value.get<double>();
  constexpr double kLimit = 9223372036854775808.0;  // 2^63
  if (!(number >= -kLimit && number < kLimit) || std::trunc(number) != number) return {};
  return static_cast<std::int64_t>(number);
}

/// A boolean, also one stored as the number 0 or 1, as property lists may hold it.
[[nodiscard]] inline std::optional<bool> booleanValue(const nlohmann::json& value) {
  if (value.is_boolean()) return value.get<bool>();
  const auto number = integerValue(value);
  if (!number || *number < 0 || *number > 1) return {};
  return *number == 1;
}

[[nodiscard]] inline std::optional<std::string> stringValue(const nlohmann::json& value) {
  if (!value.is_string()) return {};
  return value.get<std::string>();
}

/// Only an array with nothing but strings in it.
[[nodiscard]] inline std::optional<std::vector<std::string>> stringArrayValue(const nlohmann::json& value) {
  if (!value.is_array()) return {};
  std::vector<std::string> strings;
  for (const auto& element : value) {
    if (!element.is_string()) return {};
    strings.push_back(element.get<std::string>());
  }
  return strings;
}

}  // namespace nimbo
