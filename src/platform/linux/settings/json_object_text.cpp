// SPDX-License-Identifier: MIT
#include "platform/linux/settings/json_object_text.h"

#include <nlohmann/json.hpp>

#include "base/bounded_json.h"

namespace nimbo {

using nlohmann::json;

std::optional<json> parseJsonObject(std::string_view text) {
  std::optional<json> value = parseBoundedJson(text);
  return value && value->is_object() ? std::move(value) : std::nullopt;
}

std::string jsonObjectText(const json& object) {
  return object.dump(2, ' ', /*ensure_ascii=*/false, json::error_handler_t::replace) + "\n";
}

}  // namespace nimbo
