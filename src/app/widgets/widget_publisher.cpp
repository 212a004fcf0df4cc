// SPDX-License-Identifier: MIT
#include "app/widgets/widget_publisher.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <utility>

#include "usage/usage_json.h"
#include "usage/usage_status.h"

namespace nimbo {
namespace {

constexpr std::chrono::seconds kWriteDistance{300};
constexpr std::array kWidgetKinds{"com.quellwerk.Nimbo.usage", "com.quellwerk.Nimbo.temperature"};

bool somethingToShow(const Settings& settings) {
  return settings.monitorTemperature() ||
         std::any_of(kAllUsageProviders.begin(), kAllUsageProviders.end(),
                     [&settings](UsageProvider provider) { return settings.usageEnabled(provider); });
}

}  // namespace

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

WidgetPublisher::WidgetPublisher(PlatformServices& platform, Sources sources, bool publishesWidgets,
                                 std::function<void()> messageChanged)
    : platform_(platform),
      sources_(sources),
      publishesWidgets_(publishesWidgets),
      messageChanged_(std::move(messageChanged)) {}

void WidgetPublisher::writeWidgetSnapshot(Force force) {
  if (!publishesWidgets_) return;
  const Time now = platform_.readers().clock->now();
  if (force == Force::no && (!isDue(now) || !somethingToShow(sources_.settings))) return;
  lastWidgetWrite_ = now;  // before the outcome is known: a failed write waits as long as any other
  write(snapshot(now));
}

bool WidgetPublisher::isDue(Time now) const {
  // A clock that was set back must not silence the widgets until it has caught up.
  return !lastWidgetWrite_ || now < *lastWidgetWrite_ || now - *lastWidgetWrite_ >= kWriteDistance;
}

WidgetSnapshot WidgetPublisher::snapshot(Time now) const {
  return {.date = now,
          .temperature = sources_.readings.temperature,
          .temperatureDate = sources_.readings.temperatureDate,
          .temperatureEnabled = sources_.settings.monitorTemperature(),
          .codex = stateOf(sources_.usage, UsageProvider::codex),
          .claude = stateOf(sources_.usage, UsageProvider::claude)};
}

void WidgetPublisher::write(WidgetSnapshot snapshot) {
  platform_.utilityQueue().async([snapshot = std::move(snapshot), appGroup = platform_.bundleInfo().appGroup,
                                  &center = platform_.widgetCenter(), &loop = platform_.mainLoop(),
                                  done = lifetime_.guard([this](bool written) { finish(written); })] {
    loop.post([done, written = snapshot.write(center, appGroup)] { done(written); });
  });
}

void WidgetPublisher::finish(bool written) {
  auto message = written ? std::nullopt : std::optional(platform_.wording().widgetsUnavailable);
  if (std::exchange(widgetMessage_, message) != message && messageChanged_) messageChanged_();
  if (!written) return;
  for (const char* const kind : kWidgetKinds) platform_.widgetCenter().reloadTimelines(kind);
}

}  // namespace nimbo
