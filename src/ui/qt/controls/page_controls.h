// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <utility>
#include <vector>

#include "ui/qt/controls/fitted_label.h"

namespace nimbo {

/// Calls a copy of `action`, if there is one, because it may give the window other actions.
template <class... Parameters, class... Values>
void call(const std::function<void(Parameters...)>& action, const Values&... values) {
  if (const auto act = action) act(values...);
}

/// The widgets of a page, each with the part of the page's content that it shows: a field, or a function
/// that returns it. All are hidden with a page that is not visible. The order in which they are made is the one in
/// which Tab visits them. They stand directly in `parent`, which owns them.
template <class Content, class Actions>
class PageControls {
 public:
  PageControls(const Theme& theme, QWidget& parent) : theme_(theme), parent_(parent) {}
  PageControls(const PageControls&) = delete;  // the widgets report to this one
  PageControls& operator=(const PageControls&) = delete;

  template <class Part>
  FittedLabel* label(const char* name, Part part) {
    return bind(part, new FittedLabel(theme_, &parent_, name));
  }

  /// A control that calls `action` with what it reports.
  template <class Widget, class Part, class... Values>
  Widget* control(Part part, std::function<void(Values...)> Actions::*action) {
    return bind(part, new Widget(theme_, caller(action), &parent_));
  }

  template <class... Values>
  [[nodiscard]] std::function<void(Values...)> caller(std::function<void(Values...)> Actions::*action) const {
    return [this, action](Values... values) { call(actions_.*action, values...); };
  }

  template <class Part, class Widget>
  Widget* bind(Part part, Widget* widget) {
    renders_.push_back([=](const Content& content) {
      const auto& shown = std::invoke(part, content);
      if constexpr (requires { content.visible; }) {
        if (!content.visible) return widget->setContent(hidden(shown));
      }
      widget->setContent(shown);
    });
    return widget;
  }

  void setActions(Actions actions) { actions_ = std::move(actions); }
  void render(const Content& content) const {
    for (const auto& render : renders_) render(content);
  }

 private:
  template <class Part>
  [[nodiscard]] static Part hidden(Part part) {
    part.visible = false;
    return part;
  }

  const Theme& theme_;
  QWidget& parent_;
  Actions actions_;
  std::vector<std::function<void(const Content& content)>> renders_;
};

}  // namespace nimbo
