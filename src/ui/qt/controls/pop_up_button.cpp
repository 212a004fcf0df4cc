// SPDX-License-Identifier: MIT
#include "ui/qt/controls/pop_up_button.h"

#include <QAbstractItemView>
#include <QAccessibleWidget>
#include <QPainter>
#include <QSignalBlocker>
#include <QWheelEvent>
#include <utility>

#include "ui/qt/controls/control_painting.h"
#include "ui/qt/controls/focus_ring.h"
#include "ui/qt/controls/qt_geometry.h"
#include "ui/qt/controls/text_fitting.h"
#include "ui/qt/controls/theme.h"

namespace nimbo {
namespace {

constexpr double kPopUpPadding = 8;
constexpr double kArrowsWidth = 20;

class AccessiblePopUp final : public QAccessibleWidget {
 public:
  explicit AccessiblePopUp(PopUpButton& popUp) : QAccessibleWidget(&popUp, QAccessible::ComboBox), popUp_(popUp) {}

  [[nodiscard]] QString text(QAccessible::Text part) const override {
    return part == QAccessible::Value ? popUp_.currentText() : QAccessibleWidget::text(part);
  }
  [[nodiscard]] QAccessible::State state() const override {
    auto state = QAccessibleWidget::state();
    const bool open = popUp_.view()->isVisible();
    state.hasPopup = state.expandable = true;
    state.expanded = open;
    state.collapsed = !open;
    return state;
  }

  // The list, also while it is closed, so that its items can be found.
  [[nodiscard]] int childCount() const override { return 1; }
  [[nodiscard]] QAccessibleInterface* child(int index) const override {
    return index == 0 ? QAccessible::queryAccessibleInterface(popUp_.view()) : nullptr;
  }
  int indexOfChild(const QAccessibleInterface* child) const override {
    return child->object() == popUp_.view() ? 0 : -1;
  }

  [[nodiscard]] QStringList actionNames() const override { return {showMenuAction(), pressAction()}; }
  void doAction(const QString& name) override {
    if (!actionNames().contains(name) || !popUp_.isEnabled()) return;
    if (popUp_.view()->isVisible()) {
      popUp_.hidePopup();
    } else {
      popUp_.showPopup();
    }
  }

 private:
  PopUpButton& popUp_;
};

}  // namespace

PopUpButton::PopUpButton(const Theme& theme, std::function<void(std::size_t index)> selected, QWidget* parent)
    : QComboBox(parent), theme_(theme) {
  setFocusPolicy(Qt::StrongFocus);
  setAttribute(Qt::WA_Hover);
  setFont(controlFont());
  setMaxVisibleItems(20);
  connect(this, &QComboBox::currentIndexChanged, this, [this, selected](int index) {
    reported_ = true;
    if (index >= 0) selected(static_cast<std::size_t>(index));
  });
  // The selected item chosen again is a choice, too: it may stand for more than what is shown.
  connect(this, &QComboBox::activated, this, [this, selected = std::move(selected)](int index) {
    if (!std::exchange(reported_, true)) selected(static_cast<std::size_t>(index));
  });
}

void PopUpButton::setContent(const PopUpContent& content) {
  const QSignalBlocker blocker(this);
  if (content_ != content) {
    if (!content_ || content_->items != content.items) setItems(content.items);
    content_ = content;
    setObjectName(QString::fromStdString(content.identifier));
    setGeometry(toQRect(content.frame));
    setAccessibleName(QString::fromStdString(content.accessibleName));
    setEnabled(content.enabled);
    setVisible(content.visible);
    update();
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
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QRectF frame = rect();
  painter.setPen(Qt::NoPen);
  painter.setBrush(theme_.controlGround(controlState(*this, false)));
  painter.drawRoundedRect(frame, kControlRadius, kControlRadius);
  if (keyboardFocusVisible(*this)) drawFocusRing(painter, frame, kControlRadius, theme_);

  painter.setPen(isEnabled() ? theme_.color(ColorRole::label) : theme_.disabledLabel());
  const QRectF title = frame.adjusted(kPopUpPadding, 0, -kArrowsWidth, 0);
  drawText(painter, title, Qt::AlignLeft, fitText(currentText(), font(), false, title.width()));
  const QPointF arrows(frame.right() - kArrowsWidth / 2, frame.center().y());
  drawChevron(painter, arrows + QPointF(0, -4), ChevronDirection::up);
  drawChevron(painter, arrows + QPointF(0, 4), ChevronDirection::down);
}

// A wheel turned over the page must not change a choice.
void PopUpButton::wheelEvent(QWheelEvent* event) { event->ignore(); }

QAccessibleInterface* makeAccessiblePopUp(const QString& /*className*/, QObject* object) {
  auto* const popUp = dynamic_cast<PopUpButton*>(object);
  return popUp != nullptr ? new AccessiblePopUp(*popUp) : nullptr;
}

}  // namespace nimbo
