// SPDX-License-Identifier: MIT
#pragma once

namespace nimbo::setting_keys {

// The names under which preferences are stored. They are shared with earlier versions and with what
// users write into the settings file: never rename one.
inline constexpr char kMonitorMemory[] = "monitorMemory";
inline constexpr char kMonitorCpu[] = "monitorCPU";
inline constexpr char kMonitorTemperature[] = "monitorTemperature";
inline constexpr char kCompactMenuBar[] = "compactMenuBar";
inline constexpr char kUsagePrefix[] = "usage.";  ///< followed by the provider's raw value
inline constexpr char kDisplayMode[] = "displayMode";
inline constexpr char kRefreshInterval[] = "refreshInterval";
inline constexpr char kShowChart[] = "showChart";
inline constexpr char kAwakeDuration[] = "awakeDuration";
inline constexpr char kAwakeCustomMinutes[] = "awakeCustomMinutes";
inline constexpr char kAwakeDisplayOn[] = "awakeDisplayOn";
inline constexpr char kAwakeOnlyOnPower[] = "awakeOnlyOnPower";
inline constexpr char kAwakeBatteryFloor[] = "awakeBatteryFloor";
inline constexpr char kMenuAi[] = "menuAI";
inline constexpr char kMenuMemory[] = "menuMemory";
inline constexpr char kMenuAwake[] = "menuAwake";
inline constexpr char kAiMenuRemaining[] = "aiMenuRemaining";
inline constexpr char kAiMenuWindows[] = "aiMenuWindows";
inline constexpr char kMenuRotation[] = "menuRotation";
inline constexpr char kMenuRotationInterval[] = "menuRotationInterval";
inline constexpr char kLastDashboardTab[] = "lastDashboardTab";
inline constexpr char kTabOrder[] = "tabOrder";
inline constexpr char kClaudeFirst[] = "claudeFirst";
inline constexpr char kDidMigrateNimboIdentity[] = "didMigrateNimboIdentity";
inline constexpr char kEnableAutomaticChecks[] = "SUEnableAutomaticChecks";
inline constexpr char kAutomaticallyUpdate[] = "SUAutomaticallyUpdate";

}  // namespace nimbo::setting_keys
