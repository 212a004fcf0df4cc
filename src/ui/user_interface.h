// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/geometry.h"
#include "base/subscription.h"
#include "platform/main_loop.h"
#include "platform/workspace.h"
#include "settings/usage_provider.h"
#include "ui/dashboard_content.h"
#include "ui/main_menu.h"
#include "ui/settings_window_content.h"

namespace nimbo {

/// What the user did with the controls of the Keep Awake page.
struct AwakePageActions {
  std::function<void()> startOrStop;
  std::function<void()> extend;
  std::function<void(std::size_t index)> selectDuration;
  std::function<void(const std::string& text)> editMinutes;  ///< with every letter
  std::function<void(std::chrono::system_clock::time_point date)> pickDate;
  std::function<void(bool on)> switchDisplay;
  std::function<void(bool on)> switchPlugged;
  std::function<void(std::size_t index)> selectBatteryFloor;
  std::function<void()> turnDisplayOff;
};

/// What the user did with the controls of the AI page.
struct UsagePageActions {
  std::function<void()> refresh;
  std::function<void()> configure;  ///< from below the cards and from a card without a reading
  std::function<void(UsageProvider provider)> openLink;
};

/// What the user did with the dashboard's controls.
struct DashboardActions {
  std::function<void(std::size_t index)> selectTab;
  std::function<void()> openSettings;
  std::function<void()> showMore;
  std::function<void()> showLess;
  std::function<void()> openActivityMonitor;
  std::function<void()> quit;
  AwakePageActions awake = {};
  UsagePageActions usage = {};
};

enum class Key { escape, other };

/// What happens around an open menu window. Called only while it is visible.
struct MenuWindowEvents {
  /// A key went down in this application, before any control sees it; true swallows it.
  std::function<bool(Key)> keyDown;
  /// A mouse button went down outside the window; the place in global coordinates where it is known.
  std::function<void(std::optional<Point>)> clickedOutside;
  /// Another application came to the front.
  std::function<void()> otherApplicationActivated;
  /// The window system asks the window to close; it does not close by itself.
  std::function<void()> closeRequested;
};

/// A borderless window above all others that holds the dashboard. Frames are global coordinates in
/// points, y downwards. Main thread only.
class DashboardWindow {
 public:
  virtual ~DashboardWindow() = default;

  virtual void setActions(DashboardActions actions) = 0;
  virtual void setEvents(MenuWindowEvents events) = 0;

  /// Shows `content`; touches only what differs from what is shown.
  virtual void render(const DashboardContent& content) = 0;

  virtual void setFrame(const Rect& frame) = 0;
  /// Brings it to the front with the keyboard focus.
  virtual void show() = 0;
  virtual void hide() = 0;
  [[nodiscard]] virtual bool visible() const = 0;

  /// Whether the window has the pointer to itself while it is visible, so that the clicks it reports
  /// from outside reach nobody else.
  [[nodiscard]] virtual bool grabsPointer() const { return false; }
};

/// What the user did in the settings window.
struct SettingsWindowActions {
  std::function<void(std::size_t index)> selectTab;
  std::function<void(const std::string& identifier, bool on)> check;
  std::function<void(const std::string& identifier, std::size_t index)> choose;
  std::function<void(const std::string& identifier)> press;
  /// The window got the keyboard focus.
  std::function<void()> becameKey;
};

/// An ordinary window with a title bar that can be closed and minimised, but not resized. Closing hides
/// it. Main thread only.
class SettingsWindow {
 public:
  virtual ~SettingsWindow() = default;

  virtual void setActions(SettingsWindowActions actions) = 0;
  /// Shows `content`; touches only what differs from what is shown.
  virtual void render(const SettingsWindowContent& content) = 0;

  /// Brings it to the front with the keyboard focus; the first time in the middle of the screen.
  virtual void show() = 0;
  virtual void close() = 0;
  [[nodiscard]] virtual bool visible() const = 0;
};

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

struct Screen {
  Rect frame;
  Rect visibleFrame;  ///< without panels and docks
  bool operator==(const Screen&) const = default;
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
  /// Where something is that another program has reported, such as a status item that was clicked. Some
  /// programs count in the window system's own pixels and some in points; on a scaled screen the pointer
  /// tells which, and where it is elsewhere by now, what it told last.
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
  required,  ///< the windows are for somebody to see
  optional,  ///< without a display everything is made in memory only
};

/// The one function the toolkit module exports, under the name kUserInterfaceEntryName. Null when
/// no display can be reached; the program goes on without windows and may ask again.
using UserInterfaceEntry = UserInterface* (*)(DisplayNeed need);
inline constexpr const char* kUserInterfaceEntryName = "nimboMakeUserInterface";

}  // namespace nimbo
