// SPDX-License-Identifier: MIT
#include "ui/dashboard_panel.h"

#include <algorithm>

namespace nimbo {
namespace {

/// How long after a press some bars report it as a click: they wait for the button's release.
constexpr std::chrono::milliseconds kClickReportLimit{300};

}  // namespace

DashboardPanel::DashboardPanel(DashboardWindow& window, UserInterface& interface, MainLoop& loop, const Clock& clock)
    : window_(window), interface_(interface), loop_(loop), clock_(clock) {
  window_.setEvents({.escapePressed = [this] { close(); },
                     .clickedOutside = [this](std::optional<Point> place) { clickedOutside(place); },
                     .otherApplicationActivated = [this] { closeByClickElsewhere(); },
                     .closeRequested = [this] { close(); }});
}

DashboardPanel::~DashboardPanel() { window_.setEvents({}); }

void DashboardPanel::show(const std::shared_ptr<StatusItem>& item, std::optional<Rect> reported) {
  if (interface_.screens().empty()) return;
  if (item_.lock() != item) setAnchorHighlighted(false);
  item_ = item;
  // Converted now, while the pointer is still where the click was.
  reported_ = reported ? std::optional(interface_.toPoints(*reported)) : std::nullopt;
  if (!screens_) {
    screens_ = interface_.observeScreens([this] {
      if (visible()) reposition();
    });
  }
  reposition();

  window_.show();
  if (visible()) setAnchorHighlighted(true);
  // A bar takes its own highlight away when the click that opened the panel ends.
  loop_.post(lifetime_.guard([this] {
    if (visible()) setAnchorHighlighted(true);
  }));
}

void DashboardPanel::close() {
  window_.hide();
  setAnchorHighlighted(false);
  item_.reset();
  screens_.reset();
}

void DashboardPanel::reposition() {
  // Without a screen the panel keeps its last place.
  if (const auto anchor = panelAnchor(interface_.screens(), reported_)) anchor_ = anchor;
  if (anchor_) window_.setFrame(panelFrame(*anchor_, contentSize_));
}

void DashboardPanel::setContentSize(Size size) {
  contentSize_ = size;
  if (visible()) reposition();
}

bool DashboardPanel::justClosedBy(const StatusItem& item) const {
  return closedItem_.lock().get() == &item && clock_.uptime() - closedAt_ <= kClickReportLimit;
}

void DashboardPanel::clickedOutside(std::optional<Point> place) {
  // The item reports this click, too, and its owner then closes or moves the panel; unless the window has
  // grabbed the pointer, so that the item never gets the click.
  if (onOwnItem(place) && !window_.grabsPointer()) return;
  closeByClickElsewhere();
}

void DashboardPanel::closeByClickElsewhere() {
  if (!visible()) return;
  closedItem_ = item_;
  closedAt_ = clock_.uptime();
  close();
}

bool DashboardPanel::onOwnItem(std::optional<Point> place) const {
  if (!place || !statusButtons) return false;
  const auto buttons = statusButtons();
  return std::any_of(buttons.begin(), buttons.end(),
                     [&](const Rect& button) { return interface_.toPoints(button).contains(*place); });
}

void DashboardPanel::setAnchorHighlighted(bool highlighted) {
  if (const auto item = item_.lock()) item->setHighlighted(highlighted);
}

}  // namespace nimbo
