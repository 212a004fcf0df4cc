// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string_view>

#include "app/widgets/widget_snapshot.h"
#include "base/bounded_json.h"
#include "usage/usage_json.h"

namespace nimbo {

/// Reads the widgets' file as a widget does; absent when it has another shape.
[[nodiscard]] inline std::optional<WidgetSnapshot> widgetSnapshot(std::string_view text) {
  constexpr auto kDates = DateCoding::secondsSince2001;
  const auto object = parseBoundedJson(text);
  if (!object || !object->is_object()) return std::nullopt;
  const auto date = [&](const char* key) {
    const auto* const member = jsonMember(*object, key);
    return member == nullptr ? std::nullopt : jsonDate(*member, kDates);
  };
  const auto state = [&](const char* key) {
    const auto* const member = jsonMember(*object, key);
    return member == nullptr ? std::nullopt : usageState(*member, kDates);
  };
  const auto* const enabled = jsonMember(*object, "temperatureEnabled");
  const auto built = date("date");
  const auto codex = state("codex");
  const auto claude = state("claude");
  if (!built || !codex || !claude || enabled == nullptr || !enabled->is_boolean()) return std::nullopt;

  WidgetSnapshot snapshot{.date = *built, .temperatureEnabled = *enabled, .codex = *codex, .claude = *claude};
  snapshot.temperature = jsonNumber(jsonMember(*object, "temperature"));
  snapshot.temperatureDate = date("temperatureDate");
  if (object->contains("temperature") && !snapshot.temperature) return std::nullopt;
  if (object->contains("temperatureDate") && !snapshot.temperatureDate) return std::nullopt;
  return snapshot;
}

}  // namespace nimbo
