// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/geometry.h"
#include "base/subscription.h"
#include "platform/main_loop.h"
#include "platform/workspace.h"
#include "ui/dashboard/dashboard_window.h"
#include "ui/dashboard/panel_placement.h"
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

/// An alert on the screen; destroying it takes it away unanswered. Main thread only.
class Alert {
 public:
  virtual ~Alert() = default;

  /// Brings it to the front once more.
  virtual void present() = 0;
};

/// The toolkit, loaded when the first window is wanted and kept for the rest of the run.
class UserInterface {
 public:
  virtual ~UserInterface() = default;

  [[nodiscard]] virtual OuterLoop& loop() = 0;
  /// The primary screen first; empty while no screen is connected.
  [[nodiscard]] virtual std::vector<Screen> screens() const = 0;
  /// A screen came, went, or changed its frames.
  [[nodiscard]] virtual Subscription observeScreens(std::function<void()> changed) = 0;
  /// The place that another program has reported, such as that of a clicked status item, in points. Some
  /// programs report pixels, others points: on a scaled screen the pointer, which is there, tells which. Once
  /// it has moved away, what it told last holds.
  [[nodiscard]] virtual Rect toPoints(const Rect& reported) { return reported; }
  virtual void setAppearance(Appearance appearance) = 0;
  /// The application's own menu: its entries' keys work in every ordinary window of the program. A
  /// system with a menu bar for the application in front shows it there.
  virtual void setMainMenu(const MainMenu& menu) = 0;
  [[nodiscard]] virtual std::unique_ptr<DashboardWindow> makeDashboardWindow() = 0;
  [[nodiscard]] virtual std::unique_ptr<SettingsWindow> makeSettingsWindow() = 0;

  /// Brings the program to the front with an alert. `answered` gets the index of the button, once,
  /// from the main loop; it may destroy the alert.
  [[nodiscard]] virtual std::unique_ptr<Alert> showAlert(const AlertContent& content,
                                                         std::function<void(std::size_t button)> answered) = 0;
};

enum class DisplayNeed {
  required,  ///< a user is to see the windows
  optional,  ///< without a display the windows exist in memory only
};

/// The one function the toolkit module exports, under the name kUserInterfaceEntryName. Null when
/// no display can be reached; the program goes on without windows and may ask again.
using UserInterfaceEntry = UserInterface* (*)(DisplayNeed need);
inline constexpr const char* kUserInterfaceEntryName = "nimboMakeUserInterface";

}  // namespace nimbo
