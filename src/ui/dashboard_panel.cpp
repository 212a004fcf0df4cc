// SPDX-License-Identifier: MIT
#include "ui/dashboard_panel.h"

#include <algorithm>
#include <utility>

namespace nimbo {

DashboardPanel::DashboardPanel(std::unique_ptr<MenuWindow> window, Screens& screens)
    : window_(std::move(window)), screens_(screens) {
  window_->setEvents({.escapePressed = [this] { close(ClosedBy::other); },
                      .clickedOutside = [this](std::optional<Point> place) { clickedOutside(place); },
                      .otherApplicationActivated = [this] { close(ClosedBy::clickElsewhere); },
                      .closeRequested = [this] { close(ClosedBy::other); },
                      .pointerFound = [this](Point place) { pointerFound(place); }});
}

DashboardPanel::~DashboardPanel() { window_->setEvents({}); }

void DashboardPanel::setEvents(WindowEvents events) {
  window_->setListener(std::move(events.acted));
  closed_ = std::move(events.closed);
}

void DashboardPanel::render(const DashboardContent& content) {
  window_->render(content);
  contentSize_ = content.size;
  if (visible()) reposition();
}

void DashboardPanel::show(const WindowPlace& place) {
  if (screens_.screens().empty()) return;
  ownItems_ = place.ownItems;
  // Now, while the pointer is still where the click was.
  pointer_ = screens_.pointer();
  reported_ = place.item ? std::optional(screens_.toPoints(*place.item)) : std::nullopt;
  if (!screensChanged_) {
    screensChanged_ = screens_.observeScreens([this] {
      if (visible()) reposition();
    });
  }
  reposition();
  window_->show();
}

void DashboardPanel::reposition() {
  // Without a screen the panel keeps its last place.
  if (const auto anchor = panelAnchor(screens_.screens(), reported_, pointer_)) anchor_ = anchor;
  if (!anchor_) return;
  window_->hangFrom(*anchor_);
  window_->setFrame(panelFrame(*anchor_, contentSize_));
}

void DashboardPanel::pointerFound(Point place) {
  if (!reported_) return;
  pointer_ = place;
  reposition();
}

void DashboardPanel::clickedOutside(std::optional<Point> place) {
  // A window that has grabbed the pointer keeps the click from everybody else. Otherwise the item reports it, too, and
  // its owner then closes or moves the panel.
  if (!window_->grabsPointer()) {
    if (!onOwnItem(place)) close(ClosedBy::clickElsewhere);
    return;
  }
  // Where a double click opens the dashboard, the second one alone would open the item's menu.
  if (onOwnItem(place)) window_->keepSecondClick();
  close(ClosedBy::other);
}

void DashboardPanel::close(ClosedBy by) {
  if (!visible()) return;
  window_->hide();
  screensChanged_.reset();
  if (const auto closed = closed_) closed(by);
}

bool DashboardPanel::onOwnItem(std::optional<Point> place) const {
  return place &&
         std::ranges::any_of(ownItems_, [&](const Rect& item) { return screens_.toPoints(item).contains(*place); });
}

}  // namespace nimbo
