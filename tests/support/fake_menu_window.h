// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "ui/dashboard/menu_window.h"

namespace nimbo {

/// A window without pixels: a test reads what it shows and does to it what a user would.
class FakeMenuWindow final : public MenuWindow {
 public:
  void setListener(ControlListener listener) override { listener_ = std::move(listener); }
  void setEvents(MenuWindowEvents events) override { events_ = std::move(events); }

  void render(const DashboardContent& content) override {
    if (std::exchange(content_, content) != content) ++renders_;
  }

  void setFrame(const Rect& frame) override { frames_.push_back(frame); }
  void hangFrom(const PanelAnchor& anchor) override { anchor_ = anchor; }

  void show() override {
    visible_ = canBeShown;
    ++shows_;
  }

  void hide() override { visible_ = false; }
  [[nodiscard]] bool visible() const override { return visible_; }
  [[nodiscard]] bool grabsPointer() const override { return pointerGrabbed; }
  void keepSecondClick() override { secondClickKept = true; }

  // What a user or the desktop does; ignored while hidden, as a real window has it.

  void pressEscape() { callWhileVisible(events_.escapePressed); }
  void clickOutside(std::optional<Point> place) {
    if (visible_ && events_.clickedOutside) events_.clickedOutside(place);
  }
  void activateOtherApplication() { callWhileVisible(events_.otherApplicationActivated); }
  void requestClose() { callWhileVisible(events_.closeRequested); }

  void findPointer(Point place) {
    if (visible_ && events_.pointerFound) events_.pointerFound(place);
  }

  void act(const ControlEvent& event) const {
    if (listener_) listener_(event);
  }
  /// Empty once nobody listens any more.
  [[nodiscard]] bool hasListeners() const { return static_cast<bool>(events_.escapePressed); }
  [[nodiscard]] const DashboardContent& content() const { return content_; }
  [[nodiscard]] const PanelAnchor& anchor() const { return anchor_; }
  [[nodiscard]] Rect frame() const { return frames_.empty() ? Rect{} : frames_.back(); }
  [[nodiscard]] const std::vector<Rect>& frames() const { return frames_; }
  /// Of another content than the one before.
  [[nodiscard]] int renders() const { return renders_; }
  [[nodiscard]] int shows() const { return shows_; }

  bool canBeShown = true;
  bool pointerGrabbed = false;
  bool secondClickKept = false;

 private:
  void callWhileVisible(const std::function<void()>& event) {
    if (visible_ && event) event();
  }

  ControlListener listener_;
  MenuWindowEvents events_;
  DashboardContent content_;
  std::vector<Rect> frames_;
  PanelAnchor anchor_;
  bool visible_ = false;
  int renders_ = 0;
  int shows_ = 0;
};

}  // namespace nimbo
