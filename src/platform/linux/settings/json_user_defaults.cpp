// SPDX-License-Identifier: MIT
#include "platform/linux/settings/json_user_defaults.h"

#include <utility>

#include "platform/preference_value.h"

namespace nimbo {
namespace {

using nlohmann::json;

// Invalid UTF-8 and numbers that JSON has no text for must mean the same before and after a restart.
json asReadBack(const json& value) {
  return json::parse(value.dump(-1, ' ', /*ensure_ascii=*/false, json::error_handler_t::replace));
}

}  // namespace

void JsonUserDefaults::registerDefault(std::string_view key, json value) { registered_[key] = std::move(value); }

template <class Value>
std::optional<Value> JsonUserDefaults::value(std::string_view key, std::optional<Value> (*read)(const json&)) const {
  const json& stored = unsaved_.contains(key) ? unsaved_ : file_.values();
  for (const json* const layer : {&stored, &registered_}) {
    const auto found = layer->find(key);
    if (found == layer->end()) continue;
    if (auto result = read(*found)) return result;
  }
  return std::nullopt;
}

std::optional<bool> JsonUserDefaults::boolean(std::string_view key) const { return value(key, booleanValue); }
std::optional<std::int64_t> JsonUserDefaults::integer(std::string_view key) const { return value(key, integerValue); }
std::optional<std::string> JsonUserDefaults::string(std::string_view key) const { return value(key, stringValue); }
std::optional<std::vector<std::string>> JsonUserDefaults::stringArray(std::string_view key) const {
  return value(key, stringArrayValue);
}

void JsonUserDefaults::set(std::string_view key, json value) {
  unsaved_[key] = asReadBack(value);
  json values = file_.values();
  values.update(unsaved_);
  if (file_.replace(values)) unsaved_.clear();
}

}  // namespace nimbo
