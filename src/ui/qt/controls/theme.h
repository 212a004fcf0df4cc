// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QPalette>

#include "platform/workspace.h"
#include "ui/controls/control_content.h"

namespace nimbo {

/// What the pointer does with a control.
enum class ControlState { idle, hovered, pressed, disabled };

/// The colours of all windows. One object, owned by the user interface, outlives every widget;
/// widgets ask it anew whenever they paint.
class Theme {
 public:
  void setAppearance(Appearance appearance) { appearance_ = appearance; }

  [[nodiscard]] QColor color(ColorRole role) const;
  /// The ground of a button or of the track of a control.
  [[nodiscard]] QColor controlGround(ControlState state) const;
  /// The raised, selected part of a control.
  [[nodiscard]] QColor raisedGround() const;
  [[nodiscard]] QColor focusRing() const;
  /// What is written on a control that cannot be used now.
  [[nodiscard]] QColor disabledLabel() const;

  /// The ground of what is on or selected.
  [[nodiscard]] QColor accent(ControlState state = ControlState::idle) const;

  [[nodiscard]] QColor fieldGround(bool enabled) const;
  [[nodiscard]] QColor fieldBorder(bool enabled) const;

  /// The same for what the toolkit draws itself.
  [[nodiscard]] QPalette palette() const;

 private:
  Appearance appearance_ = Appearance::light;
};

}  // namespace nimbo
