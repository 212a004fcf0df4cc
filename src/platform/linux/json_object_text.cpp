// SPDX-License-Identifier: MIT
#include "platform/linux/json_object_text.h"

#include <nlohmann/json.hpp>

namespace nimbo {
namespace {

using nlohmann::json;

// Copying, comparing and writing a value recurse once per level.
constexpr int kMaximumDepth = 64;

}  // namespace

std::optional<json> parseJsonObject(std::string_view text) {
  if (text.size() > kMaximumJsonBytes) return std::nullopt;
  bool tooDeep = false;
  const auto watchDepth = [&tooDeep](int depth, json::parse_event_t event, const json&) {
    using Event = json::parse_event_t;
    const bool opens = event == Event::object_start || event == Event::array_start;
    tooDeep = tooDeep || (opens && depth >= kMaximumDepth);
    return !tooDeep;
  };
  json value = json::parse(text, watchDepth, /*allow_exceptions=*/false);
  if (tooDeep || !value.is_object()) return std::nullopt;
  return value;
}

std::string jsonObjectText(const json& object) {
  return object.dump(2, ' ', /*ensure_ascii=*/false, json::error_handler_t::replace) + "\n";
}

}  // namespace nimbo
