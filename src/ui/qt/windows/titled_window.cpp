// SPDX-License-Identifier: MIT
#include "ui/qt/windows/titled_window.h"

#include <QAccessibleWidget>
#include <QEvent>
#include <QWindow>
#include <utility>

#include "ui/qt/windows/window_presentation.h"
#include "ui/qt/windows/window_system.h"

namespace nimbo {
namespace {

constexpr Qt::WindowFlags kFlags = Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                                   Qt::WindowSystemMenuHint | Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint;

}  // namespace

TitledWindow::TitledWindow(WindowSystem& windowSystem) : QWidget(nullptr, kFlags), windowSystem_(windowSystem) {
  setProgramIcon(*this);
}

void TitledWindow::present() {
  if (!isVisible()) {
    if (!std::exchange(placed_, true)) placeInMiddle(*this);
    // The focus is in the window but on no control: Tab goes to the first one, and nothing is marked
    // until then.
    setAttribute(Qt::WA_KeyboardFocusChange, false);
    setFocus(Qt::ActiveWindowFocusReason);
  }
  bringToFront(*this, windowSystem_);
}

bool TitledWindow::event(QEvent* event) {
  const bool handled = QWidget::event(event);
  if (event->type() == QEvent::Show) windowHandle()->installEventFilter(this);
  // Some window managers let the user make every window full screen.
  if (event->type() == QEvent::WindowStateChange && isFullScreen()) showNormal();
  if (event->type() == QEvent::WindowActivate) {
    if (const auto becameKey = becameKey_) becameKey();
  }
  return handled;
}

// Native windows see every event before the widgets in them. Whoever uses the pointer needs no ring.
bool TitledWindow::eventFilter(QObject* /*watched*/, QEvent* event) {
  if (event->type() == QEvent::MouseButtonPress && testAttribute(Qt::WA_KeyboardFocusChange)) {
    setAttribute(Qt::WA_KeyboardFocusChange, false);
    update();
  }
  return false;
}

QAccessibleInterface* makeAccessibleTitledWindow(const QString& /*className*/, QObject* object) {
  auto* const window = dynamic_cast<TitledWindow*>(object);
  return window != nullptr ? new QAccessibleWidget(window, QAccessible::Window) : nullptr;
}

}  // namespace nimbo
