// SPDX-License-Identifier: MIT
#include "ui/settings/settings_controls.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <span>

#include "settings/dashboard_tab.h"

namespace nimbo {
namespace {

using enum SettingsChange::Kind;
using Items = std::vector<SettingsChoiceItem>;

SettingsCheck providerCheck(std::string_view identifier, const char* title, UsageProvider provider) {
  return {identifier, title, [provider](const Settings& settings) { return settings.usageEnabled(provider); },
          [provider](Settings& settings, bool on) { settings.setUsageEnabled(provider, on); }, usage};
}

// Switching a readout of the bar on or off ends the single-icon mode, which would hide it.

void writeMenuAi(Settings& settings, bool on) {
  settings.setMenuAi(on);
  settings.setCompactMenuBar(false);
}

void writeMenuMemory(Settings& settings, bool on) {
  settings.setMenuMemory(on);
  settings.setCompactMenuBar(false);
  // A memory item without memory readings would stay empty.
  if (on) settings.setMonitorMemory(true);
}

void writeMenuAwake(Settings& settings, bool on) {
  settings.setMenuAwake(on);
  settings.setCompactMenuBar(false);
}

// Rotation and the single-icon mode exclude each other.

void writeCompact(Settings& settings, bool on) {
  settings.setCompactMenuBar(on);
  if (on) settings.setMenuRotation(false);
}

void writeRotation(Settings& settings, bool on) {
  settings.setMenuRotation(on);
  if (on) settings.setCompactMenuBar(false);
}

std::vector<SettingsCheck> makeChecks() {
  using S = Settings;
  return {
      {"memory", "Memory", &S::monitorMemory, &S::setMonitorMemory, monitors},
      {"cpu", "CPU", &S::monitorCpu, &S::setMonitorCpu, monitors},
      {"temperature", "CPU temperature", &S::monitorTemperature, &S::setMonitorTemperature, monitors},
      {"compact", "Single app icon (hide all readouts)", &S::compactMenuBar, writeCompact, presentation},
      {"menuRotation", "Rotate selected readouts in one icon", &S::menuRotation, writeRotation, presentation},
      {"menuAI", "AI", &S::menuAi, writeMenuAi, presentation},
      {"menuMemory", "Mem", &S::menuMemory, writeMenuMemory, presentation},
      {"menuAwake", "Awake", &S::menuAwake, writeMenuAwake, presentation},
      {"display", "Keep display on too", &S::awakeDisplayOn, &S::setAwakeDisplayOn, display},
      {"power", "Only while connected to power", &S::awakeOnlyOnPower, &S::setAwakeOnlyOnPower, awakeRules},
      providerCheck("codex", "OpenAI · Codex", UsageProvider::codex),
      providerCheck("claude", "Anthropic · Claude", UsageProvider::claude),
  };
}

/// A choice between a switch that is on, the first item, and off.
SettingsChoice switchChoice(std::string_view identifier, const char* label, const char* on, const char* off,
                            bool (Settings::*isOn)() const, void (Settings::*write)(bool),
                            SettingsChange::Kind change) {
  return {identifier,
          label,
          {{on, 0}, {off, 1}},
          [isOn](const Settings& settings) { return (settings.*isOn)() ? 0 : 1; },
          [write](Settings& settings, std::int64_t tag) { (settings.*write)(tag == 0); },
          change};
}

SettingsChoice intervalChoice(std::string_view identifier, const char* label, std::span<const std::int64_t> offered,
                              std::chrono::seconds (Settings::*interval)() const,
                              void (Settings::*write)(std::chrono::seconds), SettingsChange::Kind change) {
  Items items;
  for (const auto seconds : offered) {
    const auto title = seconds < 60    ? fmt::format("{} seconds", seconds)
                       : seconds == 60 ? "1 minute"
                                       : fmt::format("{} minutes", seconds / 60);
    items.push_back({title, seconds});
  }
  return {identifier,
          label,
          items,
          [interval](const Settings& settings) { return (settings.*interval)().count(); },
          [write](Settings& settings, std::int64_t tag) { (settings.*write)(std::chrono::seconds(tag)); },
          change};
}

// Whatever else is stored counts as the weekly limit.
std::int64_t quotas(const Settings& settings) { return settings.aiMenuWindows() == 0 ? 0 : 1; }

std::int64_t tabOrder(const Settings& settings) {
  const auto orders = offeredTabOrders();
  return std::ranges::find(orders, settings.tabOrder()) - orders.begin();
}

void writeTabOrder(Settings& settings, std::int64_t tag) {
  settings.setTabOrder(offeredTabOrders().at(static_cast<std::size_t>(tag)));
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

Items floorItems() {
  Items items;
  for (const auto percent : kBatteryFloors) {
    items.push_back({percent == 0 ? "Never" : fmt::format("{}%", percent), percent});
  }
  return items;
}

std::vector<SettingsChoice> makeChoices() {
  using S = Settings;
  return {
      {"preset",
       "Show",
       {{"All", 0}, {"AI only", 1}, {"Mem only", 2}, {"Awake only", 3}, {"Custom", 4}},
       &S::menuPreset,
       &S::setMenuPreset,
       monitors},
      intervalChoice("menuRotationInterval", "Rotate every", kRotationIntervals, &S::menuRotationInterval,
                     &S::setMenuRotationInterval, presentation),
      {"aiWindows", "AI {} quotas", {{"5-hour", 0}, {"Weekly", 1}}, quotas, &S::setAiMenuWindows, presentation},
      switchChoice("aiFill", "AI {} fill", "Remaining", "Used", &S::aiMenuRemaining, &S::setAiMenuRemaining,
                   presentation),
      {"providers",
       "Subscription order",
       {{"Codex → Claude", 0}, {"Claude → Codex", 1}},
       &S::claudeFirst,
       &S::setClaudeFirst,
       presentation},
      {"tabOrder", "Tab order", tabOrderItems(), tabOrder, writeTabOrder, presentation},
      switchChoice("memoryStyle", "Memory icon", "History chart", "Usage bar", &S::showChart, &S::setShowChart,
                   appearance),
      intervalChoice("interval", "Refresh interval", kRefreshIntervals, &S::refreshInterval, &S::setRefreshInterval,
                     interval),
      {"battery", "Stop on battery at", floorItems(), &S::awakeBatteryFloor, &S::setAwakeBatteryFloor, awakeRules},
  };
}

template <class Control>
const Control* find(const std::vector<Control>& controls, std::string_view identifier) {
  const auto found = std::ranges::find(controls, identifier, &Control::identifier);
  return found == controls.end() ? nullptr : &*found;
}

}  // namespace

std::size_t SettingsChoice::selected(const Settings& settings) const {
  const auto found = std::ranges::find(items, tag(settings), &SettingsChoiceItem::tag);
  return found == items.end() ? 0 : static_cast<std::size_t>(found - items.begin());
}

const SettingsCheck* settingsCheck(std::string_view identifier) {
  static const std::vector<SettingsCheck> checks = makeChecks();
  return find(checks, identifier);
}

const SettingsChoice* settingsChoice(std::string_view identifier) {
  static const std::vector<SettingsChoice> choices = makeChoices();
  return find(choices, identifier);
}

}  // namespace nimbo
