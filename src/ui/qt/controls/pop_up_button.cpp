// SPDX-License-Identifier: MIT
#include "ui/qt/controls/pop_up_button.h"

#include <QAbstractItemView>
#include <QSignalBlocker>
#include <QWheelEvent>
#include <utility>

#include "ui/qt/controls/control_painting.h"
#include "ui/qt/controls/text_fitting.h"

namespace nimbo {
namespace {

constexpr double kPopUpPadding = 8;
constexpr double kArrowsWidth = 20;

}  // namespace

PopUpButton::PopUpButton(const Theme& theme, ControlListener listener, QWidget* parent)
    : ContentWidget(theme, parent, std::move(listener)) {
  setFocusPolicy(Qt::StrongFocus);
  setFont(controlFont());
  setMaxVisibleItems(20);
  connect(this, &QComboBox::currentIndexChanged, this, [this](int index) {
    reported_ = true;
    if (index >= 0) report(static_cast<std::size_t>(index));
  });
  // The selected item chosen again is a choice, too: it may stand for more than what is shown.
  connect(this, &QComboBox::activated, this, [this](int index) {
    if (!std::exchange(reported_, true)) report(static_cast<std::size_t>(index));
  });
}

void PopUpButton::setContent(const PopUpContent& content) {
  const QSignalBlocker blocker(this);
  if (content_ != content) {
    if (!content_ || content_->items != content.items) setItems(content.items);
    take(content);
  }
  // Also for equal content: the program may have refused what the user did.
  setCurrentIndex(static_cast<int>(content.selected));
}

void PopUpButton::setItems(const std::vector<std::string>& items) {
  clear();
  for (const auto& item : items) addItem(QString::fromStdString(item));
}

// The toolkit makes the list only as wide as the button, but its items need room for the check mark.
void PopUpButton::showPopup() {
  view()->setMinimumWidth(view()->sizeHintForColumn(0));
  reported_ = false;
  QComboBox::showPopup();
}

void PopUpButton::paintEvent(QPaintEvent* /*event*/) {
  if (!content_) return;
  SmoothPainter painter(this);
  const QRectF frame = rect();
  fillRounded(painter, frame, kControlRadius, theme_.controlGround(controlState(*this, false)));
  if (keyboardFocusVisible(*this)) drawFocusRing(painter, frame, kControlRadius, theme_.focusRing());

  painter.setPen(isEnabled() ? theme_.color(ColorRole::label) : theme_.disabledLabel());
  drawText(painter, frame.adjusted(kPopUpPadding, 0, -kArrowsWidth, 0), Qt::AlignLeft, currentText(), font());
  const QPointF arrows(frame.right() - kArrowsWidth / 2, frame.center().y());
  drawChevron(painter, arrows + QPointF(0, -4), ChevronDirection::up);
  drawChevron(painter, arrows + QPointF(0, 4), ChevronDirection::down);
}

// A wheel turned over the page must not change a choice.
void PopUpButton::wheelEvent(QWheelEvent* event) { event->ignore(); }

}  // namespace nimbo
