// SPDX-License-Identifier: MIT
#include "ui/qt/controls/segmented_tabs.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QSignalBlocker>
#include <QWheelEvent>
#include <utility>

#include "ui/qt/controls/focus_ring.h"
#include "ui/qt/controls/qt_geometry.h"
#include "ui/qt/controls/text_fitting.h"
#include "ui/qt/controls/theme.h"

namespace nimbo {
namespace {

constexpr double kTabTextSize = 12;
constexpr double kInset = 2;
constexpr double kTabRadius = 7;
constexpr double kTabPadding = 4;
constexpr double kSideInset = 4;  // keeps the track apart from what stands beside the frame

}  // namespace

SegmentedTabs::SegmentedTabs(const Theme& theme, std::function<void(std::size_t)> selected, QWidget* parent)
    : QTabBar(parent), theme_(theme) {
  setFocusPolicy(Qt::StrongFocus);
  setDrawBase(false);
  setExpanding(true);
  setUsesScrollButtons(false);
  setElideMode(Qt::ElideNone);
  connect(this, &QTabBar::currentChanged, this, [selected = std::move(selected)](int index) {
    if (index >= 0) selected(static_cast<std::size_t>(index));
  });
}

void SegmentedTabs::setContent(const TabsContent& content) {
  if (content_ == content) return;
  const QSignalBlocker blocker(this);
  content_ = content;
  setGeometry(toQRect(content.frame));
  const int wanted = static_cast<int>(content.labels.size());
  while (count() > wanted) removeTab(count() - 1);
  while (count() < wanted) addTab({});
  for (int index = 0; index < wanted; ++index) {
    const QString label = QString::fromStdString(content.labels[static_cast<std::size_t>(index)]);
    setTabText(index, QString(label).replace('&', "&&"));
    setAccessibleTabName(index, label);
  }
  setCurrentIndex(static_cast<int>(content.selected));
  update();
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
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(theme_.controlGround(ControlState::idle));
  painter.drawRoundedRect(rect().toRectF().adjusted(kSideInset, 0, -kSideInset, 0), kTabRadius, kTabRadius);

  const double inner = kTabRadius - kInset;
  for (int index = 0; index < count(); ++index) {
    const QRectF frame = segment(index);
    const bool selected = index == currentIndex();
    if (selected) {
      painter.setPen(QPen(theme_.separator(), 0.5));
      painter.setBrush(theme_.raisedGround());
      painter.drawRoundedRect(frame, inner, inner);
      if (keyboardFocusVisible(*this)) drawFocusRing(painter, frame, inner, theme_);
    }
    painter.setPen(theme_.color(selected ? ColorRole::label : ColorRole::secondaryLabel));
    const auto font = fontFor(QApplication::font(), kTabTextSize, FontWeight::medium);
    const QString label = QString::fromStdString(content_->labels[static_cast<std::size_t>(index)]);
    drawText(painter, frame, Qt::AlignHCenter, fitText(label, font, false, frame.width() - 2 * kTabPadding));
  }
}

void SegmentedTabs::keyPressEvent(QKeyEvent* event) {
  // Whoever steers with arrow keys wants to see where they are.
  window()->setAttribute(Qt::WA_KeyboardFocusChange);
  QTabBar::keyPressEvent(event);
  update();
}

// A wheel turned a little too far over the page below must not change the page.
void SegmentedTabs::wheelEvent(QWheelEvent* event) { event->ignore(); }

}  // namespace nimbo
