// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <utility>
#include <vector>

#include "ui/qt/controls/fitted_label.h"

namespace nimbo {

/// Calls a copy of `action`, if there is one, because it may give the window another.
template <class... Parameters, class... Values>
void call(const std::function<void(Parameters...)>& action, const Values&... values) {
  if (const auto act = action) act(values...);
}

/// The widgets of a page, each with the part of the page's content that it shows: a field, or a function
/// that returns it. The order in which they are made is the one in
/// which Tab visits them. They stand directly in `parent`, which owns them.
template <class Content>
class PageControls {
 public:
  /// `listener` gets what the user does with the controls.
  PageControls(const Theme& theme, QWidget& parent, ControlListener listener)
      : theme_(theme), parent_(parent), listener_(std::move(listener)) {}

  template <class Part>
  FittedLabel* label(const char* name, Part part) {
    return bind(part, new FittedLabel(theme_, &parent_, name));
  }

  template <class Widget, class Part>
  Widget* control(Part part) {
    return bind(part, new Widget(theme_, listener_, &parent_));
  }

  template <class Part, class Widget>
  Widget* bind(Part part, Widget* widget) {
    renders_.push_back([=](const Content& content, bool visible) {
      const auto& shown = std::invoke(part, content);
      if constexpr (requires { shown.visible; }) {
        if (!visible) return widget->setContent(hidden(shown));
      }
      widget->setContent(shown);
    });
    return widget;
  }

  void render(const Content& content) {
    content_ = content;
    renderAs(true);
  }

  /// Null for a page that is not shown; the widgets keep what they have shown.
  void renderOrHide(const Content* content) {
    if (content != nullptr) return render(*content);
    if (visible_) renderAs(false);
  }

 private:
  template <class Part>
  [[nodiscard]] static Part hidden(Part part) {
    part.visible = false;
    return part;
  }

  void renderAs(bool visible) {
    visible_ = visible;
    for (const auto& render : renders_) render(content_, visible);
  }

  const Theme& theme_;
  QWidget& parent_;
  ControlListener listener_;
  std::vector<std::function<void(const Content& content, bool visible)>> renders_;
  Content content_;
  bool visible_ = true;
};

}  // namespace nimbo
