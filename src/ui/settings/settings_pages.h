// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "platform/bundle.h"
#include "platform/login_item.h"
#include "platform/wording.h"
#include "settings/settings.h"
#include "ui/settings/settings_window.h"

namespace nimbo {

/// From left to right.
enum class SettingsTab { general, monitors, usage, awake };
inline constexpr std::size_t kSettingsTabCount = 4;

/// What the settings window shows.
struct SettingsFacts {
  const Settings& settings;
  const BundleInfo& bundle;
  const Wording& wording;
  LoginItemStatus loginStatus = LoginItemStatus::notRegistered;
  std::optional<bool> automaticUpdates;      ///< absent in a build that names no feed
  bool manualSleepApplies = false;           ///< during a session
  std::optional<std::string> widgetMessage;  ///< why the widgets get nothing
};

/// The whole window with the page of one tab in front.
[[nodiscard]] SettingsWindowContent settingsWindowContent(const SettingsFacts& facts, std::size_t selectedTab);

}  // namespace nimbo
