// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "platform/bundle.h"
#include "platform/login_item.h"
#include "platform/wording.h"
#include "settings/settings.h"
#include "ui/settings/settings_controls.h"
#include "ui/settings/settings_pages.h"
#include "ui/settings/settings_window.h"

namespace nimbo {

/// The settings window, made when it is opened for the first time and kept from then on: writes what the
/// user changes straight into the settings and tells its owner. Remembers only which page is in front; all
/// else is read again whenever it is shown. Main thread only.
class SettingsWindowController {
 public:
  /// All outlive the controller.
  struct Sources {
    Settings& settings;
    const BundleInfo& bundle;
    const LoginItem& loginItem;
    const Wording& wording;
  };
  struct Callbacks {
    std::function<std::unique_ptr<SettingsWindow>()> makeWindow;
    std::function<void(const SettingsChange& change)> changed;  ///< a setting was written
    // Requests; the window then shows their outcome.
    std::function<void()> toggleLogin;
    std::function<void()> checkForUpdates;
    std::function<void()> toggleAutomaticUpdates;
    std::function<void()> enableClaudeDesktop;
    /// Whether updates are looked for without being asked; absent where they cannot be.
    std::function<std::optional<bool>()> automaticUpdates;
    /// Whether the user can put the machine to sleep by hand during a session.
    std::function<bool()> manualSleepApplies;
    /// Why the widgets get nothing; absent while they get something.
    std::function<std::optional<std::string>()> widgetMessage;
  };

  SettingsWindowController(Sources sources, Callbacks callbacks)
      : sources_(sources), callbacks_(std::move(callbacks)) {}
  SettingsWindowController(const SettingsWindowController&) = delete;
  SettingsWindowController& operator=(const SettingsWindowController&) = delete;

  /// Brings the window to the front, on `tab` or else on the one that was in front last.
  void show(std::optional<SettingsTab> tab = std::nullopt);
  /// Something that the window shows has changed elsewhere; costs nothing while it is closed.
  void syncIfVisible();

  /// What the user does in the window.
  void handle(const ControlEvent& event);

 private:
  void sync();

  Sources sources_;
  Callbacks callbacks_;
  std::size_t selectedTab_ = 0;
  std::unique_ptr<SettingsWindow> window_;
};

}  // namespace nimbo
