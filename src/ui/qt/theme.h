// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QPalette>

#include "platform/workspace.h"
#include "ui/dashboard_content.h"

namespace nimbo {

/// What the pointer does with a control.
enum class ControlState { idle, hovered, pressed, disabled };

/// The colours of all windows. One object, owned by the user interface, outlives every widget;
/// widgets ask it anew whenever they paint.
class Theme {
 public:
  void setAppearance(Appearance appearance) { appearance_ = appearance; }

  [[nodiscard]] QColor color(ColorRole role) const;
  [[nodiscard]] QColor background() const;
  [[nodiscard]] QColor separator() const;
  /// The ground of a button or of the track of a control.
  [[nodiscard]] QColor controlGround(ControlState state) const;
  /// The raised, selected part of a control.
  [[nodiscard]] QColor raisedGround() const;
  [[nodiscard]] QColor focusRing() const;

  /// The same for what the toolkit draws itself.
  [[nodiscard]] QPalette palette() const;

 private:
  Appearance appearance_ = Appearance::light;
};

}  // namespace nimbo
