// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <variant>

#include "support/control_events.h"
#include "ui/user_interface.h"

namespace nimbo {

/// A settings window without pixels. A test does to it what a user would, which reaches nobody while the
/// window is hidden, nor from a control that is not on the page in front or cannot be used.
class FakeSettingsWindow final : public SettingsWindow {
 public:
  void setEvents(WindowEvents events) override { events_ = std::move(events); }

  void render(const SettingsWindowContent& content) override {
    content_ = content;
    ++renders_;
  }

  void show(const WindowPlace& /*place*/ = {}) override {
    visible_ = canBeShown;
    ++shows_;
    becomeKey();
  }
  void hide() override { close(); }
  [[nodiscard]] bool visible() const override { return visible_; }

  // What a user does; whether anybody heard it.

  bool close() {
    const bool heard = std::exchange(visible_, false) && events_.closed;
    if (heard) events_.closed(ClosedBy::other);
    return heard;
  }
  bool selectTab(std::size_t index) {
    return visible_ && index < content_.tabs.labels.size() && report(chosen("tabs", index));
  }
  /// Flips a check box.
  bool click(const std::string& identifier) {
    const auto* const box = usable<CheckBoxContent>(identifier);
    return box != nullptr && report(switched(identifier, !box->on));
  }
  bool choose(const std::string& identifier, std::size_t index) {
    const auto* const list = usable<PopUpContent>(identifier);
    return list != nullptr && index < list->items.size() && report(chosen(identifier, index));
  }
  bool press(const std::string& identifier) {
    return usable<ButtonContent>(identifier) != nullptr && report(pressed(identifier));
  }
  /// The user comes back to it from another window.
  bool becomeKey() {
    if (!visible_ || !events_.becameKey) return false;
    events_.becameKey();
    return true;
  }

  /// A control of any page; null when no such control is shown.
  template <class Control>
  [[nodiscard]] const Control* find(const std::string& identifier) const {
    for (const auto& page : content_.pages) {
      if (const auto* const control = findOn<Control>(page, identifier)) return control;
    }
    return nullptr;
  }

  [[nodiscard]] const SettingsWindowContent& content() const { return content_; }
  [[nodiscard]] int renders() const { return renders_; }
  [[nodiscard]] int shows() const { return shows_; }

  bool canBeShown = true;

 private:
  template <class Control>
  [[nodiscard]] static const Control* findOn(const SettingsPageContent& page, const std::string& identifier) {
    for (const auto& candidate : page.controls) {
      const auto* const control = std::get_if<Control>(&candidate);
      if (control != nullptr && control->identifier == identifier) return control;
    }
    return nullptr;
  }

  /// Null unless a user can reach the control now.
  template <class Control>
  [[nodiscard]] const Control* usable(const std::string& identifier) const {
    if (!visible_) return nullptr;
    for (const auto& page : content_.pages) {
      const auto* const control = page.visible ? findOn<Control>(page, identifier) : nullptr;
      if (control != nullptr && control->visible && control->enabled) return control;
    }
    return nullptr;
  }

  bool report(const ControlEvent& event) {
    if (events_.acted) events_.acted(event);
    return static_cast<bool>(events_.acted);
  }

  WindowEvents events_;
  SettingsWindowContent content_;
  bool visible_ = false;
  int renders_ = 0;
  int shows_ = 0;
};

}  // namespace nimbo
