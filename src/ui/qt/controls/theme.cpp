// SPDX-License-Identifier: MIT
#include "ui/qt/controls/theme.h"

#include "ui/controls/palette.h"

namespace nimbo {
namespace {

QColor withAlpha(QColor color, float alpha) {
  color.setAlphaF(alpha);
  return color;
}

float groundAlpha(ControlState state, bool dark) {
  switch (state) {
    case ControlState::idle:
      return dark ? 0.11F : 0.07F;
    case ControlState::hovered:
      return dark ? 0.16F : 0.11F;
    case ControlState::pressed:
      return dark ? 0.22F : 0.16F;
    case ControlState::disabled:
      break;
  }
  return dark ? 0.06F : 0.04F;
}

}  // namespace

QColor Theme::color(ColorRole role) const {
  const auto [red, green, blue, alpha] = nimbo::color(role, appearance_);
  return withAlpha({red, green, blue}, static_cast<float>(alpha));
}

QColor Theme::controlGround(ControlState state) const {
  return withAlpha(color(ColorRole::label), groundAlpha(state, appearance_ == Appearance::dark));
}

QColor Theme::raisedGround() const {
  return appearance_ == Appearance::dark ? withAlpha(Qt::white, 0.20F) : QColor(Qt::white);
}

QColor Theme::focusRing() const { return withAlpha(color(ColorRole::blue), 0.75F); }

QColor Theme::disabledLabel() const { return withAlpha(color(ColorRole::tertiaryLabel), 0.7F); }

QColor Theme::accent(ControlState state) const {
  const QColor ground = color(ColorRole::accentGround);
  // Darker, so that what is written on it stays readable.
  if (state == ControlState::hovered) return ground.darker(108);
  return state == ControlState::pressed ? ground.darker(122) : ground;
}

QColor Theme::fieldGround(bool enabled) const {
  return enabled ? color(ColorRole::fieldGround) : controlGround(ControlState::disabled);
}

QColor Theme::fieldBorder(bool enabled) const { return color(enabled ? ColorRole::fieldBorder : ColorRole::separator); }

QPalette Theme::palette() const {
  // Built from two colours, the toolkit derives the rest of a fitting light or dark set.
  const QColor background = color(ColorRole::background);
  QPalette palette(background, background);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
    palette.setColor(role, color(ColorRole::label));
    palette.setColor(QPalette::Disabled, role, color(ColorRole::tertiaryLabel));
  }
  palette.setColor(QPalette::Base, background);
  palette.setColor(QPalette::ToolTipBase, background);
  palette.setColor(QPalette::PlaceholderText, color(ColorRole::tertiaryLabel));
  palette.setColor(QPalette::Highlight, accent());
  palette.setColor(QPalette::HighlightedText, color(ColorRole::accentLabel));
  return palette;
}

}  // namespace nimbo
