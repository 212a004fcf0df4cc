// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>

#include "base/geometry.h"
#include "settings/usage_provider.h"
#include "ui/dashboard/dashboard_content.h"

namespace nimbo {

/// What the user did with the controls of the Keep Awake page.
struct AwakeActions {
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
struct UsageActions {
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
  AwakeActions awake = {};
  UsageActions usage = {};
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

}  // namespace nimbo
