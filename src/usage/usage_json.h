// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

#include "usage/usage_model.h"

namespace nimbo {

/// How an instant is written, which is for the enclosing file to say.
enum class DateCoding {
  secondsSince2001,  ///< a number of seconds since 1 January 2001, 00:00 UTC; exact to microseconds
  iso8601,           ///< "2026-11-21T14:30:00Z"
};

[[nodiscard]] nlohmann::ordered_json dateJson(UsageTime time, DateCoding dates);
/// Absent when the value is no such date.
[[nodiscard]] std::optional<UsageTime> jsonDate(const nlohmann::json& value, DateCoding dates);

/// Objects whose keys are the names of the fields, in their order; what is absent is left out.
[[nodiscard]] nlohmann::ordered_json usageJson(const UsageWindow& window, DateCoding dates);
[[nodiscard]] nlohmann::ordered_json usageJson(const UsageSnapshot& snapshot, DateCoding dates);
[[nodiscard]] nlohmann::ordered_json usageJson(const UsageState& state, DateCoding dates);

/// The reverse; absent when a required key is missing or a value is of another kind. An optional key may
/// be missing or null; unknown keys do not matter.
[[nodiscard]] std::optional<UsageWindow> usageWindow(const nlohmann::json& value, DateCoding dates);
[[nodiscard]] std::optional<UsageSnapshot> usageSnapshot(const nlohmann::json& value, DateCoding dates);
[[nodiscard]] std::optional<UsageState> usageState(const nlohmann::json& value, DateCoding dates);

/// In one line without blanks. Invalid UTF-8 becomes U+FFFD.
[[nodiscard]] std::string compactJsonText(const nlohmann::ordered_json& value);

}  // namespace nimbo
