// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "app/windows/toolkit.h"
#include "platform/bundle_info.h"
#include "platform/login_item.h"
#include "settings/settings.h"
#include "ui/settings/settings_pages.h"
#include "ui/settings/settings_window_controller.h"

namespace nimbo {

/// The settings window from the application's side: made when it is opened for the first time, and kept
/// with its controller from then on. Main thread.
class Preferences {
 public:
  struct Services {
    Toolkit& toolkit;
    Settings& settings;
    const BundleInfo& bundle;
    const LoginItem& loginItem;
  };
  struct Callbacks {
    std::function<void(const SettingsChange&)> changed;
    std::function<void()> toggleLogin;
    std::function<void()> checkForUpdates;
    std::function<void()> toggleAutomaticUpdates;
    std::function<void()> enableClaudeDesktop;
    // What the window cannot read from the settings.
    std::function<bool()> automaticUpdates;
    std::function<std::optional<std::string>()> widgetMessage;
  };

  Preferences(Services services, Callbacks callbacks);

  /// Brings the window to the front, on `page` or else the one it showed last. False when there is no
  /// display.
  bool open(std::optional<SettingsPage> page);
  /// Something that the window shows has changed elsewhere; a closed one costs nothing.
  void update();

 private:
  /// In order of dependence, so that they go in the reverse order.
  struct Parts {
    std::unique_ptr<SettingsWindow> window;
    std::unique_ptr<SettingsWindowController> controller;
  };

  [[nodiscard]] bool create();
  void pushIn();

  Services services_;
  Callbacks callbacks_;
  std::optional<Parts> parts_;
};

}  // namespace nimbo
