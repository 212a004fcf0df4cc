// SPDX-License-Identifier: MIT
#include "ui/qt/controls/dashboard_button.h"

#include <QKeyEvent>
#include <algorithm>
#include <utility>

#include "ui/qt/controls/control_painting.h"
#include "ui/qt/controls/text_fitting.h"

namespace nimbo {
namespace {

constexpr double kButtonPadding = 7;
constexpr double kIconSide = 17;

double cornerRadius(ButtonLook look, double height) { return look == ButtonLook::inlined ? height / 2 : 6; }

double symbolSide(const ButtonContent& content) {
  return content.look == ButtonLook::icon ? kIconSide : content.textSize;
}

/// What is left free at either side, so that buttons whose frames touch stand apart.
double sideInset(ButtonLook look) { return look == ButtonLook::icon ? 0 : look == ButtonLook::inlined ? 4 : 3; }

}  // namespace

DashboardButton::DashboardButton(const Theme& theme, ControlListener listener, QWidget* parent)
    : ContentWidget(theme, parent, std::move(listener)) {
  // In a dialog the focus would otherwise make another button the default one.
  setAutoDefault(false);
  connect(this, &QPushButton::clicked, this, [this] { report(); });
}

void DashboardButton::setContent(const ButtonContent& content) {
  if (content_ == content) return;
  if (content.look != ButtonLook::icon) setText(withoutMnemonics(content.title));
  take(content);
}

bool DashboardButton::performKeyEquivalent(const QKeyEvent& key) {
  if (!content_ || content_->keyEquivalent.empty() || !isVisible() || !isEnabled()) return false;
  // The keypad flag says nothing about what the user means.
  if ((key.modifiers() & ~Qt::KeypadModifier) != Qt::ControlModifier) return false;
  const QChar letter = QString::fromStdString(content_->keyEquivalent)[0].toUpper();
  if (key.key() != letter.unicode()) return false;
  click();
  return true;
}

bool DashboardButton::hitButton(const QPoint& place) const { return rect().contains(place); }

void DashboardButton::keyPressEvent(QKeyEvent* event) {
  const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (enter && !event->isAutoRepeat()) {
    click();
  } else {
    QPushButton::keyPressEvent(event);
  }
}

QRectF DashboardButton::face() const {
  // At most a circle, not an egg.
  const double inset = std::min(sideInset(content_->look), std::max(width() - height(), 0) / 2.0);
  return rect().toRectF().adjusted(inset, 0, -inset, 0);
}

QColor DashboardButton::ground() const {
  const bool bare = content_->look == ButtonLook::icon;
  const ControlState state = controlState(*this, isDown());
  if (bare && (state == ControlState::idle || state == ControlState::disabled)) return Qt::transparent;
  return isDefault() && isEnabled() ? theme_.accent(state) : theme_.controlGround(state);
}

void DashboardButton::drawTitle(QPainter& painter) const {
  const auto bareLook = content_->look == ButtonLook::rounded ? ColorRole::label : ColorRole::secondaryLabel;
  QColor ink = theme_.color(bareLook);
  if (isDefault()) ink = theme_.color(ColorRole::accentLabel);
  if (!isEnabled()) ink = theme_.disabledLabel();
  if (const auto symbol = symbolPath(content_->title)) {
    const double side = symbolSide(*content_);
    painter.translate(rect().toRectF().center() - QPointF(side, side) / 2);
    painter.scale(side, side);
    painter.fillPath(*symbol, ink);
    return;
  }
  painter.setPen(ink);
  drawText(painter, face().adjusted(kButtonPadding, 0, -kButtonPadding, 0), Qt::AlignHCenter,
           QString::fromStdString(content_->title), fontFor(content_->textSize, FontWeight::medium));
}

void DashboardButton::drawRing(QPainter& painter, double radius) const {
  if (!isDefault()) {
    drawFocusRing(painter, face(), radius, theme_.focusRing());
    return;
  }
  // A ring in its usual colour would not show on the accent.
  constexpr double kApart = 1.5;
  drawFocusRing(painter, face().adjusted(kApart, kApart, -kApart, -kApart), radius - kApart,
                theme_.color(ColorRole::accentLabel));
}

void DashboardButton::paintEvent(QPaintEvent* /*event*/) {
  if (!content_) return;
  SmoothPainter painter(this);
  const double radius = cornerRadius(content_->look, height());
  fillRounded(painter, face(), radius, ground());
  if (keyboardFocusVisible(*this)) drawRing(painter, radius);
  drawTitle(painter);
}

}  // namespace nimbo
