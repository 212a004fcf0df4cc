// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

#include "platform/bundle.h"
#include "platform/login_item.h"
#include "settings/settings.h"
#include "ui/settings/settings_controls.h"
#include "ui/settings/settings_pages.h"
#include "ui/settings/settings_window.h"

namespace nimbo {

/// The settings window: writes what the user changes straight into the settings and tells its owner.
/// Remembers only which page is in front; all else is read again whenever it is shown. Main thread only.
class SettingsWindowController {
 public:
  /// All outlive the controller.
  struct Sources {
    Settings& settings;
    const BundleInfo& bundle;
    const LoginItem& loginItem;
  };
  struct Callbacks {
    std::function<void(const SettingsChange& change)> changed;  ///< a setting was written
    // Requests; the window then shows their outcome.
    std::function<void()> toggleLogin;
    std::function<void()> checkForUpdates;
    std::function<void()> toggleAutomaticUpdates;
    std::function<void()> enableClaudeDesktop;
    /// Whether updates are looked for without being asked.
    std::function<bool()> automaticUpdates;
    /// Why the widgets get nothing; absent while they get something.
    std::function<std::optional<std::string>()> widgetMessage;
  };

  /// `window` outlives the controller.
  SettingsWindowController(Sources sources, SettingsWindow& window, Callbacks callbacks);
  ~SettingsWindowController();
  SettingsWindowController(const SettingsWindowController&) = delete;
  SettingsWindowController& operator=(const SettingsWindowController&) = delete;

  /// Brings the window to the front, on `tab` or else on the one that was in front last.
  void show(std::optional<SettingsTab> tab = std::nullopt);
  /// Something that the window shows has changed elsewhere; costs nothing while it is closed.
  void syncIfVisible();

  // What the user does in the window.
  void tabChanged(std::size_t index);
  void checkChanged(const std::string& identifier, bool on);
  void choiceChanged(const std::string& identifier, std::size_t index);
  void pressed(const std::string& identifier);

 private:
  void sync();
  void askOwner(const std::string& identifier) const;

  Sources sources_;
  SettingsWindow& window_;
  Callbacks callbacks_;
  std::size_t selectedTab_ = 0;
};

}  // namespace nimbo
