// SPDX-License-Identifier: MIT
#pragma once

#include <fmt/format.h>

#include <algorithm>
#include <boost/pfr.hpp>
#include <chrono>
#include <cmath>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace nimbo {

// Values as JSON and back. A structure is the array of its fields, a variant its alternative's number
// and value, an enumeration its number, a time its nanoseconds since 1970, nothing null. Reading takes nothing else: no
// missing or further field, no number that does not fit. What was read before an error stays in the value.

// For each enumeration that is sent there is a lastOf(value), the last of its values.

/// Lengths, fractions and sizes of text stay far below; windows count in integers.
inline constexpr double kLargestNumber = 1e6;

using Json = nlohmann::json;

template <class Type, template <class...> class Template>
inline constexpr bool kIs = false;
template <template <class...> class Template, class... Arguments>
inline constexpr bool kIs<Template<Arguments...>, Template> = true;

template <class Value>
concept List = requires(Value value) {
  value.begin();
  value.size();
};

/// Appends, because a content as a tree would take some thousand small blocks of the heap.
template <class Value>
void writeJson(std::string& text, const Value& value) {
  using Time = std::chrono::system_clock::time_point;
  const auto writeArray = [&text](const auto& writeAll) {
    char before = '[';
    writeAll([&](const auto& each) {
      text += std::exchange(before, ',');
      writeJson(text, each);
    });
    text += before == '[' ? "[]" : "]";
  };
  if constexpr (std::is_arithmetic_v<Value>) {
    fmt::format_to(std::back_inserter(text), "{}", value);
  } else if constexpr (std::same_as<Value, std::string>) {
    text += Json(value).dump(-1, ' ', false, Json::error_handler_t::replace);
  } else if constexpr (std::is_enum_v<Value>) {
    writeJson(text, static_cast<int>(value));
  } else if constexpr (std::is_empty_v<Value>) {
    text += "null";
  } else if constexpr (std::same_as<Value, Time>) {
    writeJson(text, std::chrono::nanoseconds(value.time_since_epoch()).count());
  } else if constexpr (kIs<Value, std::optional>) {
    value ? writeJson(text, *value) : writeJson(text, std::monostate());
  } else if constexpr (kIs<Value, std::variant>) {
    writeArray([&](const auto& write) {
      write(value.index());
      std::visit(write, value);
    });
  } else if constexpr (List<Value>) {
    writeArray([&](const auto& write) { std::ranges::for_each(value, write); });
  } else {
    writeArray([&](const auto& write) { boost::pfr::for_each_field(value, write); });
  }
}

template <class Value>
[[nodiscard]] bool fromJson(const Json& json, Value& value);

template <class Number>
[[nodiscard]] bool numberFromJson(const Json& json, Number& number) {
  if constexpr (std::is_floating_point_v<Number>) {
    if (!json.is_number()) return false;
    number = json.get<Number>();
    return std::abs(number) <= kLargestNumber;
  } else {
    if (!json.is_number_integer()) return false;
    const auto whole = json.get<std::int64_t>();
    number = static_cast<Number>(whole);
    return std::in_range<Number>(whole);
  }
}

/// `index` counts the alternatives that are still to be tried.
template <std::size_t kAlternative = 0, class... Alternatives>
[[nodiscard]] bool variantFromJson(std::size_t index, const Json& json, std::variant<Alternatives...>& value) {
  if constexpr (kAlternative == sizeof...(Alternatives)) {
    return false;
  } else {
    if (index != kAlternative) return variantFromJson<kAlternative + 1>(index, json, value);
    return fromJson(json, value.template emplace<kAlternative>());
  }
}

template <class Value>
bool fromJson(const Json& json, Value& value) {
  using Time = std::chrono::system_clock::time_point;
  if constexpr (std::same_as<Value, bool>) {
    if (json.is_boolean()) value = json.get<bool>();
    return json.is_boolean();
  } else if constexpr (std::same_as<Value, std::string>) {
    if (json.is_string()) value = json.get<std::string>();
    return json.is_string();
  } else if constexpr (std::is_arithmetic_v<Value>) {
    return numberFromJson(json, value);
  } else if constexpr (std::is_enum_v<Value>) {
    int number = 0;
    if (!numberFromJson(json, number) || number < 0 || number > static_cast<int>(lastOf(value))) return false;
    value = static_cast<Value>(number);
    return true;
  } else if constexpr (std::is_empty_v<Value>) {
    return json.is_null();
  } else if constexpr (std::same_as<Value, Time>) {
    std::int64_t count = 0;
    if (!numberFromJson(json, count)) return false;
    value = Time(std::chrono::duration_cast<Time::duration>(std::chrono::nanoseconds(count)));
    return true;
  } else if constexpr (kIs<Value, std::optional>) {
    if (json.is_null()) return true;
    return fromJson(json, value.emplace());
  } else if constexpr (kIs<Value, std::variant>) {
    std::size_t index = 0;
    return json.is_array() && json.size() == 2 && numberFromJson(json[0], index) &&
           variantFromJson(index, json[1], value);
  } else if constexpr (List<Value>) {
    if (!json.is_array()) return false;
    value.resize(json.size());
    return std::ranges::all_of(value, [next = json.begin()](auto& each) mutable { return fromJson(*next++, each); });
  } else {
    if (!json.is_array() || json.size() != boost::pfr::tuple_size_v<Value>) return false;
    bool read = true;
    boost::pfr::for_each_field(
        value, [&, next = json.begin()](auto& each) mutable { read = read && fromJson(*next++, each); });
    return read;
  }
}

}  // namespace nimbo
