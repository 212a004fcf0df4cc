// SPDX-License-Identifier: MIT
#include "base/bounded_json.h"

#include <cmath>
#include <limits>
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

std::optional<std::int64_t> integerValue(const json& value) {
  if (value.is_number_unsigned() && value.get<std::uint64_t>() > std::numeric_limits<std::int64_t>::max()) return {};
  if (value.is_number_integer()) return value.get<std::int64_t>();
  if (!value.is_number_float()) return {};
  const double number = value.get<double>();
  constexpr double kLimit = 9223372036854775808.0;  // 2^63
  if (!(number >= -kLimit && number < kLimit) || std::trunc(number) != number) return {};
  return static_cast<std::int64_t>(number);
}

std::optional<bool> booleanValue(const json& value) {
  if (value.is_boolean()) return value.get<bool>();
  const auto number = integerValue(value);
  if (!number || *number < 0 || *number > 1) return {};
  return *number == 1;
}

std::optional<std::string> stringValue(const json& value) {
  if (!value.is_string()) return {};
  return value.get<std::string>();
}

std::optional<std::vector<std::string>> stringArrayValue(const json& value) {
  if (!value.is_array()) return {};
  std::vector<std::string> strings;
  for (const json& element : value) {
    if (!element.is_string()) return {};
    strings.push_back(element.get<std::string>());
  }
  return strings;
}

}  // namespace nimbo
