// SPDX-License-Identifier: MIT
#include "ui/qt/controls/check_box.h"

#include <QApplication>
#include <QPainter>
#include <QSignalBlocker>
#include <utility>

#include "ui/qt/controls/control_painting.h"
#include "ui/qt/controls/focus_ring.h"
#include "ui/qt/controls/plain_tool_tip.h"
#include "ui/qt/controls/qt_geometry.h"
#include "ui/qt/controls/text_fitting.h"
#include "ui/qt/controls/theme.h"

namespace nimbo {
namespace {

constexpr double kTextSize = 13;
constexpr double kBoxSide = 16;
constexpr double kBoxRadius = 4;
constexpr double kGap = 7;
constexpr int kRingRoom = 4;  // on either side of box and title

QFont titleFont() { return fontFor(QApplication::font(), kTextSize, FontWeight::regular); }

}  // namespace

CheckBox::CheckBox(const Theme& theme, std::function<void(bool on)> switched, QWidget* parent)
    : QCheckBox(parent), theme_(theme) {
  setFocusPolicy(Qt::StrongFocus);
  setAttribute(Qt::WA_Hover);
  // Not `clicked`, which assistive technology can do without.
  connect(this, &QCheckBox::toggled, this, [switched = std::move(switched)](bool on) { switched(on); });
}

void CheckBox::setContent(const CheckBoxContent& content) {
  {
    // Also for equal content: the program may have refused what the user did.
    const QSignalBlocker blocker(this);
    setChecked(content.on);
  }
  if (content_ == content) return;
  content_ = content;
  setObjectName(QString::fromStdString(content.identifier));
  setGeometry(toQRect(content.frame).adjusted(-kRingRoom, 0, 0, 0));
  const QString title = QString::fromStdString(content.title);
  setText(QString(title).replace('&', "&&"));
  setAccessibleName(title);
  setPlainToolTip(*this, QString::fromStdString(content.toolTip));
  setEnabled(content.enabled);
  setVisible(content.visible);
  update();
}

QRectF CheckBox::face() const {
  const double title = content_ ? textWidth(QString::fromStdString(content_->title), titleFont(), false) : 0;
  return {0, 0, std::min<double>(width(), kBoxSide + kGap + title + 2 * kRingRoom), static_cast<double>(height())};
}

bool CheckBox::hitButton(const QPoint& place) const { return face().contains(place); }

void CheckBox::drawBox(QPainter& painter, const QRectF& box) const {
  const ControlState state = controlState(*this, isDown());
  if (!isChecked()) {
    painter.setPen(QPen(theme_.fieldBorder(isEnabled()), 1));
    painter.setBrush(theme_.fieldGround(isEnabled()));
    painter.drawRoundedRect(box.adjusted(0.5, 0.5, -0.5, -0.5), kBoxRadius - 0.5, kBoxRadius - 0.5);
    if (state == ControlState::idle || state == ControlState::disabled) return;
  }
  painter.setPen(Qt::NoPen);
  painter.setBrush(isChecked() && isEnabled() ? theme_.accent(state) : theme_.controlGround(state));
  painter.drawRoundedRect(box, kBoxRadius, kBoxRadius);
  if (!isChecked()) return;
  painter.setPen(isEnabled() ? theme_.accentLabel() : theme_.disabledLabel());
  drawCheckMark(painter, box);
}

void CheckBox::paintEvent(QPaintEvent* /*event*/) {
  if (!content_) return;
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  drawBox(painter, {kRingRoom, (height() - kBoxSide) / 2, kBoxSide, kBoxSide});
  if (keyboardFocusVisible(*this)) drawFocusRing(painter, face(), kControlRadius, theme_);
  painter.setPen(isEnabled() ? theme_.color(ColorRole::label) : theme_.disabledLabel());
  const QRectF frame = rect().toRectF().adjusted(kRingRoom + kBoxSide + kGap, 0, 0, 0);
  drawText(painter, frame, Qt::AlignLeft,
           fitText(QString::fromStdString(content_->title), titleFont(), false, frame.width()));
}

}  // namespace nimbo
