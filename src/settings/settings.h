// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/user_defaults.h"
#include "settings/dashboard_tab.h"
#include "settings/setting_keys.h"
#include "settings/usage_provider.h"

namespace nimbo {

// Values that are accepted, in the order in which they are offered; any other reads as the default.
inline constexpr std::array<std::int64_t, 4> kRefreshIntervals{2, 5, 10, 30};                       // seconds
inline constexpr std::array<std::int64_t, 5> kBatteryFloors{0, 10, 20, 30, 50};                     // percent
inline constexpr std::array<std::int64_t, 8> kRotationIntervals{5, 10, 15, 30, 60, 120, 300, 600};  // seconds

/// Copies the preferences of the previous identity that the current domain does not hold yet, and marks
/// the current domain so that this happens once. The previous domain is only read.
void migratePreviousIdentity(UserDefaultsDomains& domains);

/// The user's preferences. Holds no value itself: every getter reads the defaults and validates, so a
/// hand-edited value out of range reads as the fallback. Tells nobody about changes: that is for who makes one.
class Settings {
 public:
  /// Over any domain; registers the defaults and sees to it that at least one monitor is on.
  explicit Settings(UserDefaults& defaults);

  /// Over the application's own domain: first migrates the previous identity's preferences once, when
  /// `bundleIdentifier` is exactly the current identity.
  Settings(UserDefaults& standardDefaults, UserDefaultsDomains& domains,
           const std::optional<std::string>& bundleIdentifier);

  [[nodiscard]] bool monitorMemory() const { return isOn(setting_keys::kMonitorMemory); }
  void setMonitorMemory(bool on) { write(setting_keys::kMonitorMemory, on); }
  [[nodiscard]] bool monitorCpu() const { return isOn(setting_keys::kMonitorCpu); }
  void setMonitorCpu(bool on) { write(setting_keys::kMonitorCpu, on); }
  [[nodiscard]] bool monitorTemperature() const { return isOn(setting_keys::kMonitorTemperature); }
  void setMonitorTemperature(bool on) { write(setting_keys::kMonitorTemperature, on); }
  [[nodiscard]] bool compactMenuBar() const { return isOn(setting_keys::kCompactMenuBar); }
  void setCompactMenuBar(bool on) { write(setting_keys::kCompactMenuBar, on); }
  [[nodiscard]] bool usageEnabled(UsageProvider provider) const;
  void setUsageEnabled(UsageProvider provider, bool on);
  /// Kept because earlier versions stored it; nothing depends on it.
  [[nodiscard]] std::string displayMode() const;
  void setDisplayMode(std::string_view mode);
  /// 2, 5, 10 or 30 s.
  [[nodiscard]] std::chrono::seconds refreshInterval() const;
  void setRefreshInterval(std::chrono::seconds interval) { write(setting_keys::kRefreshInterval, interval.count()); }
  [[nodiscard]] bool showChart() const { return isOn(setting_keys::kShowChart); }
  void setShowChart(bool on) { write(setting_keys::kShowChart, on); }

  /// A fixed length in seconds, or 0 until stopped, -1 the custom length, -2 until a chosen date and time.
  [[nodiscard]] std::int64_t awakeDuration() const;
  void setAwakeDuration(std::int64_t duration) { write(setting_keys::kAwakeDuration, duration); }
  /// As stored, also out of range.
  [[nodiscard]] std::int64_t awakeCustomMinutes() const { return number(setting_keys::kAwakeCustomMinutes); }
  void setAwakeCustomMinutes(std::int64_t minutes) { write(setting_keys::kAwakeCustomMinutes, minutes); }
  [[nodiscard]] bool awakeDisplayOn() const { return isOn(setting_keys::kAwakeDisplayOn); }
  void setAwakeDisplayOn(bool on) { write(setting_keys::kAwakeDisplayOn, on); }
  [[nodiscard]] bool awakeOnlyOnPower() const { return isOn(setting_keys::kAwakeOnlyOnPower); }
  void setAwakeOnlyOnPower(bool on) { write(setting_keys::kAwakeOnlyOnPower, on); }
  /// 0 (never), 10, 20, 30 or 50 percent.
  [[nodiscard]] int awakeBatteryFloor() const;
  void setAwakeBatteryFloor(int percent) { write(setting_keys::kAwakeBatteryFloor, std::int64_t{percent}); }

  [[nodiscard]] bool menuAi() const { return isOn(setting_keys::kMenuAi); }
  void setMenuAi(bool on) { write(setting_keys::kMenuAi, on); }
  [[nodiscard]] bool menuMemory() const { return isOn(setting_keys::kMenuMemory); }
  void setMenuMemory(bool on) { write(setting_keys::kMenuMemory, on); }
  [[nodiscard]] bool menuAwake() const { return isOn(setting_keys::kMenuAwake); }
  void setMenuAwake(bool on) { write(setting_keys::kMenuAwake, on); }
  [[nodiscard]] bool aiMenuRemaining() const { return isOn(setting_keys::kAiMenuRemaining); }
  void setAiMenuRemaining(bool on) { write(setting_keys::kAiMenuRemaining, on); }
  /// 0 the short limit window, anything else the weekly one.
  [[nodiscard]] std::int64_t aiMenuWindows() const { return number(setting_keys::kAiMenuWindows); }
  void setAiMenuWindows(std::int64_t windows) { write(setting_keys::kAiMenuWindows, windows); }
  [[nodiscard]] bool menuRotation() const { return isOn(setting_keys::kMenuRotation); }
  void setMenuRotation(bool on) { write(setting_keys::kMenuRotation, on); }
  /// 5, 10, 15, 30, 60, 120, 300 or 600 s.
  [[nodiscard]] std::chrono::seconds menuRotationInterval() const;
  void setMenuRotationInterval(std::chrono::seconds interval) {
    write(setting_keys::kMenuRotationInterval, interval.count());
  }

  [[nodiscard]] DashboardTab lastDashboardTab() const;
  void setLastDashboardTab(DashboardTab tab);
  /// Always every tab exactly once.
  [[nodiscard]] std::vector<DashboardTab> tabOrder() const;
  void setTabOrder(std::span<const DashboardTab> tabs);
  [[nodiscard]] bool claudeFirst() const { return isOn(setting_keys::kClaudeFirst); }
  void setClaudeFirst(bool on) { write(setting_keys::kClaudeFirst, on); }

  /// The tabs whose status item is switched on, in tab order.
  [[nodiscard]] std::vector<DashboardTab> menuTabs() const;
  /// Which status items are on: 0 all, 1 AI only, 2 memory only, 3 Keep Awake only, 4 another choice.
  [[nodiscard]] int menuPreset() const;
  /// Only 0 to 3 change anything.
  void setMenuPreset(int preset);
  [[nodiscard]] std::vector<UsageProvider> providerOrder() const;

 private:
  [[nodiscard]] bool isOn(std::string_view key) const;
  [[nodiscard]] std::int64_t number(std::string_view key) const;
  void write(std::string_view key, bool on);
  void write(std::string_view key, std::int64_t value);
  void registerDefaults();
  /// Whether each tab's status item is switched on, in the tabs' default order.
  [[nodiscard]] std::array<bool, kAllDashboardTabs.size()> shownItems() const;

  UserDefaults& defaults_;
};

}  // namespace nimbo
