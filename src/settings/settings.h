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
#include "settings/usage_provider.h"

namespace nimbo {

// Values that are accepted, in the order in which they are offered; any other reads as the default.
inline constexpr std::array<std::int64_t, 4> kRefreshIntervals{2, 5, 10, 30};                       // seconds
inline constexpr std::array<std::int64_t, 5> kBatteryFloors{0, 10, 20, 30, 50};                     // percent
inline constexpr std::array<std::int64_t, 8> kRotationIntervals{5, 10, 15, 30, 60, 120, 300, 600};  // seconds

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

  [[nodiscard]] bool monitorMemory() const;
  void setMonitorMemory(bool on);
  [[nodiscard]] bool monitorCpu() const;
  void setMonitorCpu(bool on);
  [[nodiscard]] bool monitorTemperature() const;
  void setMonitorTemperature(bool on);
  [[nodiscard]] bool compactMenuBar() const;
  void setCompactMenuBar(bool on);
  [[nodiscard]] bool usageEnabled(UsageProvider provider) const;
  void setUsageEnabled(UsageProvider provider, bool on);
  /// Kept because earlier versions stored it; nothing depends on it.
  [[nodiscard]] std::string displayMode() const;
  void setDisplayMode(std::string_view mode);
  /// 2, 5, 10 or 30 s.
  [[nodiscard]] std::chrono::seconds refreshInterval() const;
  void setRefreshInterval(std::chrono::seconds interval);
  [[nodiscard]] bool showChart() const;
  void setShowChart(bool on);

  /// A fixed length in seconds, or 0 until stopped, -1 the custom length, -2 until a chosen date and time.
  [[nodiscard]] std::int64_t awakeDuration() const;
  void setAwakeDuration(std::int64_t duration);
  /// As stored, also out of range.
  [[nodiscard]] std::int64_t awakeCustomMinutes() const;
  void setAwakeCustomMinutes(std::int64_t minutes);
  [[nodiscard]] bool awakeDisplayOn() const;
  void setAwakeDisplayOn(bool on);
  [[nodiscard]] bool awakeOnlyOnPower() const;
  void setAwakeOnlyOnPower(bool on);
  /// 0 (never), 10, 20, 30 or 50 percent.
  [[nodiscard]] int awakeBatteryFloor() const;
  void setAwakeBatteryFloor(int percent);

  [[nodiscard]] bool menuAi() const;
  void setMenuAi(bool on);
  [[nodiscard]] bool menuMemory() const;
  void setMenuMemory(bool on);
  [[nodiscard]] bool menuAwake() const;
  void setMenuAwake(bool on);
  [[nodiscard]] bool aiMenuRemaining() const;
  void setAiMenuRemaining(bool on);
  /// 0 the short limit window, anything else the weekly one.
  [[nodiscard]] std::int64_t aiMenuWindows() const;
  void setAiMenuWindows(std::int64_t windows);
  [[nodiscard]] bool menuRotation() const;
  void setMenuRotation(bool on);
  /// 5, 10, 15, 30, 60, 120, 300 or 600 s.
  [[nodiscard]] std::chrono::seconds menuRotationInterval() const;
  void setMenuRotationInterval(std::chrono::seconds interval);

  [[nodiscard]] DashboardTab lastDashboardTab() const;
  void setLastDashboardTab(DashboardTab tab);
  /// Always every tab exactly once.
  [[nodiscard]] std::vector<DashboardTab> tabOrder() const;
  void setTabOrder(std::span<const DashboardTab> tabs);
  [[nodiscard]] bool claudeFirst() const;
  void setClaudeFirst(bool on);

  /// The tabs whose status item is switched on, in tab order.
  [[nodiscard]] std::vector<DashboardTab> menuTabs() const;
  /// Which status items are on: 0 all, 1 AI only, 2 memory only, 3 Keep Awake only, 4 another choice.
  [[nodiscard]] int menuPreset() const;
  /// Only 0 to 3 change anything.
  void setMenuPreset(int preset);
  [[nodiscard]] std::vector<UsageProvider> providerOrder() const;
  void setProviderOrder(std::span<const UsageProvider> providers);

 private:
  [[nodiscard]] bool isOn(std::string_view key) const;
  [[nodiscard]] std::int64_t number(std::string_view key) const;
  void registerDefaults();

  UserDefaults& defaults_;
};

}  // namespace nimbo
