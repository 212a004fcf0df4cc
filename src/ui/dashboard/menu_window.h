// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>

#include "base/geometry.h"
#include "ui/dashboard/dashboard_content.h"
#include "ui/dashboard/panel_placement.h"

namespace nimbo {

/// What happens around an open menu window. Called only while it is visible.
struct MenuWindowEvents {
  /// Escape, or the desktop's key for closing a window, went down in this application; no control sees it.
  std::function<void()> escapePressed;
  /// A mouse button went down outside the window; the place in global coordinates where it is known.
  std::function<void(std::optional<Point>)> clickedOutside;
  /// Another application came to the front.
  std::function<void()> otherApplicationActivated;
  /// The window system asks the window to close; it does not close by itself.
  std::function<void()> closeRequested;
  /// The place of the pointer is known now, and was not when a window was opened that `hangFrom` a guess.
  std::function<void(Point)> pointerFound = {};
};

/// A borderless window above all others that holds the dashboard. Frames are global coordinates in
/// points, y downwards. Main thread only.
class MenuWindow {
 public:
  virtual ~MenuWindow() = default;

  /// Gets what the user does with the controls.
  virtual void setListener(ControlListener listener) = 0;
  virtual void setEvents(MenuWindowEvents events) = 0;

  /// Shows `content`; touches only what differs from what is shown.
  virtual void render(const DashboardContent& content) = 0;

  virtual void setFrame(const Rect& frame) = 0;
  /// What the frame that is set next was made for. A window system that alone knows its panels moves the window clear
  /// of them.
  virtual void hangFrom(const PanelAnchor& /*anchor*/) {}
  /// Brings it to the front with the keyboard focus.
  virtual void show() = 0;
  virtual void hide() = 0;
  [[nodiscard]] virtual bool visible() const = 0;

  /// Whether the window has the pointer to itself while it is visible, so that the clicks it reports
  /// from outside reach nobody else.
  [[nodiscard]] virtual bool grabsPointer() const { return false; }

  /// Before it is hidden because of a click that nobody else got: nobody gets the second one of a double click either.
  virtual void keepSecondClick() {}
};

}  // namespace nimbo
