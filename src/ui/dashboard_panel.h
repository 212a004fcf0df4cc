// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "base/lifetime.h"
#include "platform/clock.h"
#include "platform/main_loop.h"
#include "platform/status_bar.h"
#include "ui/dashboard/panel_placement.h"
#include "ui/user_interface.h"

namespace nimbo {

/// The dropdown that holds the dashboard: keeps the window at the status item that was clicked,
/// highlights that item, and closes on Escape, on clicks elsewhere and when another application
/// comes to the front. Everything passed to its constructor outlives it. Main thread only.
class DashboardPanel {
 public:
  DashboardPanel(DashboardWindow& window, UserInterface& interface, MainLoop& loop, const Clock& clock);
  DashboardPanel(const DashboardPanel&) = delete;
  DashboardPanel& operator=(const DashboardPanel&) = delete;
  ~DashboardPanel();

  /// Opens under `item`, or moves there when open. `reported` is where the bar says the item is, in the
  /// units that the bar uses. Nothing happens while no screen is connected.
  void show(const std::shared_ptr<StatusItem>& item, std::optional<Rect> reported);

  void close();

  /// The size that the dashboard needs; an open panel follows at once.
  void setContentSize(Size size);

  [[nodiscard]] bool visible() const { return window_.visible(); }

  /// Whether a click now reported by `item` must be the one that has just closed the panel under that
  /// item. Such a click is not meant to open the panel again.
  [[nodiscard]] bool justClosedBy(const StatusItem& item) const;

  /// Where the bar last reported the program's own status items.
  std::function<std::vector<Rect>()> statusButtons;

 private:
  /// Puts the window where its anchor and size now demand.
  void reposition();
  void clickedOutside(std::optional<Point> place);
  void closeByClickElsewhere();
  [[nodiscard]] bool onOwnItem(std::optional<Point> place) const;
  void setAnchorHighlighted(bool highlighted);

  DashboardWindow& window_;
  UserInterface& interface_;
  MainLoop& loop_;
  const Clock& clock_;

  std::weak_ptr<StatusItem> item_;
  std::optional<Rect> reported_;
  std::optional<PanelAnchor> anchor_;
  Size contentSize_{340, 496};
  Subscription screens_;

  std::weak_ptr<StatusItem> closedItem_;
  std::chrono::duration<double> closedAt_{};
  Lifetime lifetime_;
};

}  // namespace nimbo
