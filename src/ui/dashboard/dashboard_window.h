// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "base/geometry.h"
#include "ui/dashboard/dashboard_content.h"

namespace nimbo {

/// What the dashboard hangs from, as the bar reports it: in the bar's own units.
struct DashboardPlace {
  std::optional<Rect> item;    ///< the status item that was clicked
  std::vector<Rect> ownItems;  ///< all of this program, as far as they are known
};

enum class ClosedBy {
  user,           ///< Escape, the window system; or no screen was there to open it on
  clickElsewhere  ///< also another application that came to the front
};

struct DashboardEvents {
  ControlListener acted = {};  ///< what the user does with the controls; texts with every letter
  /// The window has closed by itself, not by `hide`.
  std::function<void(ClosedBy by)> closed = {};
};

/// The dashboard as a window that hangs from a status item and closes by itself as menus do. Main thread only.
class DashboardWindow {
 public:
  virtual ~DashboardWindow() = default;

  virtual void setEvents(DashboardEvents events) = 0;

  /// Shows `content`; touches only what differs from what is shown.
  virtual void render(const DashboardContent& content) = 0;

  /// Opens it, or moves it there when it is open, in front and with the keyboard focus.
  virtual void show(const DashboardPlace& place) = 0;
  virtual void hide() = 0;
  [[nodiscard]] virtual bool visible() const = 0;

  /// Makes all of it, with the content, without showing it.
  virtual void prepare() {}
  /// False when that failed after all.
  [[nodiscard]] virtual bool prepared() const { return true; }
};

}  // namespace nimbo
