// SPDX-License-Identifier: MIT
#include "ui/qt/windows/window_system.h"

#include <QApplication>
#include <QCursor>
#include <QIcon>
#include <QScreen>
#include <QWidget>
#include <algorithm>

namespace nimbo {

void setProgramIcon(QWidget& window) {
  const QIcon icon = QIcon::fromTheme(QGuiApplication::desktopFileName());
  if (!icon.isNull()) window.setWindowIcon(icon);
}

void placeInMiddle(QWidget& window) {
  const QScreen* screen = QGuiApplication::screenAt(QCursor::pos());
  if (screen == nullptr) screen = QGuiApplication::primaryScreen();
  const QRect free = screen->availableGeometry();
  // On a screen that is too small the title bar and what stands first stay within reach.
  const auto inset = [](int room) { return std::max(room, 0); };
  window.move(free.x() + inset(free.width() - window.width()) / 2,
              free.y() + inset(free.height() - window.height()) * 2 / 5);
}

void bringToFront(QWidget& window, WindowSystem& windowSystem) {
  window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
  window.show();
  window.raise();
  windowSystem.activate(window);
}

bool presentAlert(WindowSystem& windowSystem) {
  QWidget* const alert = QApplication::activeModalWidget();
  if (alert != nullptr) bringToFront(*alert, windowSystem);
  return alert != nullptr;
}

}  // namespace nimbo
