// SPDX-License-Identifier: MIT
#include "usage/usage_json.h"

#include <nlohmann/json.hpp>
#include <utility>

namespace nimbo {

using nlohmann::ordered_json;

double secondsSince2001(UsageTime time) {
  constexpr UsageTime kYear2001{std::chrono::seconds(978307200)};
  return std::chrono::duration<double>(time - kYear2001).count();
}

ordered_json usageJson(const UsageSnapshot& snapshot) {
  ordered_json windows = ordered_json::array();
  for (const UsageWindow& window : snapshot.windows) {
    windows.push_back({{"title", window.title}, {"usedPercent", window.usedPercent}});
    if (window.resetsAt) windows.back()["resetsAt"] = secondsSince2001(*window.resetsAt);
  }
  ordered_json object;
  object["windows"] = std::move(windows);
  object["fetchedAt"] = secondsSince2001(snapshot.fetchedAt);
  if (snapshot.source) object["source"] = *snapshot.source;
  return object;
}

ordered_json usageJson(const UsageState& state) {
  ordered_json object;
  object["enabled"] = state.enabled;
  if (state.snapshot) object["snapshot"] = usageJson(*state.snapshot);
  if (state.message) object["message"] = *state.message;
  object["isRefreshing"] = state.isRefreshing;
  return object;
}

std::string compactJsonText(const ordered_json& value) {
  return value.dump(-1, ' ', /*ensure_ascii=*/false, ordered_json::error_handler_t::replace);
}

}  // namespace nimbo
