// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "usage/usage_model.h"

namespace nimbo {

/// As every instant is written: since 1 January 2001, 00:00 UTC.
[[nodiscard]] double secondsSince2001(UsageTime time);

/// Objects whose keys are the names of the fields, in their order; what is absent is left out.
[[nodiscard]] nlohmann::ordered_json usageJson(const UsageSnapshot& snapshot);
[[nodiscard]] nlohmann::ordered_json usageJson(const UsageState& state);

/// In one line without blanks. Invalid UTF-8 becomes U+FFFD.
[[nodiscard]] std::string compactJsonText(const nlohmann::ordered_json& value);

}  // namespace nimbo
