// SPDX-License-Identifier: MIT
#include "ui/qt/controls/segmented_tabs.h"

#include <QKeyEvent>
#include <QSignalBlocker>
#include <QWheelEvent>
#include <utility>

#include "ui/qt/controls/control_painting.h"
#include "ui/qt/controls/text_fitting.h"

namespace nimbo {
namespace {

constexpr double kTabTextSize = 12;
constexpr double kInset = 2;
constexpr double kTabRadius = 7;
constexpr double kTabPadding = 4;
constexpr double kSideInset = 4;  // keeps the track apart from what stands beside the frame

}  // namespace

SegmentedTabs::SegmentedTabs(const Theme& theme, ControlListener listener, QWidget* parent)
    : ContentWidget(theme, parent, std::move(listener)) {
  setObjectName(kTabsIdentifier);
  setAccessibleName("Pages");
  setFocusPolicy(Qt::StrongFocus);
  setUsesScrollButtons(false);
  connect(this, &QTabBar::currentChanged, this, [this](int index) {
    if (index >= 0) report(static_cast<std::size_t>(index));
  });
}

void SegmentedTabs::setContent(const TabsContent& content) {
  if (content_ == content) return;
  const QSignalBlocker blocker(this);
  take(content);
  const int wanted = static_cast<int>(content.labels.size());
  while (count() > wanted) removeTab(count() - 1);
  while (count() < wanted) addTab({});
  for (int index = 0; index < wanted; ++index) {
    const auto& label = content.labels[static_cast<std::size_t>(index)];
    setTabText(index, withoutMnemonics(label));
    setAccessibleTabName(index, QString::fromStdString(label));
  }
  setCurrentIndex(static_cast<int>(content.selected));
}

QSize SegmentedTabs::tabSizeHint(int /*index*/) const { return {width() / std::max(count(), 1), height()}; }

QSize SegmentedTabs::minimumTabSizeHint(int index) const { return tabSizeHint(index); }

QRectF SegmentedTabs::segment(int index) const {
  const double segmentWidth = (width() - 2 * kSideInset) / count();
  return QRectF(kSideInset + segmentWidth * index, 0, segmentWidth, height())
      .adjusted(kInset, kInset, -kInset, -kInset);
}

void SegmentedTabs::paintEvent(QPaintEvent* /*event*/) {
  if (!content_) return;
  SmoothPainter painter(this);
  fillRounded(painter, rect().toRectF().adjusted(kSideInset, 0, -kSideInset, 0), kTabRadius,
              theme_.controlGround(ControlState::idle));
  const double inner = kTabRadius - kInset;
  for (int index = 0; index < count(); ++index) {
    const QRectF frame = segment(index);
    const bool selected = index == currentIndex();
    if (selected) {
      painter.setPen(QPen(theme_.color(ColorRole::separator), 0.5));
      painter.setBrush(theme_.raisedGround());
      painter.drawRoundedRect(frame, inner, inner);
      if (keyboardFocusVisible(*this)) drawFocusRing(painter, frame, inner, theme_.focusRing());
    }
    painter.setPen(theme_.color(selected ? ColorRole::label : ColorRole::secondaryLabel));
    drawText(painter, frame.adjusted(kTabPadding, 0, -kTabPadding, 0), Qt::AlignHCenter, accessibleTabName(index),
             fontFor(kTabTextSize, FontWeight::medium));
  }
}

void SegmentedTabs::keyPressEvent(QKeyEvent* event) {
  // Arrow keys, too, are a use of the keyboard that calls for the focus ring.
  window()->setAttribute(Qt::WA_KeyboardFocusChange);
  QTabBar::keyPressEvent(event);
  update();
}

// A wheel turned a little too far over the page below must not change the page.
void SegmentedTabs::wheelEvent(QWheelEvent* event) { event->ignore(); }

}  // namespace nimbo
