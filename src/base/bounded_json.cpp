// SPDX-License-Identifier: MIT
#include "base/bounded_json.h"

#include <cmath>
#include <nlohmann/json.hpp>

namespace nimbo {
namespace {

using nlohmann::json;

// Copying, comparing and writing a value recurse once per level.
constexpr int kMaximumDepth = 64;

/// Whether brackets nest too deep. It follows strings as the parser does until the first error, where that gives up.
bool isTooDeep(std::string_view text) {
  int depth = 0;
  bool inString = false;
  bool escaped = false;
  for (const char character : text) {
    if (inString) {
      if (character == '"' && !escaped) inString = false;
      escaped = character == '\\' && !escaped;
    } else if (character == '"') {
      inString = true;
    } else if (character == '[' || character == '{') {
      if (++depth > kMaximumDepth) return true;
    } else if (character == ']' || character == '}') {
      --depth;
    }
  }
  return false;
}

}  // namespace

std::optional<json> parseBoundedJson(std::string_view text) {
  // The parser could watch the depth itself, but with somebody watching it takes quadratic time.
  if (text.size() > kMaximumJsonBytes || isTooDeep(text)) return std::nullopt;
  json value = json::parse(text, nullptr, /*allow_exceptions=*/false);
  if (value.is_discarded()) return std::nullopt;
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
