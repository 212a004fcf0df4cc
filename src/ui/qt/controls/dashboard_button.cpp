// SPDX-License-Identifier: MIT
#include "ui/qt/controls/dashboard_button.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <algorithm>
#include <utility>

#include "ui/qt/controls/control_painting.h"
#include "ui/qt/controls/focus_ring.h"
#include "ui/qt/controls/plain_tool_tip.h"
#include "ui/qt/controls/qt_geometry.h"
#include "ui/qt/controls/symbols.h"
#include "ui/qt/controls/text_fitting.h"
#include "ui/qt/controls/theme.h"

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

DashboardButton::DashboardButton(const Theme& theme, std::function<void()> pressed, QWidget* parent)
    : QPushButton(parent), theme_(theme) {
  setFocusPolicy(Qt::StrongFocus);
  setAttribute(Qt::WA_Hover);
  // In a dialog the focus would otherwise make another button the default one.
  setAutoDefault(false);
  connect(this, &QPushButton::clicked, this, [pressed = std::move(pressed)] { pressed(); });
}

void DashboardButton::setContent(const ButtonContent& content) {
  if (content_ == content) return;
  content_ = content;
  setObjectName(QString::fromStdString(content.identifier));
  setGeometry(toQRect(content.frame));
  const QString title = QString::fromStdString(content.title);
  if (content.look != ButtonLook::icon) setText(QString(title).replace('&', "&&"));
  setAccessibleName(content.accessibleName.empty() ? title : QString::fromStdString(content.accessibleName));
  setPlainToolTip(*this, QString::fromStdString(content.toolTip));
  setEnabled(content.enabled);
  setVisible(content.visible);
  update();
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

void DashboardButton::drawFace(QPainter& painter) const {
  const auto bareLook = content_->look == ButtonLook::rounded ? ColorRole::label : ColorRole::secondaryLabel;
  QColor ink = theme_.color(bareLook);
  if (isDefault()) ink = theme_.accentLabel();
  if (!isEnabled()) ink = theme_.disabledLabel();
  if (const auto symbol = symbolPath(content_->title)) {
    const double side = symbolSide(*content_);
    painter.translate(rect().toRectF().center() - QPointF(side, side) / 2);
    painter.scale(side, side);
    painter.fillPath(*symbol, ink);
    return;
  }
  const QRectF frame = face().adjusted(kButtonPadding, 0, -kButtonPadding, 0);
  const auto font = fontFor(QApplication::font(), content_->textSize, FontWeight::medium);
  painter.setPen(ink);
  drawText(painter, frame, Qt::AlignHCenter,
           fitText(QString::fromStdString(content_->title), font, false, frame.width()));
}

void DashboardButton::drawRing(QPainter& painter, double radius) const {
  if (!isDefault()) {
    drawFocusRing(painter, face(), radius, theme_);
    return;
  }
  // The ring's own colour would not show on the accent.
  constexpr double kApart = 1.5;
  drawFocusRing(painter, face().adjusted(kApart, kApart, -kApart, -kApart), radius - kApart, theme_.accentLabel());
}

void DashboardButton::paintEvent(QPaintEvent* /*event*/) {
  if (!content_) return;
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const double radius = cornerRadius(content_->look, height());
  painter.setPen(Qt::NoPen);
  painter.setBrush(ground());
  painter.drawRoundedRect(face(), radius, radius);
  if (keyboardFocusVisible(*this)) drawRing(painter, radius);
  drawFace(painter);
}

}  // namespace nimbo
