// SPDX-License-Identifier: MIT
#include "app/widgets/widget_snapshot.h"

#include <nlohmann/json.hpp>

#include "usage/usage_json.h"

namespace nimbo {

std::string WidgetSnapshot::encoded() const {
  nlohmann::ordered_json object;
  object["date"] = secondsSince2001(date);
  if (temperature) object["temperature"] = *temperature;
  if (temperatureDate) object["temperatureDate"] = secondsSince2001(*temperatureDate);
  object["temperatureEnabled"] = temperatureEnabled;
  object["codex"] = usageJson(codex);
  object["claude"] = usageJson(claude);
  return compactJsonText(object);
}

bool WidgetSnapshot::write(const WidgetCenter& to, const std::optional<std::string>& appGroup) const {
  const auto folder = appGroup ? to.container(*appGroup) : std::nullopt;
  return folder && to.writeAtomically(*folder / "usage-snapshot.json", encoded());
}

}  // namespace nimbo
