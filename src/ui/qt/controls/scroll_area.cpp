// SPDX-License-Identifier: MIT
#include "ui/qt/controls/scroll_area.h"

#include <QApplication>
#include <QScrollBar>

#include "ui/qt/controls/control_painting.h"
#include "ui/qt/controls/qt_geometry.h"

namespace nimbo {

ScrollArea::ScrollArea(int step, QWidget* parent) : QScrollArea(parent), document_(new QWidget) {
  setFocusPolicy(Qt::StrongFocus);
  setFrameShape(QFrame::NoFrame);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setWidget(document_);
  // The document and the viewport would each paint a ground over the panel's.
  document_->setAutoFillBackground(false);
  viewport()->setAutoFillBackground(false);
  verticalScrollBar()->setSingleStep(step);
  connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* focused) { reveal(focused); });
}

// What is scrolled may lose the focus as it goes, when this is no scroll area any more.
ScrollArea::~ScrollArea() { disconnect(qApp, nullptr, this, nullptr); }

void ScrollArea::place(const Rect& frame, Size document, bool visible) {
  setGeometry(toQRect(frame));
  document_->resize(toQSize(document));
  setVisible(visible);
}

// Only for the keyboard: what is pressed with the pointer must not move away under it.
void ScrollArea::reveal(QWidget* focused) {
  if (focused != nullptr && document_->isAncestorOf(focused) && keyboardFocusVisible(*focused)) {
    ensureWidgetVisible(focused);
  }
}

void ScrollArea::focusInEvent(QFocusEvent* event) {
  QScrollArea::focusInEvent(event);
  parentWidget()->update();
}

void ScrollArea::focusOutEvent(QFocusEvent* event) {
  QScrollArea::focusOutEvent(event);
  parentWidget()->update();
}

}  // namespace nimbo
