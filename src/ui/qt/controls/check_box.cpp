// SPDX-License-Identifier: MIT
#include "ui/qt/controls/check_box.h"

#include <QSignalBlocker>
#include <utility>

#include "ui/qt/controls/control_painting.h"
#include "ui/qt/controls/text_fitting.h"

namespace nimbo {
namespace {

constexpr double kTextSize = 13;
constexpr double kBoxSide = 16;
constexpr double kBoxRadius = 4;
constexpr double kGap = 7;
constexpr int kRingRoom = 4;  // on either side of box and title

QFont titleFont() { return fontFor(kTextSize, FontWeight::regular); }

}  // namespace

CheckBox::CheckBox(const Theme& theme, ControlListener listener, QWidget* parent)
    : ContentWidget(theme, parent, std::move(listener)) {
  // Not `clicked`, which assistive technology can do without.
  connect(this, &QCheckBox::toggled, this, [this](bool on) { report(on); });
}

void CheckBox::setContent(const CheckBoxContent& content) {
  {
    // Also for equal content: the program may have refused what the user did.
    const QSignalBlocker blocker(this);
    setChecked(content.on);
  }
  if (content_ == content) return;
  setText(withoutMnemonics(content.title));
  take(content, {kRingRoom, 0, 0, 0});
}

QRectF CheckBox::face() const {
  const double title = content_ ? textWidth(QString::fromStdString(content_->title), titleFont(), false) : 0;
  return {0, 0, std::min<double>(width(), kBoxSide + kGap + title + 2 * kRingRoom), static_cast<double>(height())};
}

bool CheckBox::hitButton(const QPoint& place) const { return face().contains(place); }

void CheckBox::drawBox(QPainter& painter, const QRectF& box) const {
  const ControlState state = controlState(*this, isDown());
  if (!isChecked()) {
    fillRounded(painter, box, kBoxRadius, theme_.fieldGround(isEnabled()), theme_.fieldBorder(isEnabled()));
    if (state == ControlState::idle || state == ControlState::disabled) return;
  }
  fillRounded(painter, box, kBoxRadius,
              isChecked() && isEnabled() ? theme_.accent(state) : theme_.controlGround(state));
  if (!isChecked()) return;
  painter.setPen(isEnabled() ? theme_.color(ColorRole::accentLabel) : theme_.disabledLabel());
  drawCheckMark(painter, box);
}

void CheckBox::paintEvent(QPaintEvent* /*event*/) {
  if (!content_) return;
  SmoothPainter painter(this);
  drawBox(painter, {kRingRoom, (height() - kBoxSide) / 2, kBoxSide, kBoxSide});
  if (keyboardFocusVisible(*this)) drawFocusRing(painter, face(), kControlRadius, theme_.focusRing());
  painter.setPen(isEnabled() ? theme_.color(ColorRole::label) : theme_.disabledLabel());
  drawText(painter, rect().toRectF().adjusted(kRingRoom + kBoxSide + kGap, 0, 0, 0), Qt::AlignLeft,
           QString::fromStdString(content_->title), titleFont());
}

}  // namespace nimbo
