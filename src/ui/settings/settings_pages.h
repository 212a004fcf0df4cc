// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "platform/bundle_info.h"
#include "platform/login_item.h"
#include "settings/settings.h"
#include "ui/settings/settings_window_content.h"

namespace nimbo {

/// In the order of the tabs.
enum class SettingsPage { general, monitors, usage, awake };
inline constexpr std::size_t kSettingsPageCount = 4;

/// What the settings window shows; what is referred to is read at once.
struct SettingsFacts {
  const Settings& settings;
  LoginItemStatus loginStatus = LoginItemStatus::notRegistered;
  bool automaticUpdates = false;
  const BundleInfo& bundle;
  const std::optional<std::string>& widgetMessage;  ///< why the widgets get nothing
};

/// The whole window with one of its pages in front.
[[nodiscard]] SettingsWindowContent settingsWindowContent(const SettingsFacts& facts, std::size_t selectedPage);

}  // namespace nimbo
