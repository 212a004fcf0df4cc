// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

#include "platform/bundle_info.h"
#include "platform/login_item.h"
#include "settings/settings.h"
#include "ui/settings/settings_controls.h"
#include "ui/settings/settings_window.h"

namespace nimbo {

/// The settings window: writes what the user changes straight into the store and says what that
/// concerns. Keeps the page in front and what its owner tells it of updates and widgets; all else is
/// read anew for every look at it. Main thread only.
class SettingsWindowController {
 public:
  using Change = SettingsChange;
  using LoginStatusSource = std::function<LoginItemStatus()>;

  /// `settings`, `window` and `bundle` outlive the controller.
  SettingsWindowController(Settings& settings, SettingsWindow& window, const BundleInfo& bundle,
                           LoginStatusSource loginStatus);
  ~SettingsWindowController();
  SettingsWindowController(const SettingsWindowController&) = delete;
  SettingsWindowController& operator=(const SettingsWindowController&) = delete;

  void show();
  void close();
  [[nodiscard]] bool visible() const { return window_.visible(); }

  /// Shows what the store and the system say now.
  void sync();
  /// The same after something changed elsewhere; costs nothing while nobody can see it.
  void syncIfVisible();

  /// Whether updates are looked for without being asked.
  void setAutomaticUpdates(bool on);
  /// Why the widgets get nothing; absent while they get something.
  void setWidgetMessage(std::optional<std::string> message);

  // What the user does in the window.
  void tabChanged(std::size_t index);
  void changed(const std::string& identifier, bool on);
  void choiceChanged(const std::string& identifier, std::size_t index);
  void pressed(const std::string& identifier);
  void windowDidBecomeKey() { sync(); }

  /// A setting was written.
  std::function<void(const Change&)> onChange;
  // What the owner is asked for. The window shows what came of it.
  std::function<void()> onLogin;
  std::function<void()> onCheckUpdates;
  std::function<void()> onToggleAutomaticUpdates;
  std::function<void()> onEnableClaudeDesktop;

 private:
  void askOwner(const std::string& identifier) const;
  void write(const SettingsCheck& check, bool on);
  void write(const SettingsChoice& choice, std::size_t index);
  void report(const Change& change) const;

  Settings& settings_;
  SettingsWindow& window_;
  const BundleInfo& bundle_;
  LoginStatusSource loginStatus_;
  std::size_t selectedPage_ = 0;
  bool automaticUpdates_ = false;
  std::optional<std::string> widgetMessage_;
};

}  // namespace nimbo
