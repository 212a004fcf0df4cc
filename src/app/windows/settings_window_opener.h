// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>

#include "app/windows/toolkit.h"
#include "platform/platform_services.h"
#include "settings/settings.h"
#include "ui/settings/settings_window_controller.h"

namespace nimbo {

/// Makes the settings window when it is opened for the first time, and keeps it with its controller from
/// then on. Main thread.
class SettingsWindowOpener {
 public:
  using Callbacks = SettingsWindowController::Callbacks;

  /// `platform`, `toolkit` and `settings` outlive it.
  SettingsWindowOpener(PlatformServices& platform, Toolkit& toolkit, Settings& settings, Callbacks callbacks);

  /// Brings the window to the front, on `tab` or else the one it showed last, if there is a display.
  void open(std::optional<SettingsTab> tab);
  /// Something that the window shows has changed elsewhere; a closed one costs nothing.
  void update();

 private:
  PlatformServices& platform_;
  Toolkit& toolkit_;
  Settings& settings_;
  Callbacks callbacks_;
  std::unique_ptr<SettingsWindow> window_;
  std::unique_ptr<SettingsWindowController> controller_;
};

}  // namespace nimbo
