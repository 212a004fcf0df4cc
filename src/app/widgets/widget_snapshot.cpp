// SPDX-License-Identifier: MIT
#include "app/widgets/widget_snapshot.h"

#include <nlohmann/json.hpp>

#include "usage/usage_json.h"

namespace nimbo {

std::string WidgetSnapshot::encoded() const {
  constexpr auto kDates = DateCoding::secondsSince2001;
  nlohmann::ordered_json object;
  object["date"] = dateJson(date, kDates);
  if (temperature) object["temperature"] = *temperature;
  if (temperatureDate) object["temperatureDate"] = dateJson(*temperatureDate, kDates);
  object["temperatureEnabled"] = temperatureEnabled;
  object["codex"] = usageJson(codex, kDates);
  object["claude"] = usageJson(claude, kDates);
  return compactJsonText(object);
}

bool WidgetSnapshot::write(const WidgetCenter& to, const std::optional<std::string>& appGroup) const {
  const auto folder = appGroup ? to.container(*appGroup) : std::nullopt;
  return folder && to.writeAtomically(*folder / "usage-snapshot.json", encoded());
}

}  // namespace nimbo
