// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "base/geometry.h"
#include "base/subscription.h"
#include "ui/controls/content_window.h"
#include "ui/dashboard/menu_window.h"
#include "ui/dashboard/panel_placement.h"

namespace nimbo {

/// The screens as the toolkit sees them. Main thread only.
class Screens {
 public:
  virtual ~Screens() = default;

  /// The primary screen first; empty while no screen is connected.
  [[nodiscard]] virtual std::vector<Screen> screens() const = 0;
  /// A screen came, went, or changed its frames.
  [[nodiscard]] virtual Subscription observeScreens(std::function<void()> changed) = 0;
  /// The place that another program has reported, such as that of a clicked status item, in points. Some
  /// programs report pixels, others points: on a scaled screen the pointer, which is there, tells which. Once
  /// it has moved away, what it told last holds.
  [[nodiscard]] virtual Rect toPoints(const Rect& reported) { return reported; }
  /// Where the pointer is, in points; absent where the window system does not tell over other programs' windows.
  [[nodiscard]] virtual std::optional<Point> pointer() const { return std::nullopt; }
};

/// The dropdown that holds the dashboard: keeps its window at the status item that was clicked, and closes on Escape,
/// on clicks elsewhere and when another application comes to the front. Main thread only.
class DashboardPanel final : public ContentWindow<DashboardContent> {
 public:
  /// `screens` outlives it.
  DashboardPanel(std::unique_ptr<MenuWindow> window, Screens& screens);
  DashboardPanel(const DashboardPanel&) = delete;
  DashboardPanel& operator=(const DashboardPanel&) = delete;
  ~DashboardPanel() override;

  void setEvents(WindowEvents events) override;
  /// An open panel follows the content's size at once.
  void render(const DashboardContent& content) override;
  /// Nothing happens while no screen is connected.
  void show(const WindowPlace& place) override;
  void hide() override { close(ClosedBy::other); }
  [[nodiscard]] bool visible() const override { return window_->visible(); }

 private:
  /// Puts the window where its anchor and size now demand.
  void reposition();
  void clickedOutside(std::optional<Point> place);
  void pointerFound(Point place);
  void close(ClosedBy by);
  [[nodiscard]] bool onOwnItem(std::optional<Point> place) const;

  const std::unique_ptr<MenuWindow> window_;
  Screens& screens_;
  std::function<void(ClosedBy by)> closed_;

  std::optional<Rect> reported_;
  std::optional<Point> pointer_;
  std::vector<Rect> ownItems_;
  std::optional<PanelAnchor> anchor_;
  Size contentSize_{340, 496};
  Subscription screensChanged_;
};

}  // namespace nimbo
