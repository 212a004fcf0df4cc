// SPDX-License-Identifier: MIT
#include "base/bounded_json.h"

#include <cmath>
#include <nlohmann/json.hpp>

namespace nimbo {
namespace {

using nlohmann::json;

// Copying, comparing and writing a value recurse once per level.
constexpr int kMaximumDepth = 64;

}  // namespace

std::optional<json> parseBoundedJson(std::string_view text) {
  if (text.size() > kMaximumJsonBytes) return std::nullopt;
  bool tooDeep = false;
  const auto watchDepth = [&tooDeep](int depth, json::parse_event_t event, const json&) {
    using Event = json::parse_event_t;
    const bool opens = event == Event::object_start || event == Event::array_start;
    tooDeep = tooDeep || (opens && depth >= kMaximumDepth);
    return !tooDeep;
  };
  json value = json::parse(text, watchDepth, /*allow_exceptions=*/false);
  if (tooDeep || value.is_discarded()) return std::nullopt;
  return value;
}

const json* jsonMember(const json& value, std::string_view key) {
  if (!value.is_object()) return nullptr;
  const auto member = value.find(key);
  return member == value.end() ? nullptr : &*member;
}

std::optional<double> jsonNumber(const json* value) {
  if (value == nullptr || !value->is_number()) return std::nullopt;
  const double number = value->get<double>();
  return std::isfinite(number) ? std::optional(number) : std::nullopt;
}

}  // namespace nimbo
