// SPDX-License-Identifier: MIT
#include "settings/settings.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>

#include "base/bounded_json.h"

namespace nimbo {
namespace {

using namespace setting_keys;
using nlohmann::json;

// The identity the program must run under for its settings to be migrated, and its settings domain.
constexpr std::string_view kCurrentIdentity = "com.quellwerk.Nimbo";
constexpr std::string_view kPreviousIdentity = "com.quellwerk.Velarin";

// What the previous identity knew; newer keys start from their defaults.
constexpr std::array<const char*, 16> kMigratedKeys{
    kMonitorMemory,    kMonitorCpu,        kMonitorTemperature,    kCompactMenuBar,
    "usage.codex",     "usage.claude",     kDisplayMode,           kRefreshInterval,
    kShowChart,        kAwakeDuration,     kAwakeCustomMinutes,    kAwakeDisplayOn,
    kAwakeOnlyOnPower, kAwakeBatteryFloor, kEnableAutomaticChecks, kAutomaticallyUpdate};

bool isMigrated(const json& domain) {
  const auto mark = domain.find(kDidMigrateNimboIdentity);
  return mark != domain.end() && booleanValue(*mark) == true;
}

constexpr std::array<std::int64_t, 7> kAwakeDurations{0, 1800, 3600, 7200, 14400, -1, -2};

// Which status items each menu preset shows: AI, memory, Keep Awake.
constexpr std::array<std::array<bool, 3>, 4> kMenuPresets{
    {{true, true, true}, {true, false, false}, {false, true, false}, {false, false, true}}};

template <std::size_t count>
std::int64_t accepted(std::int64_t value, const std::array<std::int64_t, count>& choices, std::int64_t fallback) {
  return std::ranges::find(choices, value) != choices.end() ? value : fallback;
}

UserDefaults& migrated(UserDefaults& defaults, UserDefaultsDomains& domains,
                       const std::optional<std::string>& bundleIdentifier) {
  if (bundleIdentifier == kCurrentIdentity) migratePreviousIdentity(domains);
  return defaults;
}

std::string usageKey(UsageProvider provider) { return kUsagePrefix + std::string(rawValue(provider)); }

}  // namespace

void migratePreviousIdentity(UserDefaultsDomains& domains) {
  json current = domains.persistentDomain(kCurrentIdentity).value_or(json::object());
  if (isMigrated(current)) return;
  const json previous = domains.persistentDomain(kPreviousIdentity).value_or(json::object());
  for (const char* const key : kMigratedKeys) {
    if (const auto value = previous.find(key); value != previous.end() && !current.contains(key)) {
      current[key] = *value;
    }
  }
  current[kDidMigrateNimboIdentity] = true;
  // Without the mark on disk the next start simply tries again.
  (void)domains.setPersistentDomain(kCurrentIdentity, current);
}

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
void Settings::write(std::string_view key, bool on) { defaults_.set(key, on); }
void Settings::write(std::string_view key, std::int64_t value) { defaults_.set(key, value); }

bool Settings::usageEnabled(UsageProvider provider) const { return isOn(usageKey(provider)); }
void Settings::setUsageEnabled(UsageProvider provider, bool on) { defaults_.set(usageKey(provider), on); }

std::string Settings::displayMode() const { return defaults_.string(kDisplayMode).value_or(""); }
void Settings::setDisplayMode(std::string_view mode) { defaults_.set(kDisplayMode, mode); }

std::chrono::seconds Settings::refreshInterval() const {
  return std::chrono::seconds(accepted(number(kRefreshInterval), kRefreshIntervals, 5));
}

std::int64_t Settings::awakeDuration() const { return accepted(number(kAwakeDuration), kAwakeDurations, 0); }

int Settings::awakeBatteryFloor() const {
  return static_cast<int>(accepted(number(kAwakeBatteryFloor), kBatteryFloors, 20));
}

std::chrono::seconds Settings::menuRotationInterval() const {
  return std::chrono::seconds(accepted(number(kMenuRotationInterval), kRotationIntervals, 10));
}

DashboardTab Settings::lastDashboardTab() const {
  return dashboardTab(defaults_.string(kLastDashboardTab).value_or("")).value_or(DashboardTab::ai);
}
void Settings::setLastDashboardTab(DashboardTab tab) { defaults_.set(kLastDashboardTab, rawValue(tab)); }

std::vector<DashboardTab> Settings::tabOrder() const {
  std::vector<DashboardTab> tabs;
  const auto append = [&tabs](DashboardTab tab) {
    if (std::ranges::find(tabs, tab) == tabs.end()) tabs.push_back(tab);
  };
  for (const std::string& name : defaults_.stringArray(kTabOrder).value_or(std::vector<std::string>())) {
    if (const auto tab = dashboardTab(name)) append(*tab);
  }
  std::ranges::for_each(kAllDashboardTabs, append);
  return tabs;
}

void Settings::setTabOrder(std::span<const DashboardTab> tabs) {
  auto names = json::array();
  for (const DashboardTab tab : tabs) names.push_back(rawValue(tab));
  defaults_.set(kTabOrder, std::move(names));
}

std::array<bool, kAllDashboardTabs.size()> Settings::shownItems() const {
  return {menuAi(), menuMemory(), menuAwake()};
}

std::vector<DashboardTab> Settings::menuTabs() const {
  std::vector<DashboardTab> tabs = tabOrder();
  std::erase_if(tabs, [shown = shownItems()](DashboardTab tab) { return !shown.at(static_cast<std::size_t>(tab)); });
  return tabs;
}

int Settings::menuPreset() const {
  return static_cast<int>(std::ranges::find(kMenuPresets, shownItems()) - kMenuPresets.begin());
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

}  // namespace nimbo
