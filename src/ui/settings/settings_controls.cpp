// SPDX-License-Identifier: MIT
#include "ui/settings/settings_controls.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <iterator>
#include <span>

#include "settings/dashboard_tab.h"

namespace nimbo {
namespace {

using enum SettingsChange::Kind;
using Items = std::vector<SettingsChoiceItem>;

// What a row of the tables reads and writes, made of the store's own getters and setters.

template <auto getter>
bool isOn(const Settings& settings) {
  return (settings.*getter)();
}

template <auto setter>
void write(Settings& settings, bool on) {
  (settings.*setter)(on);
}

template <UsageProvider provider>
bool isUsed(const Settings& settings) {
  return settings.usageEnabled(provider);
}

template <UsageProvider provider>
void use(Settings& settings, bool on) {
  settings.setUsageEnabled(provider, on);
}

template <auto getter>
std::int64_t tag(const Settings& settings) {
  return (settings.*getter)();
}

template <auto setter>
void writeTag(Settings& settings, std::int64_t tag) {
  (settings.*setter)(static_cast<int>(tag));
}

/// A choice between a switch that is on (0) and off (1).
template <auto getter>
std::int64_t onOrOff(const Settings& settings) {
  return (settings.*getter)() ? 0 : 1;
}

template <auto setter>
void writeOnOrOff(Settings& settings, std::int64_t tag) {
  (settings.*setter)(tag == 0);
}

template <auto getter>
std::int64_t seconds(const Settings& settings) {
  return (settings.*getter)().count();
}

template <auto setter>
void writeSeconds(Settings& settings, std::int64_t tag) {
  (settings.*setter)(std::chrono::seconds(tag));
}

// What a check box entails.

void endRotation(Settings& settings, bool on) {
  if (on) settings.setMenuRotation(false);
}

void leaveSingleIcon(Settings& settings, bool on) {
  if (on) settings.setCompactMenuBar(false);
}

/// Whoever picks what to see does not want the icon alone.
void showReadouts(Settings& settings, bool /*on*/) { settings.setCompactMenuBar(false); }

void showMemory(Settings& settings, bool on) {
  settings.setCompactMenuBar(false);
  // A memory item without memory readings would stay empty.
  if (on) settings.setMonitorMemory(true);
}

constexpr std::array kChecks{
    SettingsCheck{"memory", "Memory", isOn<&Settings::monitorMemory>, write<&Settings::setMonitorMemory>, nullptr,
                  monitors},
    SettingsCheck{"cpu", "CPU", isOn<&Settings::monitorCpu>, write<&Settings::setMonitorCpu>, nullptr, monitors},
    SettingsCheck{"temperature", "CPU temperature", isOn<&Settings::monitorTemperature>,
                  write<&Settings::setMonitorTemperature>, nullptr, monitors},
    SettingsCheck{"compact", "Single app icon (hide all readouts)", isOn<&Settings::compactMenuBar>,
                  write<&Settings::setCompactMenuBar>, endRotation, presentation},
    SettingsCheck{"menuRotation", "Rotate selected readouts in one icon", isOn<&Settings::menuRotation>,
                  write<&Settings::setMenuRotation>, leaveSingleIcon, presentation},
    SettingsCheck{"menuAI", "AI", isOn<&Settings::menuAi>, write<&Settings::setMenuAi>, showReadouts, presentation},
    SettingsCheck{"menuMemory", "Mem", isOn<&Settings::menuMemory>, write<&Settings::setMenuMemory>, showMemory,
                  presentation},
    SettingsCheck{"menuAwake", "Awake", isOn<&Settings::menuAwake>, write<&Settings::setMenuAwake>, showReadouts,
                  presentation},
    SettingsCheck{"display", "Keep display on too", isOn<&Settings::awakeDisplayOn>,
                  write<&Settings::setAwakeDisplayOn>, nullptr, display},
    SettingsCheck{"power", "Only while connected to power", isOn<&Settings::awakeOnlyOnPower>,
                  write<&Settings::setAwakeOnlyOnPower>, nullptr, awakeRules},
    SettingsCheck{"codex", "OpenAI · Codex", isUsed<UsageProvider::codex>, use<UsageProvider::codex>, nullptr, usage},
    SettingsCheck{"claude", "Anthropic · Claude", isUsed<UsageProvider::claude>, use<UsageProvider::claude>, nullptr,
                  usage},
};

std::int64_t quotas(const Settings& settings) {
  // Whatever else is stored counts as the weekly limit.
  return settings.aiMenuWindows() == 0 ? 0 : 1;
}

std::int64_t firstProvider(const Settings& settings) { return settings.claudeFirst() ? 1 : 0; }

void writeFirstProvider(Settings& settings, std::int64_t tag) {
  auto order = std::to_array({UsageProvider::codex, UsageProvider::claude});
  if (tag == 1) std::ranges::reverse(order);
  settings.setProviderOrder(order);
}

std::int64_t tabOrder(const Settings& settings) {
  const auto orders = offeredTabOrders();
  return std::ranges::find(orders, settings.tabOrder()) - orders.begin();
}

void writeTabOrder(Settings& settings, std::int64_t tag) {
  settings.setTabOrder(offeredTabOrders().at(static_cast<std::size_t>(tag)));
}

std::string durationTitle(std::int64_t seconds) {
  if (seconds < 60) return fmt::format("{} seconds", seconds);
  return seconds == 60 ? "1 minute" : fmt::format("{} minutes", seconds / 60);
}

std::string floorTitle(std::int64_t percent) { return percent == 0 ? "Never" : fmt::format("{}%", percent); }

Items itemsFor(std::span<const std::int64_t> tags, std::string (*title)(std::int64_t tag)) {
  Items items;
  for (const auto tag : tags) items.push_back({title(tag), tag});
  return items;
}

Items tabOrderItems() {
  Items items;
  for (const auto& order : offeredTabOrders()) {
    std::string title;
    for (const auto tab : order) {
      if (!title.empty()) title += " → ";
      title += displayName(tab);
    }
    items.push_back({title, static_cast<std::int64_t>(items.size())});
  }
  return items;
}

std::vector<SettingsChoice> makeChoices() {
  return {
      {"preset",
       "Show",
       {{"All", 0}, {"AI only", 1}, {"Mem only", 2}, {"Awake only", 3}, {"Custom", 4}},
       tag<&Settings::menuPreset>,
       writeTag<&Settings::setMenuPreset>,
       monitors},
      {"menuRotationInterval", "Rotate every", itemsFor(kRotationIntervals, durationTitle),
       seconds<&Settings::menuRotationInterval>, writeSeconds<&Settings::setMenuRotationInterval>, presentation},
      {"aiWindows",
       "AI menu bar quotas",
       {{"5-hour", 0}, {"Weekly", 1}},
       quotas,
       writeTag<&Settings::setAiMenuWindows>,
       presentation},
      {"aiFill",
       "AI menu bar fill",
       {{"Remaining", 0}, {"Used", 1}},
       onOrOff<&Settings::aiMenuRemaining>,
       writeOnOrOff<&Settings::setAiMenuRemaining>,
       presentation},
      {"providers",
       "Subscription order",
       {{"Codex → Claude", 0}, {"Claude → Codex", 1}},
       firstProvider,
       writeFirstProvider,
       presentation},
      {"tabOrder", "Tab order", tabOrderItems(), tabOrder, writeTabOrder, presentation},
      {"memoryStyle",
       "Memory icon",
       {{"History chart", 0}, {"Usage bar", 1}},
       onOrOff<&Settings::showChart>,
       writeOnOrOff<&Settings::setShowChart>,
       appearance},
      {"interval", "Refresh interval", itemsFor(kRefreshIntervals, durationTitle), seconds<&Settings::refreshInterval>,
       writeSeconds<&Settings::setRefreshInterval>, interval},
      {"battery", "Stop on battery at", itemsFor(kBatteryFloors, floorTitle), tag<&Settings::awakeBatteryFloor>,
       writeTag<&Settings::setAwakeBatteryFloor>, awakeRules},
  };
}

template <class Controls>
auto* find(const Controls& controls, std::string_view identifier) {
  const auto found = std::find_if(std::begin(controls), std::end(controls),
                                  [identifier](const auto& control) { return control.identifier == identifier; });
  return found == std::end(controls) ? nullptr : &*found;
}

}  // namespace

std::size_t SettingsChoice::selected(const Settings& settings) const {
  const auto found = std::ranges::find(items, tag(settings), &SettingsChoiceItem::tag);
  return found == items.end() ? 0 : static_cast<std::size_t>(found - items.begin());
}

const SettingsCheck* settingsCheck(std::string_view identifier) { return find(kChecks, identifier); }

const SettingsChoice* settingsChoice(std::string_view identifier) {
  static const std::vector<SettingsChoice> choices = makeChoices();
  return find(choices, identifier);
}

}  // namespace nimbo
