// SPDX-License-Identifier: MIT
#include "base/preference_value.h"

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>

namespace nimbo {

using nlohmann::json;

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
