// SPDX-License-Identifier: MIT
#include "usage/usage_json.h"

#include <cmath>
#include <nlohmann/json.hpp>
#include <string_view>
#include <utility>

#include "base/bounded_json.h"
#include "usage/iso8601.h"

namespace nimbo {
namespace {

using nlohmann::json;
using nlohmann::ordered_json;

constexpr UsageTime kYear2001{std::chrono::seconds(978307200)};

template <class Value>
std::optional<Value> decode(const json& value);

template <>
std::optional<std::string> decode(const json& value) {
  return value.is_string() ? std::optional(value.get<std::string>()) : std::nullopt;
}

template <>
std::optional<double> decode(const json& value) {
  return jsonNumber(&value);
}

template <>
std::optional<bool> decode(const json& value) {
  return value.is_boolean() ? std::optional(value.get<bool>()) : std::nullopt;
}

std::optional<UsageTime> secondsSince2001(const json& value) {
  constexpr double kReach = 8e9;  // an instant lies within 292 years of 1970
  const auto seconds = decode<double>(value);
  if (!seconds || std::abs(*seconds) > kReach) return std::nullopt;
  return kYear2001 + std::chrono::round<std::chrono::microseconds>(std::chrono::duration<double>(*seconds));
}

// Reads the members of one object and remembers whether all was well.
class Members {
 public:
  explicit Members(const json& object) : object_(object), good_(object.is_object()) {}

  template <class Value, class Decode>
  void require(std::string_view key, Value& field, const Decode& decodeValue) {
    const json* const member = jsonMember(object_, key);
    auto value = member == nullptr ? std::nullopt : decodeValue(*member);
    good_ = good_ && value;
    if (value) field = std::move(*value);
  }

  template <class Value, class Decode>
  void allow(std::string_view key, std::optional<Value>& field, const Decode& decodeValue) {
    const json* const member = jsonMember(object_, key);
    if (member == nullptr || member->is_null()) return;
    field = decodeValue(*member);
    good_ = good_ && field;
  }

  [[nodiscard]] bool good() const { return good_; }

 private:
  const json& object_;
  bool good_;
};

std::optional<std::vector<UsageWindow>> decodeWindows(const json& value, DateCoding dates) {
  if (!value.is_array()) return std::nullopt;
  std::vector<UsageWindow> windows;
  for (const json& element : value) {
    auto window = usageWindow(element, dates);
    if (!window) return std::nullopt;
    windows.push_back(std::move(*window));
  }
  return windows;
}

}  // namespace

ordered_json dateJson(UsageTime time, DateCoding dates) {
  if (dates == DateCoding::iso8601) return iso8601Text(time);
  return std::chrono::duration<double>(time - kYear2001).count();
}

std::optional<UsageTime> jsonDate(const json& value, DateCoding dates) {
  if (dates == DateCoding::secondsSince2001) return secondsSince2001(value);
  return value.is_string() ? parseIso8601(value.get_ref<const std::string&>()) : std::nullopt;
}

ordered_json usageJson(const UsageWindow& window, DateCoding dates) {
  ordered_json object;
  object["title"] = window.title;
  object["usedPercent"] = window.usedPercent;
  if (window.resetsAt) object["resetsAt"] = dateJson(*window.resetsAt, dates);
  return object;
}

ordered_json usageJson(const UsageSnapshot& snapshot, DateCoding dates) {
  ordered_json windows = ordered_json::array();
  for (const UsageWindow& window : snapshot.windows) windows.push_back(usageJson(window, dates));
  ordered_json object;
  object["windows"] = std::move(windows);
  object["fetchedAt"] = dateJson(snapshot.fetchedAt, dates);
  if (snapshot.source) object["source"] = *snapshot.source;
  return object;
}

ordered_json usageJson(const UsageState& state, DateCoding dates) {
  ordered_json object;
  object["enabled"] = state.enabled;
  if (state.snapshot) object["snapshot"] = usageJson(*state.snapshot, dates);
  if (state.message) object["message"] = *state.message;
  object["isRefreshing"] = state.isRefreshing;
  return object;
}

std::optional<UsageWindow> usageWindow(const json& value, DateCoding dates) {
  Members members(value);
  UsageWindow window;
  members.require("title", window.title, decode<std::string>);
  members.require("usedPercent", window.usedPercent, decode<double>);
  members.allow("resetsAt", window.resetsAt, [dates](const json& date) { return jsonDate(date, dates); });
  return members.good() ? std::optional(std::move(window)) : std::nullopt;
}

std::optional<UsageSnapshot> usageSnapshot(const json& value, DateCoding dates) {
  Members members(value);
  UsageSnapshot snapshot;
  members.require("windows", snapshot.windows, [dates](const json& list) { return decodeWindows(list, dates); });
  members.require("fetchedAt", snapshot.fetchedAt, [dates](const json& date) { return jsonDate(date, dates); });
  members.allow("source", snapshot.source, decode<std::string>);
  return members.good() ? std::optional(std::move(snapshot)) : std::nullopt;
}

std::optional<UsageState> usageState(const json& value, DateCoding dates) {
  Members members(value);
  UsageState state;
  members.require("enabled", state.enabled, decode<bool>);
  members.allow("snapshot", state.snapshot, [dates](const json& object) { return usageSnapshot(object, dates); });
  members.allow("message", state.message, decode<std::string>);
  members.require("isRefreshing", state.isRefreshing, decode<bool>);
  return members.good() ? std::optional(std::move(state)) : std::nullopt;
}

std::string compactJsonText(const ordered_json& value) {
  return value.dump(-1, ' ', /*ensure_ascii=*/false, ordered_json::error_handler_t::replace);
}

}  // namespace nimbo
