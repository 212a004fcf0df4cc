// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace nimbo {

/// The JSON object that is the whole text, within the bounds of `parseBoundedJson`. Absent for anything else.
[[nodiscard]] std::optional<nlohmann::json> parseJsonObject(std::string_view text);

/// For people to edit: one member a line, sorted by key. Invalid UTF-8 becomes U+FFFD.
[[nodiscard]] std::string jsonObjectText(const nlohmann::json& object);

}  // namespace nimbo
