// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/windows_process.h"
#include "platform/workspace.h"
#include "ui/controls/content_window.h"
#include "ui/dashboard/dashboard_content.h"
#include "ui/main_menu.h"
#include "ui/settings/settings_window.h"

namespace nimbo {

/// A question in a window of its own.
struct AlertContent {
  std::string title;  ///< the question in bold
  std::string text;
  std::vector<std::string> buttons;  ///< the first is the default one, pressed by Return
  std::size_t cancel = 0;            ///< the one pressed by Escape and closing
  bool operator==(const AlertContent&) const = default;
};

/// Gets the index of the button. Absent when the alert could not be shown, as without a display.
using AlertAnswer = std::function<void(std::optional<std::size_t> button)>;

/// An alert on the screen; destroying it takes it away unanswered. Main thread only.
class Alert {
 public:
  virtual ~Alert() = default;

  /// Brings it to the front once more.
  virtual void present() = 0;
};

/// A window that hangs from a status item and closes by itself as menus do.
using DashboardWindow = ContentWindow<DashboardContent>;

/// All windows of the program, as plain contents one way and what the user does the other. Outlives what it makes.
/// Main thread only.
class UserInterface {
 public:
  virtual ~UserInterface() = default;

  virtual void setAppearance(Appearance appearance) = 0;
  /// The keys of the application's own menu work in every ordinary window of the program. A system with a menu bar for
  /// the application in front shows the menu there.
  virtual void setMenuListener(MenuListener chosen) = 0;
  [[nodiscard]] virtual std::unique_ptr<DashboardWindow> makeDashboardWindow() = 0;
  [[nodiscard]] virtual std::unique_ptr<SettingsWindow> makeSettingsWindow() = 0;

  /// Brings the program to the front with an alert, which is modal: until it is answered, other windows do nothing and
  /// opening one brings the alert to the front instead. `answered` is called once, from the main loop; it may destroy
  /// the alert.
  [[nodiscard]] virtual std::unique_ptr<Alert> showAlert(const AlertContent& content, AlertAnswer answered) = 0;
};

class PlatformServices;

/// Implemented by each way to have windows, of which the program links its system's.
[[nodiscard]] std::unique_ptr<UserInterface> makeUserInterface(PlatformServices& platform, DisplayNeed need);

}  // namespace nimbo
