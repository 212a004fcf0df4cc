// SPDX-License-Identifier: MIT
#include "settings/settings.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>

#include "settings/setting_keys.h"
#include "settings/settings_migration.h"

namespace nimbo {
namespace {

using namespace setting_keys;

constexpr std::array<std::int64_t, 7> kAwakeDurations{0, 1800, 3600, 7200, 14400, -1, -2};

// Which status items each menu preset shows: AI, memory, Keep Awake.
constexpr std::array<std::array<bool, 3>, 4> kMenuPresets{
    {{true, true, true}, {true, false, false}, {false, true, false}, {false, false, true}}};

template <std::size_t count>
std::int64_t accepted(std::int64_t value, const std::array<std::int64_t, count>& choices, std::int64_t fallback) {
  return std::find(choices.begin(), choices.end(), value) != choices.end() ? value : fallback;
}

UserDefaults& migrated(UserDefaults& defaults, UserDefaultsDomains& domains,
                       const std::optional<std::string>& bundleIdentifier) {
  if (bundleIdentifier == kCurrentIdentity) migratePreviousIdentity(domains);
  return defaults;
}

std::string usageKey(UsageProvider provider) { return kUsagePrefix + std::string(rawValue(provider)); }

}  // namespace

Settings::Settings(UserDefaults& defaults) : defaults_(defaults) {
  registerDefaults();
  if (!monitorMemory() && !monitorCpu()) setMonitorMemory(true);
}

Settings::Settings(UserDefaults& standardDefaults, UserDefaultsDomains& domains,
                   const std::optional<std::string>& bundleIdentifier)
    : Settings(migrated(standardDefaults, domains, bundleIdentifier)) {}

void Settings::registerDefaults() {
  defaults_.registerDefault(kMonitorMemory, true);
  defaults_.registerDefault(kMonitorCpu, false);
  defaults_.registerDefault(kDisplayMode, "usedPercent");
  defaults_.registerDefault(kRefreshInterval, 5);
  defaults_.registerDefault(kShowChart, true);
  defaults_.registerDefault(kAwakeDuration, 0);
  defaults_.registerDefault(kAwakeCustomMinutes, 60);
  defaults_.registerDefault(kAwakeDisplayOn, false);
  defaults_.registerDefault(kAwakeOnlyOnPower, false);
  defaults_.registerDefault(kAwakeBatteryFloor, 20);
  defaults_.registerDefault(kMenuAi, true);
  defaults_.registerDefault(kMenuMemory, true);
  defaults_.registerDefault(kMenuAwake, false);
  defaults_.registerDefault(kAiMenuRemaining, true);
  defaults_.registerDefault(kAiMenuWindows, 1);
  defaults_.registerDefault(kMenuRotationInterval, 10);
}

bool Settings::isOn(std::string_view key) const { return defaults_.boolean(key).value_or(false); }
std::int64_t Settings::number(std::string_view key) const { return defaults_.integer(key).value_or(0); }

bool Settings::monitorMemory() const { return isOn(kMonitorMemory); }
void Settings::setMonitorMemory(bool on) { defaults_.set(kMonitorMemory, on); }

bool Settings::monitorCpu() const { return isOn(kMonitorCpu); }
void Settings::setMonitorCpu(bool on) { defaults_.set(kMonitorCpu, on); }

bool Settings::monitorTemperature() const { return isOn(kMonitorTemperature); }
void Settings::setMonitorTemperature(bool on) { defaults_.set(kMonitorTemperature, on); }

bool Settings::compactMenuBar() const { return isOn(kCompactMenuBar); }
void Settings::setCompactMenuBar(bool on) { defaults_.set(kCompactMenuBar, on); }

bool Settings::usageEnabled(UsageProvider provider) const { return isOn(usageKey(provider)); }
void Settings::setUsageEnabled(UsageProvider provider, bool on) { defaults_.set(usageKey(provider), on); }

std::string Settings::displayMode() const { return defaults_.string(kDisplayMode).value_or(""); }
void Settings::setDisplayMode(std::string_view mode) { defaults_.set(kDisplayMode, mode); }

std::chrono::seconds Settings::refreshInterval() const {
  return std::chrono::seconds(accepted(number(kRefreshInterval), kRefreshIntervals, 5));
}
void Settings::setRefreshInterval(std::chrono::seconds interval) { defaults_.set(kRefreshInterval, interval.count()); }

bool Settings::showChart() const { return isOn(kShowChart); }
void Settings::setShowChart(bool on) { defaults_.set(kShowChart, on); }

std::int64_t Settings::awakeDuration() const { return accepted(number(kAwakeDuration), kAwakeDurations, 0); }
void Settings::setAwakeDuration(std::int64_t duration) { defaults_.set(kAwakeDuration, duration); }

std::int64_t Settings::awakeCustomMinutes() const { return number(kAwakeCustomMinutes); }
void Settings::setAwakeCustomMinutes(std::int64_t minutes) { defaults_.set(kAwakeCustomMinutes, minutes); }

bool Settings::awakeDisplayOn() const { return isOn(kAwakeDisplayOn); }
void Settings::setAwakeDisplayOn(bool on) { defaults_.set(kAwakeDisplayOn, on); }

bool Settings::awakeOnlyOnPower() const { return isOn(kAwakeOnlyOnPower); }
void Settings::setAwakeOnlyOnPower(bool on) { defaults_.set(kAwakeOnlyOnPower, on); }

int Settings::awakeBatteryFloor() const {
  return static_cast<int>(accepted(number(kAwakeBatteryFloor), kBatteryFloors, 20));
}
void Settings::setAwakeBatteryFloor(int percent) { defaults_.set(kAwakeBatteryFloor, percent); }

bool Settings::menuAi() const { return isOn(kMenuAi); }
void Settings::setMenuAi(bool on) { defaults_.set(kMenuAi, on); }

bool Settings::menuMemory() const { return isOn(kMenuMemory); }
void Settings::setMenuMemory(bool on) { defaults_.set(kMenuMemory, on); }

bool Settings::menuAwake() const { return isOn(kMenuAwake); }
void Settings::setMenuAwake(bool on) { defaults_.set(kMenuAwake, on); }

bool Settings::aiMenuRemaining() const { return isOn(kAiMenuRemaining); }
void Settings::setAiMenuRemaining(bool on) { defaults_.set(kAiMenuRemaining, on); }

std::int64_t Settings::aiMenuWindows() const { return number(kAiMenuWindows); }
void Settings::setAiMenuWindows(std::int64_t windows) { defaults_.set(kAiMenuWindows, windows); }

bool Settings::menuRotation() const { return isOn(kMenuRotation); }
void Settings::setMenuRotation(bool on) { defaults_.set(kMenuRotation, on); }

std::chrono::seconds Settings::menuRotationInterval() const {
  return std::chrono::seconds(accepted(number(kMenuRotationInterval), kRotationIntervals, 10));
}
void Settings::setMenuRotationInterval(std::chrono::seconds interval) {
  defaults_.set(kMenuRotationInterval, interval.count());
}

DashboardTab Settings::lastDashboardTab() const {
  return dashboardTab(defaults_.string(kLastDashboardTab).value_or("")).value_or(DashboardTab::ai);
}
void Settings::setLastDashboardTab(DashboardTab tab) { defaults_.set(kLastDashboardTab, rawValue(tab)); }

std::vector<DashboardTab> Settings::tabOrder() const {
  std::vector<DashboardTab> tabs;
  const auto append = [&tabs](DashboardTab tab) {
    if (std::find(tabs.begin(), tabs.end(), tab) == tabs.end()) tabs.push_back(tab);
  };
  for (const std::string& name : defaults_.stringArray(kTabOrder).value_or(std::vector<std::string>())) {
    if (const auto tab = dashboardTab(name)) append(*tab);
  }
  std::for_each(kAllDashboardTabs.begin(), kAllDashboardTabs.end(), append);
  return tabs;
}

void Settings::setTabOrder(std::span<const DashboardTab> tabs) {
  auto names = nlohmann::json::array();
  for (const DashboardTab tab : tabs) names.push_back(rawValue(tab));
  defaults_.set(kTabOrder, std::move(names));
}

bool Settings::claudeFirst() const { return isOn(kClaudeFirst); }
void Settings::setClaudeFirst(bool on) { defaults_.set(kClaudeFirst, on); }

std::vector<DashboardTab> Settings::menuTabs() const {
  std::vector<DashboardTab> tabs = tabOrder();
  std::erase_if(tabs, [this](DashboardTab tab) {
    switch (tab) {
      case DashboardTab::ai:
        return !menuAi();
      case DashboardTab::memory:
        return !menuMemory();
      case DashboardTab::awake:
        return !menuAwake();
    }
    return true;
  });
  return tabs;
}

int Settings::menuPreset() const {
  const std::array shown{menuAi(), menuMemory(), menuAwake()};
  return static_cast<int>(std::find(kMenuPresets.begin(), kMenuPresets.end(), shown) - kMenuPresets.begin());
}

void Settings::setMenuPreset(int preset) {
  if (preset < 0 || preset > 3) return;
  const auto [ai, memory, awake] = kMenuPresets.at(static_cast<std::size_t>(preset));
  setMenuAi(ai);
  setMenuMemory(memory);
  setMenuAwake(awake);
  setCompactMenuBar(false);
  // A memory item without memory readings would stay empty.
  if (memory) setMonitorMemory(true);
}

std::vector<UsageProvider> Settings::providerOrder() const {
  if (claudeFirst()) return {UsageProvider::claude, UsageProvider::codex};
  return {UsageProvider::codex, UsageProvider::claude};
}

void Settings::setProviderOrder(std::span<const UsageProvider> providers) {
  setClaudeFirst(!providers.empty() && providers.front() == UsageProvider::claude);
}

}  // namespace nimbo
